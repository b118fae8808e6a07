// What a message costs: reading lines, the two readers of header blocks, and full walks (every header
// looked at, every body read). VELMARA_MAILS names a folder of mails to walk; without it a generated
// set stands in. Plain memchr over the same bytes, in the same run, tells what the machine gives.
#include <benchmark/benchmark.h>

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include <velmara/Velmara.h>

#include "bench/Inputs.h"

using namespace Velmara;

namespace {

std::string const line = std::string(76, 'x') + "\r\n";
std::string const headers = "Return-Path: <writer@a.example>\r\n"
                            "Received: from mx.a.example (mx.a.example [192.0.2.1])\r\n"
                            "\tby mail.b.example with ESMTPS id 4F2D11C0A2; Mon, 1 Jan 2024 00:00:00 +0000\r\n"
                            "From: \"A. Writer\" <writer@a.example>\r\nTo: reader@b.example\r\n"
                            "Subject: A subject of middling length\r\nDate: Mon, 1 Jan 2024 00:00:00 +0000\r\n"
                            "Message-ID: <20240101000000.a1b2c3@a.example>\r\nMIME-Version: 1.0\r\n";

std::string multipart(std::string const& boundary, std::string const& text)
{
    return "Content-Type: multipart/mixed; boundary=" + boundary + "\r\n\r\n" + text;
}

std::string attachment(size_t lines)
{
    return headers + multipart("b", "--b\r\nContent-Type: text/plain\r\n\r\n" + repeated(20, line) +
                                        "--b\r\nContent-Type: application/octet-stream\r\n\r\n" +
                                        repeated(lines, line) + "--b--\r\n");
}

std::vector<std::string> loadMails()
{
    if (char const* folder = std::getenv("VELMARA_MAILS")) return filesBelow(folder);
    std::vector<std::string> mails;
    for (size_t i = 0; i < 200; ++i) mails.push_back(attachment(i));
    return mails;
}

std::vector<std::string> const& mails()
{
    static std::vector<std::string> const loaded = loadMails();
    return loaded;
}

size_t countLines(std::string const& text)
{
    size_t lines = 0;
    char const* const end = text.data() + text.size();
    for (char const* at = text.data(); at < end; ++lines) {
        void const* found = std::memchr(at, '\n', static_cast<size_t>(end - at));
        at = found ? static_cast<char const*>(found) + 1 : end;
    }
    return lines;
}

/// Looks at every header and reads every body, by line or in blocks.
class Walk : public MimePartVisitor {
public:
    explicit Walk(bool inBlocks) : m_inBlocks(inBlocks), m_buffer(8192, 0) {}

    void visitRfc822Msg(MimeRfc822Msg& part) override { take(part); }
    void visitSkippedPart(MimeSkippedPart& part) override { take(part); }
    void visitPreamble(MimePreamble& part) override { take(part); }
    void visitEpilogue(MimeEpilogue& part) override { take(part); }
    bool visitMPart(MimeRfc822MPart& part) override { return takeHeaders(part); }
    bool visitSPart(MimeRfc822SPart& part) override { return takeHeaders(part); }

    size_t bytes = 0;

private:
    bool takeHeaders(MimePart& part)
    {
        for (Header const& header : part.headers().headers()) bytes += header.type().size() + header.value().size();
        return true;
    }

    void take(MimePart& part)
    {
        takeHeaders(part);
        MediaIn body = part.body(false);
        do {
            if (m_inBlocks)
                body.read(m_buffer, 4096);
            else
                body.readline(m_buffer);
            bytes += m_buffer.length();
        } while (!m_buffer.isEmpty());
    }

    bool const m_inBlocks;
    Buffer m_buffer;
};

size_t walk(MediaIn in, bool inBlocks)
{
    Walk visitor(inBlocks);
    Rfc822Msg::parse(in)->root()->visit(&visitor);
    return visitor.bytes;
}

void setBytes(benchmark::State& state, size_t bytes)
{
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(bytes));
}

// Lines.

std::string const& manyLines()
{
    static std::string const text = repeated(200000, line);
    return text;
}

void memchrLines(benchmark::State& state)
{
    std::string const& text = manyLines();
    for (auto _ : state) benchmark::DoNotOptimize(countLines(text));
    setBytes(state, text.size());
}
BENCHMARK(memchrLines)->Unit(benchmark::kMillisecond);

void readAllLines(MediaIn in)
{
    Buffer buffer(2048, 0);
    do in.readline(buffer);
    while (!buffer.isEmpty());
}

void readlineMemory(benchmark::State& state)
{
    for (auto _ : state) readAllLines(BufferMediaIn(manyLines().data(), manyLines().size()));
    setBytes(state, manyLines().size());
}
BENCHMARK(readlineMemory)->Unit(benchmark::kMillisecond);

