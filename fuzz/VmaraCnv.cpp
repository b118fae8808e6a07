// The C interface against one conversion of the whole text, for input and room of any size: nothing is
// lost or doubled, and what is left behind is no more than an unfinished character makes.
#include "fuzz/Writes.h"

#include <cerrno>

#include <velmara/VmaraCnv.h>
#include <velmara/VmaraConv.h>

using namespace Velmara;

namespace {

char const* const charsets[] = {"UTF-8", "GB18030",      "Shift_JIS", "ISO-2022-JP", "EUC-KR",
                                "Big5",  "windows-1251", "KOI8-R",    "UTF-16",      "ISO-8859-6"};

constexpr size_t mostLeft = 24;

/// One call with a room of its own size, so that a write behind it is seen.
std::string call(cVmaraCnv* handle, std::vector<char>& input, size_t& used, size_t room)
{
    std::vector<char> bytes(room);
    char* in = input.data() + used;
    char* out = bytes.data();
    size_t inLeft = input.size() - used, outLeft = room;
    errno = 0;
    int const result = vmaracnv(handle, &in, &inLeft, &out, &outLeft);
    Writes::require(in == input.data() + (input.size() - inLeft) && out == bytes.data() + (room - outLeft));
    Writes::require(result == 0 ? inLeft == 0 : result == -1 && errno == E2BIG && outLeft == 0);
    used = input.size() - inLeft;
    return std::string(bytes.data(), room - outLeft);
}

std::string throughCalls(cVmaraCnv* handle, std::string const& text, Writes::Choice choice)
{
    std::string all;
    for (std::string const& piece : Writes::cut(text, choice)) {
        std::vector<char> input(piece.begin(), piece.end());
        size_t used = 0;
        do {
            all += call(handle, input, used, choice.below(choice.below(2) == 0 ? 8 : 3000));
        } while (used != input.size());
    }
    std::vector<char> none;
    for (size_t used = 0;;) {
        std::string const rest = call(handle, none, used, 64);
        if (rest.empty()) return all;
        all += rest;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t n)
{
    if (n < 2) return 0;
    char const* const from = charsets[data[0] % (sizeof charsets / sizeof *charsets)];
    char const* const to = data[0] % 2 == 0 ? "UTF-8" : "UTF-16LE";
    std::string const text(reinterpret_cast<char const*>(data) + 2, n - 2);
    Buffer out;
    VmaraConv::conv(out, to, from, text.data(), static_cast<uint_t>(text.size()), 0, false, true);
    std::string const expected = Writes::take(out);
    cVmaraCnv* const handle = vmaracnv_open(from, to);
    std::string const got = throughCalls(handle, text, {data[1]});
    vmaracnv_close(handle);
    Writes::require(got.size() <= expected.size() && expected.size() - got.size() <= mostLeft);
    Writes::require(expected.compare(0, got.size(), got) == 0);
    return 0;
}
