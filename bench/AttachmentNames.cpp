// What the name of an attachment costs: from a plain parameter, an encoded word, and RFC 2231 segments.
#include <benchmark/benchmark.h>

#include <string>

#include <velmara/Velmara.h>

using namespace Velmara;

namespace {

void nameOf(benchmark::State& state, std::string const& value)
{
    for (auto _ : state) {
        ContentDisposition const disposition(value);
        benchmark::DoNotOptimize(&disposition.utf8fileName());
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * value.size()));
}
BENCHMARK_CAPTURE(nameOf, none, "inline");
BENCHMARK_CAPTURE(nameOf, plain, "attachment; filename=\"invoice 2024-01.pdf\"");
BENCHMARK_CAPTURE(nameOf, encodedWord, "attachment; filename=\"=?UTF-8?Q?=C3=9Cberblick.pdf?=\"");
BENCHMARK_CAPTURE(nameOf, extended, "attachment; filename*=UTF-8''%C3%9Cberblick.pdf");
BENCHMARK_CAPTURE(nameOf, converted, "attachment; filename*=iso-8859-1''%DCberblick.pdf");

/// A name of so many bytes in one extended parameter.
void longName(benchmark::State& state)
{
    nameOf(state, "attachment; filename*=UTF-8''" + std::string(static_cast<size_t>(state.range(0)), 'x'));
}
BENCHMARK(longName)->RangeMultiplier(64)->Range(64, 16 << 20);

/// So many segments of three bytes each: the cost is that of the parameters.
void manySegments(benchmark::State& state)
{
    std::string value = "attachment";
    for (int64_t i = 0; i < state.range(0); ++i) value += "; filename*" + std::to_string(i) + "*=%41";
    nameOf(state, value);
}
BENCHMARK(manySegments)->RangeMultiplier(10)->Range(1, 100000);

} // namespace

BENCHMARK_MAIN();
