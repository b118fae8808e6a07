// What the transfer codecs cost a byte of encoded text, fed line by line as bodies are, and what they
// allocate once their buffers have grown: "allocs" is for each line.
#include <benchmark/benchmark.h>

#include <random>
#include <string>
#include <vector>

#include <velmara/Velmara.h>

#include "bench/Allocations.h"

using namespace Velmara;

namespace {

std::string randomBytes(size_t n)
{
    std::mt19937 random(1);
    std::string bytes(n, '\0');
    for (char& c : bytes) c = static_cast<char>(random());
    return bytes;
}

/// Text of which that share in percent needs an escape.
std::string text(size_t n, unsigned escapes)
{
    std::mt19937 random(2);
    std::string bytes(n, '\0');
    for (char& c : bytes)
        c = static_cast<char>(random() % 100 < escapes ? 0x80 + random() % 0x80
                              : random() % 6           ? 'a' + random() % 26
                                                       : ' ');
    return bytes;
}

/// Long runs of few bytes, as old resource files have them.
std::string runs(size_t n)
{
    std::mt19937 random(3);
    std::string bytes;
    while (bytes.size() < n) bytes.append(1 + random() % 20, static_cast<char>(random() % 7));
    return bytes;
}

template <class Encoder> std::string encoded(std::string const& bytes)
{
    Buffer out;
    Encoder encoder{BufferMediaOut(out)};
    encoder.write(reinterpret_cast<uchar_t const*>(bytes.data()), static_cast<uint_t>(bytes.size()));
    encoder.end();
    return std::string(reinterpret_cast<char const*>(out.data()), out.length());
}

struct Line {
    uchar_t const* bytes;
    uint_t length;
};

std::vector<Line> linesOf(std::string const& text)
{
    std::vector<Line> lines;
    for (size_t at = 0; at < text.size();) {
        size_t const lineFeed = text.find('\n', at);
        size_t const next = lineFeed == std::string::npos ? text.size() : lineFeed + 1;
        lines.push_back({reinterpret_cast<uchar_t const*>(text.data() + at), static_cast<uint_t>(next - at)});
        at = next;
    }
    return lines;
}

template <class Codec> void decode(benchmark::State& state, std::string const& text)
{
    std::vector<Line> const lines = linesOf(text);
    Buffer out(1 << 16, 0);
    unsigned long allocations = 0;
    for (auto _ : state) {
        Codec codec{BufferMediaOut(out)};
        codec.write(lines[0].bytes, lines[0].length);
        unsigned long const before = Allocations::calls;
        for (size_t i = 1; i < lines.size(); ++i) {
            codec.write(lines[i].bytes, lines[i].length);
            if (out.length() > (1 << 15)) out.length(0);
        }
        allocations = Allocations::calls - before;
        codec.end();
        out.length(0);
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * text.size()));
    state.counters["allocs"] = static_cast<double>(allocations) / static_cast<double>(lines.size());
}

size_t size(benchmark::State const& state)
{
    return static_cast<size_t>(state.range(0));
}

void base64(benchmark::State& state)
{
    decode<CodecBase64>(state, encoded<Base64MediaOut>(randomBytes(size(state))));
}
BENCHMARK(base64)->Arg(64)->Arg(4096)->Arg(1 << 20)->Arg(16 << 20);

void quotedPrintable(benchmark::State& state)
{
    decode<CodecQuotedPrintable>(state,
                                 encoded<QuotedPrintableOut>(text(size(state), static_cast<unsigned>(state.range(1)))));
}
BENCHMARK(quotedPrintable)->ArgsProduct({{64, 4096, 1 << 20, 16 << 20}, {0, 6, 80}});

void uuencode(benchmark::State& state)
{
    decode<CodecUUEncode>(state, encoded<UUEncodeOut>(randomBytes(size(state))));
}
BENCHMARK(uuencode)->Arg(4096)->Arg(1 << 20);

void binHex(benchmark::State& state)
{
    decode<CodecBinHex40>(state, encoded<BinHex40Out>(randomBytes(size(state))));
}
BENCHMARK(binHex)->Arg(4096)->Arg(1 << 20);

void binHexRuns(benchmark::State& state)
{
    decode<CodecBinHex40>(state, encoded<BinHex40Out>(runs(size(state))));
}
BENCHMARK(binHexRuns)->Arg(1 << 20);

template <class Encoder> void encode(benchmark::State& state)
{
    std::string const bytes = text(size(state), 6);
    for (auto _ : state) benchmark::DoNotOptimize(encoded<Encoder>(bytes));
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * bytes.size()));
}
BENCHMARK_TEMPLATE(encode, Base64MediaOut)->Arg(1 << 20);
BENCHMARK_TEMPLATE(encode, QuotedPrintableOut)->Arg(1 << 20);
BENCHMARK_TEMPLATE(encode, UUEncodeOut)->Arg(1 << 20);
BENCHMARK_TEMPLATE(encode, BinHex40Out)->Arg(1 << 20);

} // namespace

BENCHMARK_MAIN();
