// The text normaliser against a plain second reading of its rules, on raw bytes and on text made of
// fragments, in both modes; and with other bytes behind the input, which must not matter.
#include <velmara/htm_txt_hash.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

#include "tests/hash/Fragments.h"
#include "tests/hash/PlainNormaliser.h"

namespace {

struct Result {
    std::string extract;
    long written = -1;

    bool operator==(Result const& other) const { return extract == other.extract && written == other.written; }
};

Result extract(char const* text, size_t n, int mode, int capacity)
{
    char out[256];
    Result result;
    int const length = htm_txt_get_data(text, static_cast<int>(n), mode, out, capacity, &result.written);
    result.extract.assign(out, static_cast<size_t>(length));
    return result;
}

// In a block of its own, so that a look behind the end is seen.
Result extractAlone(std::string const& text, int mode, int capacity)
{
    std::unique_ptr<char[]> block(new char[text.size()]);
    std::memcpy(block.get(), text.data(), text.size());
    return extract(block.get(), text.size(), mode, capacity);
}

void check(std::string const& text, int capacity)
{
    std::string const withTagEnd = text + "-->", withLetter = text + "a;";
    for (int mode : {1, 2}) {
        Result plain;
        plain.extract = PlainNormaliser::extract(text, mode, capacity, plain.written);
        Result const result = extractAlone(text, mode, capacity);
        if (!(result == plain)) std::abort();
        if (!(extract(withTagEnd.data(), text.size(), mode, capacity) == result)) std::abort();
        if (!(extract(withLetter.data(), text.size(), mode, capacity) == result)) std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t n)
{
    if (n == 0) return 0;
    int const capacity = data[0] < 200 ? 256 : data[0] - 200;
    check(std::string(reinterpret_cast<char const*>(data) + 1, n - 1), capacity);
    // All behind the two lines that are set aside is written.
    check((data[0] % 4 == 0 ? "" : "1st\n2nd\n") + textOfFragments(data + 1, n - 1), capacity);
    return 0;
}
