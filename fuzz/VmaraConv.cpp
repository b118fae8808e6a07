// Conversion: where the writes are cut does not matter, the short ways into UTF-8 make the same writes as
// ICU (a target called "utf8" takes no short way), and none is longer than promised.
#include "fuzz/Writes.h"

#include <velmara/VmaraConv.h>

using namespace Velmara;

namespace {

// BOCU-1 is not among them: how long a bad sequence counts there depends on cuts, in ICU itself.
char const* const sources[] = {"UTF-8",       "GB18030",      "Shift_JIS",      "ISO-2022-JP",
                               "EUC-KR",      "Big5",         "windows-1251",   "KOI8-R",
                               "GBK",         "EUC-JP",       "ISO-8859-1",     "UTF-16",
                               "EUC-TW",      "Windows-1256", "KS_C_5601-1987", "UTF-16LE",
                               "UTF-32",      "ISO-8859-6",   "UTF-7",          "HZ",
                               "ISO-2022-KR", "ISO-2022-CN",  "ISO-2022-JP-2",  "IMAP-mailbox-name",
                               "SCSU",        "CESU-8"};
char const* const targets[] = {"UTF-8", "UTF-16LE", "ISO-8859-1", "ISO-2022-JP", "GB18030"};

constexpr unsigned int longestWrite = 1064;

/// What arrived, and where each write ended.
struct Outcome {
    std::string bytes;
    std::vector<size_t> ends;
    unsigned int bad, missing;

    bool operator==(Outcome const& other) const
    {
        return bytes == other.bytes && ends == other.ends && bad == other.bad && missing == other.missing;
    }
};

bool sameBytes(Outcome const& a, Outcome const& b)
{
    return a.bytes == b.bytes && a.bad == b.bad && a.missing == b.missing;
}

struct Sink : MediaOutImpl {
    using MediaOutImpl::write;
    void write(uchar_t const* p, uint_t n) override
    {
        Writes::require(n != 0 && n <= longestWrite);
        bytes.append(reinterpret_cast<char const*>(p), n);
        ends.push_back(bytes.size());
    }
    std::string bytes;
    std::vector<size_t> ends;
};

Outcome converted(Writes::Pieces const& pieces, char const* from, char const* to, bool substitute)
{
    auto* sink = new Sink;
    MediaOut const out(sink, false);
    VmaraConv converter(out, from, to, true);
    converter.retry_on_failure(true);
    converter.substitute_unknown(substitute);
    for (std::string const& piece : pieces) Writes::write(converter, piece);
    converter.end();
    return {std::move(sink->bytes), std::move(sink->ends), converter.ferrCnt(), converter.terrCnt()};
}

template <class T, size_t n> T const& oneOf(T const (&all)[n], std::uint8_t choice)
{
    return all[choice % n];
}

void checkCuts(Writes::Pieces const& pieces, std::string const& text, char const* from, char const* to, bool substitute)
{
    Outcome const whole = converted({text}, from, to, substitute);
    Writes::require(sameBytes(whole, converted(pieces, from, to, substitute)));
    Writes::require(substitute || whole.bad == 0);
}

void checkShortWay(Writes::Pieces const& pieces, char const* from)
{
    Writes::require(converted(pieces, from, "UTF-8", true) == converted(pieces, from, "utf8", true));
}

void checkUtf8(Writes::Pieces const& pieces, std::string const& text)
{
    Outcome const forced = converted(pieces, "UTF-8", "UTF-8", true);
    Writes::require(forced == converted(pieces, "UTF-8", "utf8", true));
    Writes::require((forced.bytes == text) == (forced.bad == 0));
    Buffer kept;
    std::string used;
    bool const reads = VmaraConv::m_conv(kept, used, text.data(), static_cast<uint_t>(text.size()), {"UTF-8"}, "UTF-8");
    Writes::require(reads == (forced.bad == 0));
}

/// Few bytes make many in one input of sixteen: pieces of hundreds of units are where characters meet the
/// ends of buffers.
std::string repeated(std::string const& seed, unsigned times, bool isLong)
{
    std::string text = seed;
    for (unsigned i = isLong ? times : times % 4; i != 0 && text.size() < 4096; --i) text += seed;
    return text;
}

} // namespace

// The first three bytes choose the character sets, the cuts, and how often the rest is repeated and which
// of the claims is looked at.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t n)
{
    if (n < 3) return 0;
    char const* const from = oneOf(sources, data[0]);
    std::string const text =
        repeated(std::string(reinterpret_cast<char const*>(data) + 3, n - 3), data[2] % 64, Writes::oneIn(16, data, n));
    Writes::Pieces const pieces = Writes::cut(text, {data[1]});
    switch (data[2] / 64) {
    case 2:
        checkShortWay(pieces, from);
        break;
    case 3:
        checkUtf8(pieces, text);
        break;
    default:
        checkCuts(pieces, text, from, oneOf(targets, data[0] / 32), data[1] % 2 == 0);
    }
    return 0;
}