void readlineFile(benchmark::State& state)
{
    std::string const path = std::filesystem::temp_directory_path() / ("velmara_bench_" + std::to_string(::getpid()));
    std::ofstream(path, std::ios::binary) << manyLines();
    for (auto _ : state) readAllLines(FileMediaIn(path));
    setBytes(state, manyLines().size());
    std::remove(path.c_str());
}
BENCHMARK(readlineFile)->Unit(benchmark::kMillisecond);

void bufferFind(benchmark::State& state)
{
    std::string const text = std::string(static_cast<size_t>(state.range(0)), 'x') + ':';
    Buffer const buffer(text.data(), static_cast<unsigned int>(text.size()), true);
    for (auto _ : state) benchmark::DoNotOptimize(buffer.find(':', 0));
    setBytes(state, text.size());
}
BENCHMARK(bufferFind)->RangeMultiplier(64)->Range(64, 16 << 20);

// Header blocks.

std::vector<std::string> const& headerBlocks()
{
    static std::vector<std::string> const blocks = [] {
        std::vector<std::string> found;
        for (std::string const& mail : mails()) {
            size_t const end = std::min(mail.find("\n\n"), mail.find("\r\n\r\n"));
            found.push_back(mail.substr(0, end == std::string::npos ? end : end + 4));
        }
        return found;
    }();
    return blocks;
}

void headersByParser(benchmark::State& state)
{
    std::vector<std::string> const& blocks = headerBlocks();
    for (auto _ : state)
        for (std::string const& block : blocks) {
            BufferMediaIn in(block.data(), block.size());
            Rfc822MsgParser parser(in, 100);
            HeaderContainer const read = parser.header();
            benchmark::DoNotOptimize(&read.headers());
        }
    setBytes(state, bytesOf(headerBlocks()));
}
BENCHMARK(headersByParser)->Unit(benchmark::kMillisecond);

void headersByContainer(benchmark::State& state)
{
    for (auto _ : state)
        for (std::string const& block : headerBlocks()) {
            BufferMediaIn in(block.data(), block.size());
            std::list<Header> read;
            try {
                HeaderContainerImpl::parse(in, read);
            } catch (Exception const&) { // a block that begins with blanks alone
            }
            benchmark::DoNotOptimize(&read);
        }
    setBytes(state, bytesOf(headerBlocks()));
}
BENCHMARK(headersByContainer)->Unit(benchmark::kMillisecond);

// Walks.

void memchrMails(benchmark::State& state)
{
    std::vector<std::string> const& texts = mails();
    for (auto _ : state)
        for (std::string const& mail : texts) benchmark::DoNotOptimize(countLines(mail));
    setBytes(state, bytesOf(texts));
}
BENCHMARK(memchrMails)->Unit(benchmark::kMillisecond);

