// What headers cost: reading a block, finding a header in it, and taking a content type apart.
#include <benchmark/benchmark.h>

#include <string>

#include <velmara/Velmara.h>

using namespace Velmara;

namespace {

std::string const block = "Return-Path: <list-bounces@lists.a.example>\r\n"
                          "Received: from mx.a.example (mx.a.example [192.0.2.1])\r\n"
                          "\tby mail.b.example (Postfix) with ESMTPS id 4F2D11C0A2\r\n"
                          "\tfor <reader@b.example>; Mon, 1 Jan 2024 00:00:00 +0000 (UTC)\r\n"
                          "Received: from writer.a.example (unknown [198.51.100.7])\r\n"
                          "\tby mx.a.example with ESMTPSA id a1b2c3; Mon, 1 Jan 2024 00:00:00 +0000\r\n"
                          "From: \"A. Writer\" <writer@a.example>\r\n"
                          "To: reader@b.example\r\n"
                          "Subject: =?UTF-8?Q?A_subject_of_middling_length?=\r\n"
                          "Date: Mon, 1 Jan 2024 00:00:00 +0000\r\n"
                          "Message-ID: <20240101000000.a1b2c3@writer.a.example>\r\n"
                          "MIME-Version: 1.0\r\n"
                          "Content-Type: multipart/alternative;\r\n"
                          "\tboundary=\"----=_Part_1234_567890.1704067200000\"; charset=UTF-8\r\n"
                          "\r\n";

void readBlock(benchmark::State& state)
{
    for (auto _ : state) {
        BufferMediaIn in(block.data(), block.size());
        HeaderContainer const headers(in);
        benchmark::DoNotOptimize(&headers.headers());
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * block.size()));
}
BENCHMARK(readBlock);

void readBlockAndContentType(benchmark::State& state)
{
    for (auto _ : state) {
        BufferMediaIn in(block.data(), block.size());
        HeaderContainer const headers(in);
        ContentType const type(headers.find(ContentType::htype));
        benchmark::DoNotOptimize(&type.charset());
        benchmark::DoNotOptimize(&type.boundary());
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * block.size()));
}
BENCHMARK(readBlockAndContentType);

void findLast(benchmark::State& state)
{
    BufferMediaIn in(block.data(), block.size());
    HeaderContainer const headers(in);
    for (auto _ : state) benchmark::DoNotOptimize(&headers.find(ContentType::htype));
}
BENCHMARK(findLast);

/// One header of that many bytes, delivered in pieces.
void readLongValue(benchmark::State& state)
{
    std::string const text = "A: " + std::string(static_cast<size_t>(state.range(0)), 'x') + "\n\n";
    for (auto _ : state) {
        BufferMediaIn in(text.data(), text.size());
        HeaderContainer const headers(in);
        benchmark::DoNotOptimize(&headers.headers());
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * state.range(0));
}
BENCHMARK(readLongValue)->RangeMultiplier(64)->Range(64, 16 << 20);

void readContentType(benchmark::State& state, std::string const& value)
{
    for (auto _ : state) {
        ContentType const type(value);
        benchmark::DoNotOptimize(type.subtype());
        benchmark::DoNotOptimize(&type.boundary());
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * value.size()));
}
BENCHMARK_CAPTURE(readContentType, plain, "text/plain; charset=UTF-8");
BENCHMARK_CAPTURE(readContentType, multipart, "multipart/mixed; boundary=\"----=_Part_1234_567890.1704067200000\"");
BENCHMARK_CAPTURE(readContentType, noSlash, "attachment; name=foo");

/// A value of that many bytes in one quoted parameter: the cost is that of the text.
void readLongParameter(benchmark::State& state)
{
    readContentType(state, "text/plain; name=\"" + std::string(static_cast<size_t>(state.range(0)), 'x') + "\"");
}
BENCHMARK(readLongParameter)->RangeMultiplier(64)->Range(64, 16 << 20);

/// A value of that many bytes in parameters of four: the cost is that of the parameters.
void readManyParameters(benchmark::State& state)
{
    std::string value = "text/plain;";
    while (value.size() < static_cast<size_t>(state.range(0))) value += "a=b;";
    readContentType(state, value);
}
BENCHMARK(readManyParameters)->RangeMultiplier(64)->Range(64, 1 << 20);

} // namespace

BENCHMARK_MAIN();
