// What a decoded body costs when it is read: by blocks, by lines and written out, up to 1 GB and for
// lines of any length. "peakKB" is what the reading held at most beyond what it began with.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <string>
#include <vector>

#include <velmara/Velmara.h>

#include "bench/Allocations.h"

using namespace Velmara;

namespace {

/// One piece of text over and over, up to a length.
class Repeated : public MediaInImpl {
public:
    Repeated(std::string const& piece, size_t length) : m_piece(piece), m_length(length) {}

    bool atEnd() const override { return m_at == m_length; }
    int peek() const override { return atEnd() ? -1 : static_cast<uchar_t>(m_piece[m_at % m_piece.size()]); }
    using MediaInImpl::read;
    int read(uchar_t*, uint_t) override { return 0; }
    void setpos(unsigned long position) override { m_at = std::min(position, m_length); }
    void readline(Buffer& line) override
    {
        line.length(0);
        while (line.length() < line.size() && !atEnd()) {
            size_t const from = m_at % m_piece.size();
            size_t const lineFeed = m_piece.find('\n', from);
            size_t const lineEnd = lineFeed == std::string::npos ? m_piece.size() : lineFeed + 1;
            size_t const n = std::min({lineEnd - from, size_t(line.size() - line.length()), m_length - m_at});
            line.append(reinterpret_cast<uchar_t const*>(m_piece.data() + from), static_cast<uint_t>(n));
            m_at += n;
            if (m_piece[from + n - 1] == '\n') return;
        }
    }

private:
    std::string const m_piece;
    size_t const m_length;
    size_t m_at = 0;
};

std::string lineOf(size_t letters, char const* end)
{
    std::string line;
    while (line.size() < letters) line += "QUJDREVG";
    return line.substr(0, letters) + end;
}

struct Shape {
    char const* name;
    std::string piece;
};

Shape const shapes[] = {
    {"lines of 76", lineOf(76, "\r\n")},
    {"lines of 4", lineOf(4, "\n")},
    {"no line ends", lineOf(4000, "")},
    {"decoded lines of 3", "Cgpc\r\n"},
};

template <class Read> void measure(benchmark::State& state, Read read)
{
    Shape const& shape = shapes[state.range(1)];
    auto const length = static_cast<size_t>(state.range(0));
    state.SetLabel(shape.name);
    unsigned long peak = 0;
    for (auto _ : state) {
        unsigned long const before = Allocations::peak = Allocations::live;
        MediaIn source(new Repeated(shape.piece, length), false);
        MediaIn in = get_decoded(source, ContentEncoding::EncodingBase64, nullptr);
        read(in);
        peak = Allocations::peak - before;
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * length));
    state.counters["peakKB"] = static_cast<double>(peak) / 1024;
}

void byBlocks(benchmark::State& state)
{
    std::vector<uchar_t> block(8192);
    measure(state, [&](MediaIn& in) {
        while (in.read(block.data(), static_cast<uint_t>(block.size())) > 0) benchmark::DoNotOptimize(block.data());
    });
}
BENCHMARK(byBlocks)->ArgsProduct({{4096, 1 << 20, 64 << 20}, {0, 1, 2, 3}});
BENCHMARK(byBlocks)->ArgsProduct({{1 << 30}, {0, 1, 2, 3}})->Iterations(1);

void byLines(benchmark::State& state)
{
    Buffer line(4096, 0);
    measure(state, [&](MediaIn& in) {
        for (in.readline(line); !line.isEmpty(); in.readline(line)) benchmark::DoNotOptimize(line.data());
    });
}
// Without any LF in the decoded text the line is the whole body, and the caller's buffer grows to hold it.
BENCHMARK(byLines)->ArgsProduct({{4096, 1 << 20, 64 << 20}, {0, 3}});

struct Dropping : MediaOutImpl {
    using MediaOutImpl::write;
    void write(uchar_t const* bytes, uint_t) override { benchmark::DoNotOptimize(bytes); }
};

void written(benchmark::State& state)
{
    MediaOut out(new Dropping, false);
    measure(state, [&](MediaIn& in) { in.write(out); });
}
BENCHMARK(written)->ArgsProduct({{1 << 20}, {0, 1, 2}});

} // namespace

BENCHMARK_MAIN();
