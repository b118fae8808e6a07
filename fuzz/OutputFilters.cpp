// The filters for line ends against a short plain reading of their rules, write by write. The filter into
// UTF-8 against a converter of its own for each name it is told: cuts do not matter, and what a replaced
// converter still held is lost.
#include "fuzz/Writes.h"

#include <iterator>

#include <velmara/VmaraConv.h>

#include "tests/support/Collected.h"

using namespace Velmara;

namespace {

Pieces plainCrLf(std::string const& text)
{
    Pieces pieces;
    std::string run;
    for (char c : text) {
        if (c != '\r') {
            run += c;
            continue;
        }
        pieces.push_back(run);
        run.clear();
    }
    if (!run.empty()) pieces.push_back(run);
    return pieces;
}

Pieces plainLfCrLf(std::string const& text)
{
    Pieces pieces;
    std::string run;
    for (char c : text) {
        if (c != '\n') {
            run += c;
            continue;
        }
        bool const behindCr = !run.empty() && run.back() == '\r';
        if (!run.empty()) pieces.push_back(run);
        if (!behindCr) pieces.push_back("\r\n");
        run.clear();
    }
    if (!run.empty()) pieces.push_back(run);
    return pieces;
}

template <class Filter> void check(Writes::Pieces const& writes, Pieces (*plain)(std::string const&))
{
    Collected out;
    Filter filter(out.media());
    for (std::string const& piece : writes) {
        Writes::write(filter, piece);
        Writes::require(out.takePieces() == plain(piece));
    }
    filter.end();
    Writes::require(out.takePieces().empty() && out.ends() == 1);
}

char const* const names[] = {"utf-8", "iso-8859-1", "ISO-8859-1", "Shift_JIS", "GB18030", "iso-2022-jp", "x-none", ""};

/// A run of writes in one character set.
struct Run {
    std::string name;
    Writes::Pieces writes;
};

/// What its own converter makes of a run; of the last one it is ended as well.
std::string converted(Run const& run, bool last)
{
    Buffer out;
    std::string bytes;
    {
        VmaraConv converter(BufferMediaOut(out), run.name, "UTF-8", false);
        for (std::string const& piece : run.writes) Writes::write(converter, piece);
        if (!last) bytes = Writes::take(out);
    }
    return last ? Writes::take(out) : bytes;
}

void checkUtf8(Writes::Pieces const& pieces, Writes::Choice choice)
{
    std::vector<Run> runs{{"iso-8859-1", {}}};
    Collected out;
    {
        FilterUTF8MediaOut filter(out.media());
        for (std::string const& piece : pieces) {
            if (choice.below(8) == 0) {
                std::string const name = names[choice.below(std::size(names))];
                filter.characterSet(name);
                Writes::require(out.characterSets().back() == name);
                if (!name.empty() && name != runs.back().name) runs.push_back({name, {}});
            }
            Writes::write(filter, piece);
            if (!piece.empty()) runs.back().writes.push_back(piece);
        }
    }
    std::string expected;
    for (Run const& run : runs)
        if (!run.writes.empty()) expected += converted(run, &run == &runs.back());
    Writes::require(out.take() == expected);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t n)
{
    if (n < 1) return 0;
    std::string const text(reinterpret_cast<char const*>(data) + 1, n - 1);
    Writes::Pieces const pieces = Writes::cut(text, {data[0]});
    check<FilterCRLFMediaOut>(pieces, plainCrLf);
    check<FilterLFCRLFMediaOut>(pieces, plainLfCrLf);
    checkUtf8(pieces, {data[0]});
    return 0;
}
