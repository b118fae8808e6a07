// What the converter costs a byte of its source, fed line by line into a buffer, and what a short
// header value pays for a conversion of its own; "allocs" is for each line or value.
#include <benchmark/benchmark.h>

#include <random>
#include <string>
#include <vector>

#include <velmara/Velmara.h>

#include "bench/Allocations.h"

using namespace Velmara;

namespace {

/// Lines of words from a range of characters.
std::string text(size_t n, char32_t first, char32_t last)
{
    std::mt19937 random(1);
    std::string utf8;
    auto const letter = [&] {
        char32_t const c = first + random() % (last - first + 1);
        if (c >= 0x800) utf8 += static_cast<char>(0xE0 | c >> 12);
        utf8 += static_cast<char>(c >= 0x800 ? 0x80 | (c >> 6 & 0x3F) : 0xC0 | c >> 6);
        utf8 += static_cast<char>(0x80 | (c & 0x3F));
    };
    while (utf8.size() < n) {
        for (int words = 10; words != 0; --words) {
            for (unsigned letters = 1 + random() % 8; letters != 0; --letters) letter();
            utf8 += ' ';
        }
        utf8.back() = '\n';
    }
    return utf8;
}

std::string cyrillic()
{
    return text(1 << 20, 0x430, 0x44F);
}

std::string latin()
{
    return text(1 << 20, 0xE0, 0xFF);
}

std::string chinese()
{
    return text(1 << 20, 0x4E00, 0x9FA5);
}

std::string kana()
{
    return text(1 << 20, 0x3041, 0x3093);
}

std::string in(char const* charset, std::string const& utf8)
{
    Buffer const out = VmaraConv::fromUtf8(charset, utf8.data(), static_cast<unsigned>(utf8.size()), 0);
    return std::string(reinterpret_cast<char const*>(out.data()), out.length());
}

std::vector<Buffer> linesOf(std::string const& text)
{
    std::vector<Buffer> lines;
    for (size_t at = 0; at < text.size();) {
        size_t const lineFeed = text.find('\n', at);
        size_t const next = lineFeed == std::string::npos ? text.size() : lineFeed + 1;
        lines.emplace_back(text.data() + at, static_cast<unsigned>(next - at), true);
        at = next;
    }
    return lines;
}

void convert(benchmark::State& state, char const* charset, std::string const& utf8, bool force)
{
    std::string const source = in(charset, utf8);
    std::vector<Buffer> const lines = linesOf(source);
    Buffer out(1 << 22, 0);
    unsigned long allocations = 0;
    for (auto _ : state) {
        out.length(0);
        VmaraConv converter(BufferMediaOut(out), charset, "UTF-8", force);
        unsigned long const before = Allocations::calls;
        for (Buffer const& line : lines) converter.write(line);
        allocations += Allocations::calls - before;
        converter.end();
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * source.size()));
    state.counters["allocs"] =
        static_cast<double>(allocations) / static_cast<double>(state.iterations() * lines.size());
}

void headerValue(benchmark::State& state, char const* charset, std::string const& utf8)
{
    std::string const source = in(charset, utf8).substr(0, 40);
    unsigned long const before = Allocations::calls;
    for (auto _ : state) benchmark::DoNotOptimize(VmaraConv::toUtf8(charset, source.data(), 40, 0, true, true));
    state.counters["allocs"] =
        static_cast<double>(Allocations::calls - before) / static_cast<double>(state.iterations());
}

/// A thread keeps eight converters for the next value: with twelve sets in turn each is opened anew.
void setsInTurn(benchmark::State& state)
{
    char const* const names[] = {"windows-1250", "windows-1251", "windows-1252", "windows-1253",
                                 "windows-1254", "windows-1255", "windows-1256", "windows-1257",
                                 "windows-1258", "KOI8-R",       "ISO-8859-2",   "ISO-8859-5"};
    std::string const value(40, 'a');
    size_t turn = 0;
    for (auto _ : state) {
        char const* const name = names[turn++ % static_cast<size_t>(state.range(0))];
        benchmark::DoNotOptimize(VmaraConv::toUtf8(name, value.data(), 40, 0, true, true));
    }
}
BENCHMARK(setsInTurn)->Arg(1)->Arg(8)->Arg(12);

BENCHMARK_CAPTURE(convert, windows1251, "windows-1251", cyrillic(), false);
BENCHMARK_CAPTURE(convert, iso88591, "ISO-8859-1", latin(), false);
BENCHMARK_CAPTURE(convert, gb18030, "GB18030", chinese(), false);
BENCHMARK_CAPTURE(convert, iso2022jp, "ISO-2022-JP", kana(), false);
BENCHMARK_CAPTURE(convert, utf8ForcedCyrillic, "UTF-8", cyrillic(), true);
BENCHMARK_CAPTURE(convert, utf8ForcedChinese, "UTF-8", chinese(), true);
BENCHMARK_CAPTURE(convert, utf8Copied, "UTF-8", cyrillic(), false);
BENCHMARK_CAPTURE(headerValue, gb18030, "GB18030", chinese());
BENCHMARK_CAPTURE(headerValue, iso2022jp, "ISO-2022-JP", kana());
BENCHMARK_CAPTURE(headerValue, iso88591, "ISO-8859-1", latin());

} // namespace

BENCHMARK_MAIN();
