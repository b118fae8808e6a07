// What the encoders write, the decoders give back exactly, whatever the bytes and however they were cut;
// lines of mail stay within 76 characters.
#include "fuzz/Writes.h"

using namespace Velmara;

namespace {

template <class Encoder> std::string encoded(Writes::Pieces const& pieces)
{
    Buffer out;
    Encoder encoder{BufferMediaOut(out)};
    for (std::string const& piece : pieces) Writes::write(encoder, piece);
    encoder.end();
    return Writes::take(out);
}

template <class Encoder, class Codec> void check(Writes::Pieces const& pieces, std::string const& text)
{
    std::string const written = encoded<Encoder>(pieces);
    Writes::require(written == encoded<Encoder>({text}));
    for (std::string const& line : Writes::lines(written)) {
        bool const whole = line.size() >= 2 && line.compare(line.size() - 2, 2, "\r\n") == 0;
        Writes::require(line.size() <= (whole ? 78 : 76));
    }
    Writes::require(Writes::through<Codec>(Writes::lines(written)) == text);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t n)
{
    if (n < 2) return 0;
    std::string const seed(reinterpret_cast<char const*>(data) + 2, n - 2);
    std::string text = seed;
    for (unsigned i = data[1] % 32; i != 0 && text.size() < 2048; --i) text += seed;
    Writes::Pieces const pieces = Writes::cut(text, {data[0]});
    check<Base64MediaOut, CodecBase64>(pieces, text);
    check<QuotedPrintableOut, CodecQuotedPrintable>(pieces, text);
    check<UUEncodeOut, CodecUUEncode>(pieces, text);
    check<BinHex40Out, CodecBinHex40>(pieces, text);
    return 0;
}
