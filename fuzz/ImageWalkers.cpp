// The image walkers against a plain second reading of their rules, on raw bytes and on images made of
// blocks; pieces must lie inside the input.
#include <velmara/image_walkers.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "tests/hash/ImagePieces.h"
#include "tests/hash/PlainImageWalkers.h"

namespace {

struct Kind {
    int (*walker)(unsigned char const*, int, image_data_callback, void*);
    int (*plain)(std::string, plainwalk::Take const&);
    std::string (*make)(std::string);
};

constexpr Kind kinds[] = {{process_jpg, plainwalk::jpg, imagepieces::jpg},
                          {process_gif, plainwalk::gif, imagepieces::gif},
                          {process_png, plainwalk::png, imagepieces::png}};

struct Collector {
    unsigned char const* begin;
    unsigned char const* end;
    size_t wanted;
    std::vector<std::string> pieces;
};

int collect(unsigned char const* bytes, int count, void* context)
{
    Collector& collector = *static_cast<Collector*>(context);
    if (bytes < collector.begin || bytes > collector.end || count < 0 || count > collector.end - bytes) std::abort();
    collector.pieces.emplace_back(reinterpret_cast<char const*>(bytes), static_cast<size_t>(count));
    return collector.pieces.size() < collector.wanted;
}

void check(Kind const& kind, std::string const& image, size_t wanted)
{
    std::vector<std::string> expected;
    int const code = kind.plain(image, [&](std::string const& piece) {
        expected.push_back(piece);
        return expected.size() < wanted;
    });
    std::unique_ptr<unsigned char[]> block(new unsigned char[image.size()]);
    std::memcpy(block.get(), image.data(), image.size());
    Collector collector = {block.get(), block.get() + image.size(), wanted, {}};
    if (kind.walker(block.get(), static_cast<int>(image.size()), collect, &collector) != code) std::abort();
    if (collector.pieces != expected) std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t n)
{
    if (n < 2) return 0;
    size_t const wanted = data[0] < 200 ? SIZE_MAX : data[0] - 200;
    std::string const rest(reinterpret_cast<char const*>(data) + 2, n - 2);
    for (Kind const& kind : kinds) {
        check(kind, rest, wanted);
        check(kind, imagepieces::cut(kind.make(rest), data[1]), wanted);
    }
    return 0;
}
