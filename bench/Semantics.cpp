// Text descriptors over a list of 200,000 words, and the loading of large lists.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>

#include <sys/resource.h>

#include <velmara/Velmara.h>

namespace {

using namespace Velmara;

std::wstring _word(std::mt19937& random)
{
    std::wstring word(4 + random() % 8, L'a');
    for (wchar_t& c : word) c = static_cast<wchar_t>(L'a' + random() % 26);
    return word;
}

/// A folder with one list; gone with its owner.
class WordList {
public:
    explicit WordList(size_t count) : m_dir("velmara-bench-words")
    {
        std::mt19937 random(1);
        std::filesystem::create_directories(m_dir);
        std::ofstream out(m_dir + "/e2i.idx", std::ios::binary);
        for (size_t i = 0; i < count; ++i) {
            std::wstring const word = _word(random);
            out.write(reinterpret_cast<char const*>(word.c_str()),
                      static_cast<std::streamsize>((word.size() + 1) * sizeof(wchar_t)));
            out << '\n';
        }
    }
    ~WordList() { std::filesystem::remove_all(m_dir); }
    std::string const& dir() const { return m_dir; }

private:
    std::string m_dir;
};

/// 50 lines of 80 characters, every other word from the list.
std::string _text()
{
    std::mt19937 known(1), unknown(2);
    std::string text;
    for (int line = 0; line < 50; ++line) {
        std::string words;
        for (int i = 0; words.size() < 80; ++i)
            for (wchar_t c : _word(i % 2 == 0 ? known : unknown) + L' ') words += static_cast<char>(c);
        text += words.substr(0, 79) + "\n";
    }
    return text;
}

void describeText(benchmark::State& state)
{
    WordList const list(200000);
    Config config;
    config.readDict(list.dir());
    pconfig = &config;
    std::string const text = _text();
    size_t tokens = 0;
    for (auto _ : state) tokens = TD(text, "us-ascii").tokens().size();
    state.counters["tokens"] = static_cast<double>(tokens);
    pconfig = nullptr;
}
BENCHMARK(describeText);

long _peakKilobytes()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

void loadWords(benchmark::State& state)
{
    WordList const list(static_cast<size_t>(state.range(0)));
    long const before = _peakKilobytes();
    for (auto _ : state) {
        auto* config = new Config; // lives to process exit, like that of TD
        config->readDict(list.dir());
        benchmark::DoNotOptimize(config->dictionary(TD::LanguageWestern).words.size());
    }
    state.counters["peakMB"] = static_cast<double>(_peakKilobytes() - before) / 1024;
}
BENCHMARK(loadWords)->Arg(1000000)->Unit(benchmark::kMillisecond)->Iterations(1);

} // namespace

BENCHMARK_MAIN();
