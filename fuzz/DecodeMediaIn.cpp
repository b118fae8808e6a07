// Whatever the mix of reads, a decoded stream gives the bytes that its decoder makes of the lines of
// the source: a block read gives what was asked for while there is as much, a line read all up to the
// next LF. Written out, the stream gives the same and what the decoder's end adds.
#include "fuzz/Writes.h"

using namespace Velmara;

namespace {

struct Kind {
    ContentEncoding::EncodingType encoding;
    char const* type;
};

Kind const kinds[] = {
    {ContentEncoding::EncodingBase64, ""},
    {ContentEncoding::EncodingQuotedPrintable, ""},
    {ContentEncoding::EncodingUUEncode, ""},
    {ContentEncoding::EncodingUnknown, "application/mac-binhex40"},
};

/// What the decoder makes of the lines; with its end as well.
std::string expected(std::string const& text, Kind const& kind, bool withEnd)
{
    Buffer bytes, line(4096, 0);
    ContentType type{std::string(kind.type)};
    MediaOut out = BufferMediaOut(bytes);
    MediaOut decoder = get_decoder(out, kind.encoding, &type);
    BufferMediaIn in(text);
    for (in.readline(line); !line.isEmpty(); in.readline(line)) decoder.write(line);
    if (withEnd) decoder.end();
    return Writes::take(bytes);
}

MediaIn decoded(std::string const& text, Kind const& kind)
{
    ContentType type{std::string(kind.type)};
    MediaIn in = BufferMediaIn(text);
    return get_decoded(in, kind.encoding, &type);
}

/// The next block as it has to be.
std::string block(std::string const& rest, Writes::Choice& choice, MediaIn& in)
{
    std::vector<uchar_t> bytes(1 + choice.below(choice.below(8) == 0 ? 9000 : 20));
    int const n = in.read(bytes.data(), static_cast<uint_t>(bytes.size()));
    Writes::require(static_cast<std::size_t>(n) == std::min(bytes.size(), rest.size()));
    return std::string(bytes.begin(), bytes.begin() + n);
}

std::string line(std::string const& rest, MediaIn& in)
{
    Buffer bytes;
    in.readline(bytes);
    std::size_t const lineFeed = rest.find('\n');
    Writes::require(bytes.length() == (lineFeed == std::string::npos ? rest.size() : lineFeed + 1));
    return Writes::take(bytes);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t n)
{
    if (n < 2 || n > 20000) return 0;
    Kind const& kind = kinds[data[0] % 4];
    Writes::Choice choice{data[1]};
    std::string const text(reinterpret_cast<char const*>(data) + 2, n - 2);
    std::string rest = expected(text, kind, false);
    MediaIn in = decoded(text, kind);
    while (!in.atEnd()) {
        std::string const piece = choice.below(2) == 0 ? block(rest, choice, in) : line(rest, in);
        Writes::require(rest.compare(0, piece.size(), piece) == 0);
        rest.erase(0, piece.size());
    }
    Writes::require(rest.empty());

    Buffer bytes;
    MediaOut out = BufferMediaOut(bytes);
    decoded(text, kind).write(out);
    Writes::require(Writes::take(bytes) == expected(text, kind, true));
    return 0;
}
