// What the type of a content costs, by the amount that is given: contents that a test finds at
// once, text that nothing finds, and bytes that are full of false starts. And what reading the
// database costs, once for a process.
#include <benchmark/benchmark.h>

#include <memory>
#include <string>

#include <velmara/Exception.h>
#include <velmara/SharedMimeInfo.h>

using namespace Velmara;

namespace {

constexpr char distribution[] = "/usr/share/mime/packages/freedesktop.org.xml";

SharedMimeInfoImpl const& database()
{
    static auto const read = std::make_unique<SharedMimeInfoImpl const>(distribution);
    return *read;
}

std::string filled(std::string const& start, std::string const& unit, size_t bytes)
{
    std::string text = start;
    while (text.size() < bytes) text += unit;
    text.resize(bytes);
    return text;
}

void tell(benchmark::State& state, std::string const& start, std::string const& unit, std::string const& name)
{
    std::string const text = filled(start, unit, static_cast<size_t>(state.range(0)));
    Buffer const data(text.data(), static_cast<unsigned int>(text.size()), false);
    SharedMimeInfoImpl const* types = nullptr;
    try {
        types = &database();
    } catch (Exception const& failure) {
        state.SkipWithError("there is no database: install shared-mime-info");
        return;
    }
    for (auto _ : state) benchmark::DoNotOptimize(&types->mimeType(data, name));
}

#define TELL(caption, start, unit, name) BENCHMARK_CAPTURE(tell, caption, start, unit, name)->Range(64, 64 << 10)

TELL(Pdf, "%PDF-1.4\n", "1 0 obj <</Type /Page>> endobj\n", "");
TELL(ZipUnderAName, "PK\3\4", "word/document.xml", "report.docx");
TELL(Letter, "", "Dear reader, this is a letter that no test knows.\n", "");
TELL(Html, "\n\n\n", "<p>no head, no body</p>\n", "page.html");
TELL(Zeros, "", std::string(64, '\0'), "");
TELL(FalseStarts, "", "<!<?#!%!PK", "a.b.c.d.e.f");

void name(benchmark::State& state)
{
    try {
        for (auto _ : state) benchmark::DoNotOptimize(&database().mimeType(Buffer(), "annual report 2024.tar.gz"));
    } catch (Exception const& failure) {
        state.SkipWithError("there is no database: install shared-mime-info");
    }
}
BENCHMARK(name);

void load(benchmark::State& state)
{
    try {
        for (auto _ : state) SharedMimeInfoImpl const read(distribution);
    } catch (Exception const& failure) {
        state.SkipWithError("there is no database: install shared-mime-info");
    }
}
BENCHMARK(load)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
