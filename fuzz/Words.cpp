// Word files and html.dict with any content: reading them never fails, numbers are those of the order
// of records, and what the index finds is what the map holds.
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <string>

#include <unistd.h>

#include <velmara/Config.h>

namespace {

std::string const& _folder()
{
    static std::string const folder = [] {
        char path[] = "/tmp/velmara-fuzz-words-XXXXXX";
        return std::string(mkdtemp(path));
    }();
    return folder;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(unsigned char const* data, size_t size)
{
    using namespace Velmara;
    for (char const* name : {"/html.dict", "/e2i.idx"})
        std::ofstream(_folder() + name, std::ios::binary)
            .write(reinterpret_cast<char const*>(data), static_cast<std::streamsize>(size));
    Config config;
    config.readDict(_folder());
    dict const& list = config.dictionary(TD::LanguageWestern);
    for (auto const& [word, number] : list.words) {
        unsigned int const* found = list.find(word.data(), word.size());
        if (!found || *found != number || number < 2 || number > list.words.size() + 1) std::abort();
    }
    unsigned int const number = config.getHtmlTagIdx("velmara");
    if (config.getHtmlTagIdx("velmara") != number) std::abort();
    return 0;
}
