// What the encoders write, the decoders give back exactly, whatever the bytes and however they were cut;
// lines of mail stay within 76 characters.
#include "fuzz/Writes.h"

#include <iterator>

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
    Writes::Pieces const lines = Writes::lines(written);
    for (std::string const& line : lines) {
        bool const whole = line.size() >= 2 && line.compare(line.size() - 2, 2, "\r\n") == 0;
        Writes::require(line.size() <= (whole ? 78 : 76));
    }
    Writes::require(Writes::through<Codec>(lines) == text);
}

/// Several lines in one input of sixteen; the others reach the end of one at most.
std::string repeated(std::string const& seed, unsigned times, bool isLong)
{
    std::string text = seed;
    for (unsigned i = isLong ? times : times % 4; i != 0 && text.size() < 2048; --i) text += seed;
    return text;
}

} // namespace

// The first two bytes choose the cuts, and the encoder and how often the rest is repeated.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t n)
{
    static constexpr void (*checks[])(Writes::Pieces const&, std::string const&) = {
        check<Base64MediaOut, CodecBase64>, check<QuotedPrintableOut, CodecQuotedPrintable>,
        check<UUEncodeOut, CodecUUEncode>, check<BinHex40Out, CodecBinHex40>};
    if (n < 2) return 0;
    std::string const seed(reinterpret_cast<char const*>(data) + 2, n - 2);
    std::string const text = repeated(seed, data[1] % 32, Writes::oneIn(16, data, n));
    checks[data[1] / 32 % std::size(checks)](Writes::cut(text, {data[0]}), text);
    return 0;
}
