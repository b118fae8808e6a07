// The views on a stored message against a short plain reading of their rules, over lines that a source may
// cut; block reads give what line reads give.
#include "fuzz/Writes.h"

#include <functional>

using namespace Velmara;

namespace {

using Lines = std::vector<std::string>;

/// Pieces of lines, as a source gives them into a buffer of so many bytes.
Lines pieces(std::string const& text, std::size_t longest)
{
    Lines all;
    for (std::string const& line : Writes::lines(text))
        for (std::size_t at = 0; at < line.size(); at += longest) all.push_back(line.substr(at, longest));
    return all;
}

bool isWhole(std::string const& line)
{
    return line.back() == '\n';
}

std::size_t firstSpace(std::string const& line)
{
    return line.find_first_of(" \t\r\n");
}

bool continues(std::string const& line)
{
    return firstSpace(line) == 0 && line.find_first_not_of(" \t\r\n") != std::string::npos;
}

bool isHeader(std::string const& line)
{
    std::size_t const colon = line.find(':');
    std::size_t const space = firstSpace(line);
    return colon != std::string::npos && colon >= 1 && space != std::string::npos && colon < space;
}

/// How many of the pieces are the header block.
std::size_t headerPieces(Lines const& all)
{
    bool seen = false, atStart = true;
    for (std::size_t i = 0; i < all.size(); ++i) {
        if (atStart && !(seen && continues(all[i])) && !isHeader(all[i])) return i;
        seen = true;
        atStart = isWhole(all[i]);
    }
    return all.size();
}

std::string ended(std::string line, bool crlf)
{
    bool const lineFeed = line.back() == '\n';
    if (lineFeed) line.pop_back();
    bool const carriageReturn = !line.empty() && line.back() == '\r';
    if (carriageReturn) line.pop_back();
    return line + (crlf ? "\r\n" : "\n");
}

Lines linesOf(MediaIn& in, std::size_t longest)
{
    Lines all;
    for (;;) {
        Buffer line(static_cast<int>(longest), 0); // a new one, since an added line end makes it grow
        in.readline(line);
        if (line.isEmpty()) return all;
        all.push_back(Writes::take(line));
    }
}

std::string blocksOf(MediaIn& in, Writes::Choice choice)
{
    std::string all;
    for (;;) {
        std::vector<uchar_t> bytes(1 + choice.below(40));
        int const n = in.read(bytes.data(), static_cast<uint_t>(bytes.size()));
        all.append(bytes.begin(), bytes.begin() + n);
        if (n < static_cast<int>(bytes.size())) return all;
    }
}

std::string joined(Lines const& lines)
{
    std::string all;
    for (std::string const& line : lines) all += line;
    return all;
}

template <class Adapter, class... Rest>
void check(std::string const& text, std::function<Lines(Lines const&)> const& view, Writes::Choice choice, Rest... rest)
{
    std::size_t const longest = 1 + choice.below(60);
    BufferMediaIn source(text), again(text);
    Adapter byLine(source, rest...), byBlock(again, rest...);
    Writes::require(linesOf(byLine, longest) == view(pieces(text, longest)));
    // Block reads fetch their lines into a buffer that no line here fills.
    Writes::require(blocksOf(byBlock, choice) == joined(view(Writes::lines(text))));
}

Lines headersOf(Lines const& all)
{
    return Lines(all.begin(), all.begin() + static_cast<std::ptrdiff_t>(headerPieces(all)));
}

Lines bodyOf(Lines const& all)
{
    return Lines(all.begin() + static_cast<std::ptrdiff_t>(headerPieces(all)), all.end());
}

template <bool crlf> Lines endedLines(Lines const& all)
{
    Lines lines;
    for (std::string const& line : all) lines.push_back(ended(line, crlf));
    return lines;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t n)
{
    if (n < 1 || n > 1000) return 0;
    Writes::Choice const choice{data[0]};
    std::string const text(reinterpret_cast<char const*>(data) + 1, n - 1);
    check<MailHeaderMedia>(text, headersOf, choice);
    check<MailBodyMedia>(text, bodyOf, choice);
    check<CRLFConvertor>(text, endedLines<true>, choice, CRLFConvertor::ToCRLF);
    check<CRLFConvertor>(text, endedLines<false>, choice, CRLFConvertor::ToLF);
    return 0;
}
