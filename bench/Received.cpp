// What a trace header costs, from its text to its clauses, its hosts and its address.
#include <velmara/Received.h>

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

using namespace Velmara;

namespace {

/// As the common mail servers write them.
std::vector<std::string> typicalValues(size_t n)
{
    char const* const forms[] = {
        "from mx.a.example (mx.a.example [192.0.2.1])\r\n\tby mail.b.example (Postfix) with ESMTPS id 4F2D11C0A2\r\n"
        "\tfor <reader@b.example>; Mon, 1 Jan 2024 00:00:00 +0000 (UTC)",
        "from writer.a.example (unknown [198.51.100.7]) by mx.a.example with ESMTPSA id a1b2c3; "
        "Mon, 1 Jan 2024 00:00:00 +0000",
        "from EXCHANGE.c.example (2001:db8::1) by EDGE.c.example (2001:db8::2) with Microsoft SMTP Server "
        "(version=TLS1_2, cipher=TLS_ECDHE_RSA_WITH_AES_256_GCM_SHA384) id 15.20.1.1; Mon, 1 Jan 2024 00:00:00 +0000",
        "by 2002:a05:6000:1::b with SMTP id x1csp1; Mon, 1 Jan 2024 00:00:00 -0800 (PST)"};
    std::vector<std::string> values;
    for (size_t i = 0; i < n; ++i) values.push_back(forms[i % 4]);
    return values;
}

void TypicalHeaders(benchmark::State& state)
{
    std::vector<std::string> const values = typicalValues(100000);
    for (auto _ : state)
        for (std::string const& value : values) {
            Received const received(value);
            benchmark::DoNotOptimize(received.by().size());
        }
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(values.size()));
}
BENCHMARK(TypicalHeaders)->Unit(benchmark::kMillisecond);

void TypicalHeadersWithTheirHosts(benchmark::State& state)
{
    std::vector<std::string> const values = typicalValues(100000);
    for (auto _ : state)
        for (std::string const& value : values) {
            Received const received(value);
            benchmark::DoNotOptimize(received.address().isNull());
            benchmark::DoNotOptimize(received.by().size());
        }
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(values.size()));
}
BENCHMARK(TypicalHeadersWithTheirHosts)->Unit(benchmark::kMillisecond);

/// One word without white space behind it, of that many bytes.
void LongWord(benchmark::State& state)
{
    std::string const value = "from a " + std::string(static_cast<size_t>(state.range(0)), 'x');
    for (auto _ : state) benchmark::DoNotOptimize(Received(value).from().size());
    state.SetBytesProcessed(state.iterations() * state.range(0));
}
BENCHMARK(LongWord)->RangeMultiplier(64)->Range(64, 16 << 20);

} // namespace

BENCHMARK_MAIN();
