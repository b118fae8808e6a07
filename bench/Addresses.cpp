// Reading address lists, sniffing links and MD5, in bytes per second.
#include <velmara/EmailAddress.h>
#include <velmara/Md5Hasher.h>
#include <velmara/Uri.h>

#include <benchmark/benchmark.h>

#include <string>

using namespace Velmara;

namespace {

void count(benchmark::State& state, size_t bytes)
{
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(bytes));
}

/// Entries in the forms that mailers write.
std::string addressList(size_t entries)
{
    char const* const forms[] = {"Jane Doe <jane.doe@mail.example>", "\"Doe, John\" <john@a.example>", "root@b.example",
                                 "=?utf-8?Q?J=C3=A4n?= <jan@c.example>", "info@d.example (The Office)"};
    std::string list;
    for (size_t i = 0; i < entries; ++i) list += (i ? ",\r\n " : "") + std::string(forms[i % 5]);
    return list;
}

void ListOfAddresses(benchmark::State& state)
{
    std::string const list = addressList(static_cast<size_t>(state.range(0)));
    for (auto _ : state) benchmark::DoNotOptimize(EmailAddress::rfc5322ParseList(list, true));
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * state.range(0));
    count(state, list.size());
}
BENCHMARK(ListOfAddresses)->Arg(1)->Arg(100)->Arg(10000);

/// Prose with a link in each of its lines.
void SniffText(benchmark::State& state)
{
    std::string text;
    while (text.size() < 1000000)
        text += "Please have a look at http://www.a.example/path?q=" + std::to_string(text.size()) +
                ", before Monday: it may be of use to you and to others.\r\n";
    for (auto _ : state) {
        UriContainer found;
        UriSniffer::search(found, text, 0, state.range(0) != 0);
        benchmark::DoNotOptimize(found);
    }
    count(state, text.size());
}
BENCHMARK(SniffText)->ArgName("bareNames")->Arg(0)->Arg(1);

void HostOfLink(benchmark::State& state, std::string const& text)
{
    for (auto _ : state) benchmark::DoNotOptimize(Uri(text).hostname());
    count(state, text.size());
}
BENCHMARK_CAPTURE(HostOfLink, plain, "https://www.a.example/path/to/page.html?query=1");
BENCHMARK_CAPTURE(HostOfLink, international,
                  "https://www.b\xc3\xbc"
                  "cher.example/path/to/page.html?query=1");
BENCHMARK_CAPTURE(HostOfLink, numeric, "http://0xc0.0.01001/path");

void Digest(benchmark::State& state)
{
    std::string const text(static_cast<size_t>(state.range(0)), 'x');
    for (auto _ : state) {
        Md5Hasher hasher;
        hasher.update(reinterpret_cast<unsigned char const*>(text.data()), static_cast<unsigned int>(text.size()));
        hasher.finalize();
        benchmark::DoNotOptimize(hasher.digest());
    }
    count(state, text.size());
}
BENCHMARK(Digest)->RangeMultiplier(16)->Range(64, 16 << 20);

} // namespace

BENCHMARK_MAIN();
