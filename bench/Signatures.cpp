// What signatures cost: the normaliser on input that never fills its extract, so all of it is read; the
// image walkers when nobody ends the walk; and whole signatures as callers make them.
#include <benchmark/benchmark.h>

#include <string>

#include <velmara/Hasher.h>
#include <velmara/htm_txt_hash.h>
#include <velmara/image_walkers.h>

using namespace Velmara;

namespace {

std::string repeated(std::string const& unit, size_t bytes)
{
    std::string text;
    while (text.size() < bytes) text += unit;
    text.resize(bytes);
    return text;
}

void normalise(benchmark::State& state, std::string const& unit, int mode)
{
    std::string const text = repeated(unit, static_cast<size_t>(state.range(0)));
    char out[256];
    for (auto _ : state)
        benchmark::DoNotOptimize(
            htm_txt_get_data(text.data(), static_cast<int>(text.size()), mode, out, sizeof out, nullptr));
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * state.range(0));
}

constexpr int html = 1;
constexpr int plainText = 2;

#define NORMALISE(name, unit, mode) BENCHMARK_CAPTURE(normalise, name, unit, mode)->Range(64, 16 << 20)

NORMALISE(Tags,
          "<TR>\n<TD class=\"c\" style=\"width: 100%\">\n<IMG src=\"http://www.a.example/b.gif\" "
          "width=\"10\">\n</TD>\n</TR>\n",
          html);
NORMALISE(ShortTags, "<tr><td><b></b></td></tr>", html);
NORMALISE(Comments, "<!-- if there is anything to say, then it is said where nobody sees it -->\n", html);
NORMALISE(Hidden, "<style>.a { color: red; } .b > .c { color: #fff; }\n</style>\n", html);
NORMALISE(Uris, "http://www.a.example/path/to/some/page?with=a&query=string ", plainText);
NORMALISE(OneLine, "words that never end a line so that all of them belong to the first ", plainText);
NORMALISE(OneLineOfHtml, "words that never end a line &nbsp; so that all of them belong to the first ", html);
NORMALISE(Letter, "Dear reader,\nthis is a letter that fills the extract after a few lines of text.\n", plainText);

std::string operator""_b(char const* text, size_t n)
{
    return std::string(text, n);
}

int takeAll(unsigned char const* bytes, int count, void*)
{
    benchmark::DoNotOptimize(bytes);
    return 1 + count;
}

// An image that is a head and then one block over and over.
void walk(benchmark::State& state, int (*walker)(unsigned char const*, int, image_data_callback, void*),
          std::string const& head, std::string const& block)
{
    std::string const image = head + repeated(block, static_cast<size_t>(state.range(0)));
    auto const bytes = reinterpret_cast<unsigned char const*>(image.data());
    for (auto _ : state) benchmark::DoNotOptimize(walker(bytes, static_cast<int>(image.size()), takeAll, nullptr));
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(image.size()));
}

#define WALK(name, walker, head, block) BENCHMARK_CAPTURE(walk, name, walker, head, block)->Range(4096, 16 << 20)

WALK(JpgSegments, process_jpg, "\xff\xd8", "\xff\xe0\x01\x00"_b + std::string(254, 'c'));
WALK(JpgFillBytes, process_jpg, "\xff\xd8", "\xff");
WALK(GifBlocks, process_gif, "GIF89awwhh\0bp,xxyywwhh\0c"_b, "\xff" + std::string(255, 'p'));
WALK(GifTinyBlocks, process_gif, "GIF89awwhh\0bp,xxyywwhh\0c"_b, "\1p");
WALK(PngChunks, process_png, "\x89PNG\r\n\x1a\n", "\0\0\x10\0IDAT"_b + std::string(4096, 'p') + "crc.");

void sign(benchmark::State& state, Hasher::DataType type, std::string const& body)
{
    Buffer const data(body.data(), static_cast<unsigned int>(body.size()), true);
    for (auto _ : state) {
        Hasher hasher = type == Hasher::DataBinary ? Hasher(BinaryHasher())
                        : type == Hasher::DataGif  ? Hasher(ImageHasher(type))
                                                   : Hasher(TextHasher(type));
        hasher.process(data, data.length());
        benchmark::DoNotOptimize(hasher.digest());
    }
}

BENCHMARK_CAPTURE(sign, Letter, Hasher::DataText,
                  repeated("Dear reader,\nthis is a letter that fills the extract soon enough.\n", 12288));
BENCHMARK_CAPTURE(sign, Page, Hasher::DataHtml,
                  "<html><head><title>t</title><style>" + repeated(".a { color: red; }\n", 20000) + "</style><body>" +
                      repeated("<p>this is a page that <b>fills</b> the extract soon enough</p>\n", 20000));
BENCHMARK_CAPTURE(sign, Gif, Hasher::DataGif,
                  "GIF89awwhh\0bp,xxyywwhh\0c"_b + repeated("\xff" + std::string(255, 'p'), 32768));
BENCHMARK_CAPTURE(sign, Binary, Hasher::DataBinary, std::string(4096, 'b'));

} // namespace

BENCHMARK_MAIN();
