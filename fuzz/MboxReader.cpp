// Any file as an mbox: the separators and messages, one behind the other, are the file; every cut of the
// reads and every size of the window gives the same; and each separator but the first is an empty line and
// a line that looks like a message's first. The alphabet of a mail makes lines that nearly do.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "fuzz/Writes.h"
#include "scan/MboxReader.h"
#include "tests/support/CutStream.h"

namespace {

using namespace VelmaraCommand;

void _require(bool claim)
{
    if (!claim) std::abort();
}

/// Separator, message, separator, ..., separator.
std::vector<std::string> _split(std::string const& file, std::size_t most, std::size_t window)
{
    CutStream stream(file, most);
    MboxReader reader(stream, window);
    std::vector<std::string> pieces;
    std::size_t length = 0;
    while (reader.nextMessage()) {
        pieces.push_back(reader.separator());
        length += reader.separator().size();
        _require(reader.offset() == length);
        pieces.emplace_back();
        for (std::string_view bytes = reader.nextBytes(); !bytes.empty(); bytes = reader.nextBytes())
            pieces.back() += bytes;
        length += pieces.back().size();
    }
    pieces.push_back(reader.separator());
    return pieces;
}

void _requireSeparator(std::string separator)
{
    separator.erase(0, separator[0] == '\r' ? 2 : 1);
    _require(looksLikeFromLine(separator));
}

/// Each byte stands for a word of an mbox, or for so long a run that it takes few to fill a window.
std::string _words(unsigned char const* data, std::size_t size)
{
    constexpr char const* words[] = {"\n",
                                     "\r\n",
                                     "\n\nFrom ",
                                     "From ",
                                     "a@b.example",
                                     " ",
                                     "Fri Jul  8 12:08:34 2011",
                                     "Fri, 8 Jul 2011 12:08",
                                     "\n",
                                     "\r",
                                     "\"",
                                     "x",
                                     ">From ",
                                     "Mon",
                                     "\nFrom a ",
                                     "12:08"};
    std::string text;
    for (std::size_t i = 0; i < size; ++i)
        if (data[i] == 0xFF && text.size() < 2000)
            text.append(900, 'x');
        else
            text += words[data[i] % 16];
    return text;
}

void _check(std::string const& file, std::size_t most, std::size_t window)
{
    constexpr std::size_t smallWindow = 2048; // a large one costs more to be made than all the rest
    std::vector<std::string> const whole = _split(file, file.size() + 1, smallWindow);
    std::string all;
    for (std::string const& piece : whole) all += piece;
    _require(all == file);
    for (std::size_t i = 2; i + 1 < whole.size(); i += 2) _requireSeparator(whole[i]);
    _require(_split(file, most, window) == whole);
}

} // namespace

// The first byte chooses raw bytes or words, and how the reads are cut.
extern "C" int LLVMFuzzerTestOneInput(unsigned char const* data, size_t size)
{
    constexpr std::size_t cuts[] = {1, 2, 13, 1001};
    if (size == 0) return 0;
    std::string const raw(reinterpret_cast<char const*>(data + 1), size - 1);
    std::size_t const window = Writes::oneIn(16, data, size) ? 128 << 10 : 2048 + data[0] / 8 * 16;
    _check(data[0] % 2 == 0 ? raw : _words(data + 1, size - 1), cuts[data[0] / 2 % 4], window);
    return 0;
}