void walkMails(benchmark::State& state, bool inBlocks)
{
    for (auto _ : state)
        for (std::string const& mail : mails())
            benchmark::DoNotOptimize(walk(BufferMediaIn(mail.data(), mail.size()), inBlocks));
    setBytes(state, bytesOf(mails()));
}
BENCHMARK_CAPTURE(walkMails, byLine, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(walkMails, inBlocks, true)->Unit(benchmark::kMillisecond);

std::string const& largeMail()
{
    static std::string const mail = attachment(50000000 / line.size());
    return mail;
}

void memchrLargeMail(benchmark::State& state)
{
    std::string const& mail = largeMail();
    for (auto _ : state) benchmark::DoNotOptimize(countLines(mail));
    setBytes(state, mail.size());
}
BENCHMARK(memchrLargeMail)->Unit(benchmark::kMillisecond);

void walkLargeMail(benchmark::State& state, bool inBlocks)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(walk(BufferMediaIn(largeMail().data(), largeMail().size()), inBlocks));
    setBytes(state, largeMail().size());
}
BENCHMARK_CAPTURE(walkLargeMail, byLine, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(walkLargeMail, inBlocks, true)->Unit(benchmark::kMillisecond);

/// A message that is never in memory: the same text over and over.
class EndlessIn : public MediaInImpl {
public:
    EndlessIn(std::string head, unsigned long size) : m_text(std::move(head)), m_size(size) {}
    bool atEnd() const override { return m_position >= m_size; }
    int peek() const override { return 0; }
    using MediaInImpl::read;
    int read(uchar_t*, uint_t) override { return 0; }
    unsigned long tell() const override { return m_position; }
    void readline(Buffer& buffer) override
    {
        buffer.length(0);
        if (atEnd()) return;
        if (m_at == m_text.size()) {
            m_text = "--b\r\nContent-Type: text/plain\r\n\r\n" + repeated(10000, line);
            m_at = 0;
        }
        size_t const n = m_text.find('\n', m_at) + 1 - m_at;
        buffer.append(reinterpret_cast<uchar_t const*>(m_text.data()) + m_at, static_cast<uint_t>(n));
        m_at += n;
        m_position += n;
    }

private:
    std::string m_text;
    size_t m_at = 0;
    unsigned long const m_size;
    unsigned long m_position = 0;
};

void walkGigabyte(benchmark::State& state)
{
    constexpr unsigned long size = 1ul << 30;
    for (auto _ : state)
        benchmark::DoNotOptimize(walk(MediaIn(new EndlessIn(headers + multipart("b", ""), size), false), true));
    setBytes(state, size);
}
BENCHMARK(walkGigabyte)->Unit(benchmark::kMillisecond)->Iterations(1);

// What must not cost more than its size: each doubles.

void walkText(benchmark::State& state, std::string const& text)
{
    for (auto _ : state) benchmark::DoNotOptimize(walk(BufferMediaIn(text.data(), text.size()), true));
    setBytes(state, text.size());
    state.SetComplexityN(state.range(0));
}

void parts(benchmark::State& state)
{
    walkText(state, multipart("b", repeated(static_cast<size_t>(state.range(0)), "--b\r\n\r\ntext\r\n")));
}
BENCHMARK(parts)->RangeMultiplier(2)->Range(1 << 10, 1 << 16)->Complexity(benchmark::oN);

void partsOfADigest(benchmark::State& state)
{
    auto const n = static_cast<size_t>(state.range(0));
    walkText(state, repeated(n, "A: 1\r\n") + "Content-Type: multipart/digest; boundary=b\r\n\r\n" +
                        repeated(n, "--b\r\n\r\ntext\r\n"));
}
BENCHMARK(partsOfADigest)->RangeMultiplier(2)->Range(1 << 10, 1 << 15)->Complexity(benchmark::oN);

void manyHeaders(benchmark::State& state)
{
    walkText(state, repeated(static_cast<size_t>(state.range(0)), "Name: value\r\n") + "\r\n");
}
BENCHMARK(manyHeaders)->RangeMultiplier(2)->Range(1 << 10, 1 << 16)->Complexity(benchmark::oN);

void foldedLines(benchmark::State& state)
{
    walkText(state, "Name: value\r\n" + repeated(static_cast<size_t>(state.range(0)), "\tvalue\r\n") + "\r\n");
}
BENCHMARK(foldedLines)->RangeMultiplier(2)->Range(1 << 10, 1 << 18)->Complexity(benchmark::oN);

void lengthOfAHeaderLine(benchmark::State& state)
{
    walkText(state, "Name: " + std::string(static_cast<size_t>(state.range(0)), 'x') + "\r\n\r\n");
}
BENCHMARK(lengthOfAHeaderLine)->RangeMultiplier(2)->Range(1 << 16, 1 << 22)->Complexity(benchmark::oN);

void lengthOfALine(benchmark::State& state)
{
    walkText(state, "Name: value\r\n\r\n" + std::string(static_cast<size_t>(state.range(0)), '-'));
}
BENCHMARK(lengthOfALine)->RangeMultiplier(2)->Range(1 << 16, 1 << 22)->Complexity(benchmark::oN);

/// Multiparts within each other; the boundary of one is no prefix of another.
std::string nested(size_t levels)
{
    std::string text;
    for (size_t i = 0; i < levels; ++i) {
        std::string const boundary = "level-" + std::to_string(1000 + i);
        text += multipart(boundary, "--" + boundary + "\r\n");
    }
    return text + "\r\n";
}

void levels(benchmark::State& state)
{
    walkText(state, nested(static_cast<size_t>(state.range(0))));
}
BENCHMARK(levels)->RangeMultiplier(2)->Range(4, 64)->Complexity(benchmark::oN);
BENCHMARK(levels)->Name("levelsBeyondTheLimit")->RangeMultiplier(2)->Range(1 << 12, 1 << 16)->Complexity(benchmark::oN);

/// Lines that look like delimiters until their last byte, with that many multiparts open.
void falseDelimiters(benchmark::State& state)
{
    constexpr size_t lines = 10000;
    std::string const text = nested(static_cast<size_t>(state.range(0))) + repeated(lines, "--level-10\r\n");
    for (auto _ : state) benchmark::DoNotOptimize(walk(BufferMediaIn(text.data(), text.size()), true));
    setBytes(state, text.size());
}
BENCHMARK(falseDelimiters)->Arg(1)->Arg(10)->Arg(100);

} // namespace

BENCHMARK_MAIN();
