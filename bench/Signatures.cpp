// What signatures cost: the normaliser on input that never fills its extract, so all of it is read.
#include <benchmark/benchmark.h>

#include <string>

#include <velmara/Velmara.h>

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

} // namespace

BENCHMARK_MAIN();
