// What it costs to decode header values: without words, with some, and the sizes that must stay linear.
#include <benchmark/benchmark.h>

#include <string>

#include <velmara/Velmara.h>

using namespace Velmara;

namespace {

void toUtf8(benchmark::State& state, std::string const& value)
{
    Buffer out(1024, 0);
    for (auto _ : state) {
        out.length(0);
        stringToUtf8(value, out, nullptr);
        benchmark::DoNotOptimize(out.data());
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * value.size()));
}
BENCHMARK_CAPTURE(toUtf8, plain, "Re: Minutes of the meeting on Thursday");
BENCHMARK_CAPTURE(toUtf8, utf8Word, "Re: =?UTF-8?Q?Gr=C3=BC=C3=9Fe_aus_M=C3=BCnchen?=");
BENCHMARK_CAPTURE(toUtf8, latinWord, "Re: =?iso-8859-1?Q?Gr=FC=DFe_aus_M=FCnchen?=");
BENCHMARK_CAPTURE(toUtf8, twoBase64Words, "=?UTF-8?B?w5xiZXJibGljayDDvGJlciBkYXMgZXJzdGU=?= =?UTF-8?B?IFF1YXJ0YWw=?=");

std::string repeated(std::string const& text, int64_t size)
{
    std::string all;
    while (all.size() < static_cast<size_t>(size)) all += text;
    return all;
}

void manyWords(benchmark::State& state)
{
    toUtf8(state, repeated("=?utf-8?q?a?= ", state.range(0)));
}
BENCHMARK(manyWords)->RangeMultiplier(64)->Range(64, 16 << 20);

/// Beginnings of words without one mark between them.
void manyBeginnings(benchmark::State& state)
{
    toUtf8(state, repeated("=?", state.range(0)));
}
BENCHMARK(manyBeginnings)->RangeMultiplier(64)->Range(64, 16 << 20);

void addressList(benchmark::State& state)
{
    std::string const list = repeated("=?UTF-8?Q?J=C3=BCrgen?= <j@a.example>, ", state.range(0));
    for (auto _ : state) benchmark::DoNotOptimize(emailAddressToHtmlEscapedUTF8(list, nullptr));
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * list.size()));
}
BENCHMARK(addressList)->RangeMultiplier(64)->Range(64, 1 << 20);

} // namespace

BENCHMARK_MAIN();
