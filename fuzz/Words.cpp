// Word files and html.dict with any content: reading them never fails, numbers are those of the order
// of records, and what the index finds is what the map holds.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include <velmara/Config.h>

namespace {

/// A folder in memory whose files stay open: making them anew on a disk costs more than reading them. The
/// tags and the English words have content; of the others, which are empty, one is missing.
class Folder {
public:
    Folder() : m_path("/dev/shm/velmara_fuzz_words_" + std::to_string(getpid()))
    {
        if (mkdir(m_path.c_str(), 0700) != 0) std::abort();
        for (std::string const& name : m_names) {
            int const descriptor = open((m_path + "/" + name).c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
            if (descriptor < 0) std::abort();
            if (name == "html.dict" || name == "e2i.idx")
                m_filled.push_back(descriptor);
            else
                close(descriptor);
        }
        if (m_filled.size() != 2) std::abort();
    }
    ~Folder()
    {
        for (int descriptor : m_filled) close(descriptor);
        for (std::string const& name : m_names) unlink((m_path + "/" + name).c_str());
        rmdir(m_path.c_str());
    }

    std::string const& path() const { return m_path; }

    void fill(unsigned char const* bytes, size_t n) const
    {
        for (int descriptor : m_filled)
            if (ftruncate(descriptor, 0) != 0 || pwrite(descriptor, bytes, n, 0) != static_cast<ssize_t>(n))
                std::abort();
    }

private:
    static std::vector<std::string> allButOne()
    {
        std::vector<std::string> names = Velmara::Config::fileNames();
        names.pop_back();
        return names;
    }

    std::string const m_path;
    std::vector<std::string> const m_names = allButOne();
    std::vector<int> m_filled;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(unsigned char const* data, size_t size)
{
    using namespace Velmara;
    static Folder const folder;
    folder.fill(data, size);
    Config config;
    config.readDict(folder.path());
    dict const& list = config.dictionary(TD::LanguageWestern);
    for (auto const& [word, number] : list.words) {
        unsigned int const* found = list.find(word.data(), word.size());
        if (!found || *found != number || number < 2 || number > list.words.size() + 1) std::abort();
    }
    unsigned int const number = config.getHtmlTagIdx("velmara");
    if (config.getHtmlTagIdx("velmara") != number) std::abort();
    return 0;
}
