#include <velmara/Config.h>

#include <array>
#include <atomic>
#include <boost/thread/lock_types.hpp>
#include <boost/thread/shared_mutex.hpp>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <list>
#include <mutex>
#include <new>
#include <optional>
#include <thread>

#include <velmara/Installation.h>
#include <velmara/MediaIn.h>
#include <velmara/StringOperations.h>

#include "semantics/Configuration.h"
#include "semantics/DataFile.h"

namespace Velmara {

Config* pconfig = nullptr;

namespace {

constexpr size_t _maxPath = 255;
constexpr size_t _maxTags = 9999;

using Languages = std::map<std::string, TD::langID>; // names in lower case

Languages const& _languages()
{
    static Languages const* const table = new Languages{
        {"ibm-864", TD::LanguageArabic},
        {"iso-8859-6", TD::LanguageArabic},
        {"macarabic", TD::LanguageArabic},
        {"windows-1256", TD::LanguageArabic},
        {"gb18030", TD::LanguageSimplifiedChinese},
        {"gb2312", TD::LanguageSimplifiedChinese},
        {"gbk", TD::LanguageSimplifiedChinese},
        {"hz", TD::LanguageSimplifiedChinese},
        {"iso-2022-cn", TD::LanguageSimplifiedChinese},
        {"big5", TD::LanguageTraditionalChinese},
        {"big5-hkscs", TD::LanguageTraditionalChinese},
        {"euc-tw", TD::LanguageTraditionalChinese},
        {"koi8-r", TD::LanguageCyrillic},
        {"windows-1251", TD::LanguageCyrillic},
        {"ibm-855", TD::LanguageCyrillic},
        {"iso-8859-5", TD::LanguageCyrillic},
        {"iso-ir-111", TD::LanguageCyrillic},
        {"cp-866", TD::LanguageCyrillic},
        {"maccyrillic", TD::LanguageCyrillic},
        {"koi8-u", TD::LanguageCyrillic},
        {"macukrainian", TD::LanguageCyrillic},
        {"ibm-862", TD::LanguageHebrew},
        {"iso-8859-8-i", TD::LanguageHebrew},
        {"machebrew", TD::LanguageHebrew},
        {"iso-8859-8", TD::LanguageHebrew},
        {"windows-1255", TD::LanguageHebrew},
        {"shift_jis", TD::LanguageJapanese},
        {"euc-jp", TD::LanguageJapanese},
        {"iso-2022-jp", TD::LanguageJapanese},
        {"euc-kr", TD::LanguageKorean},
        {"iso-2022-kr", TD::LanguageKorean},
        {"uhc", TD::LanguageKorean},
        {"johab", TD::LanguageKorean},
        {"iso-8859-11", TD::LanguageThai},
        {"tis-620", TD::LanguageThai},
        {"windows-874", TD::LanguageThai},
        {"utf-8", TD::LanguageByScript},
    };
    return *table;
}

constexpr size_t _slots = 10;

struct WordFile {
    size_t slot;
    char const* name;
};

/// In this order: the numbers of a list depend on it.
constexpr WordFile _wordFiles[] = {
    {TD::LanguageWestern, "xdict-ec-gb.idx"},
    {TD::LanguageWestern, "e2i.idx"},
    {TD::LanguageWestern, "Dico_result_38.xdxf.idx"},
    {TD::LanguageSimplifiedChinese, "xdict-ce-gb.idx"},
    {TD::LanguageSimplifiedChinese, "xdict-ce-big5.idx"},
    {TD::LanguageJapanese, "jmdict-ja-en.idx"},
    {TD::LanguageCyrillic, "rus_eng_full.idx"},
    {TD::LanguageKorean, "KoreanEnglishDic.idx"},
    {TD::LanguageHebrew, "Babylon_Hebrew_English.idx"},
    {TD::LanguageArabic, "ara-eng.index"},
};

constexpr char _tagFile[] = "html.dict";

std::string _pathOf(std::string const& dir, char const* file)
{
    return (dir + "/" + file).substr(0, _maxPath);
}

using Tags = std::map<std::string, unsigned int>;

bool _readNumber(FileMediaIn& file, std::uint32_t& number)
{
    return file.read(reinterpret_cast<uchar_t*>(&number), sizeof number) == static_cast<int>(sizeof number);
}

/// Records of a length, a name and a number, until one cannot be read whole.
Tags _readTags(std::string const& path)
{
    Tags tags;
    std::optional<FileMediaIn> file = openedIfThere(path);
    if (!file) return tags;
    std::uint32_t length = 0, number = 0;
    Buffer name;
    while (_readNumber(*file, length)) {
        // A damaged length must not ask for memory that the file cannot fill: pieces are read as they come.
        name.length(0);
        if (length != 0) file->read(name, length);
        if (name.length() != length || !_readNumber(*file, number)) break;
        if (length != 0) tags[std::string(reinterpret_cast<char const*>(name.data()), length)] = number;
    }
    return tags;
}

} // namespace

struct Config::State {
    boost::shared_mutex lock; // guards tags
    Tags tags;

    // A list is published whole and stays for the life of the process: readers need no lock.
    std::array<std::atomic<dict const*>, _slots> lists{};
    std::mutex reading; // one readDict at a time
    std::list<dict> owned;
    std::atomic<bool> ready{false};
};

Config::Config() : m_state(new State)
{}

Config::~Config() = default;

void Config::readDict(std::string const& dir)
{
    std::lock_guard<std::mutex> const one(m_state->reading);
    Tags tags = _readTags(_pathOf(dir, _tagFile));
    {
        boost::unique_lock<boost::shared_mutex> const exclusive(m_state->lock);
        m_state->tags.swap(tags);
    }
    for (size_t slot = 0; slot < _slots; ++slot) {
        dict list;
        if (dict const* before = m_state->lists[slot]) {
            list.name = before->name;
            list.words = before->words;
        }
        for (WordFile const& file : _wordFiles)
            if (file.slot == slot) list.readIndexed(_pathOf(dir, file.name));
        m_state->owned.push_back(std::move(list));
        m_state->lists[slot].store(&m_state->owned.back(), std::memory_order_release);
    }
}

std::vector<std::string> Config::fileNames()
{
    std::vector<std::string> names{_tagFile};
    for (WordFile const& file : _wordFiles) names.push_back(file.name);
    return names;
}

void Config::initLang()
{
    _languages();
}

unsigned int Config::getHtmlTagIdx(std::string const& name)
{
    Tags& tags = m_state->tags;
    {
        boost::shared_lock<boost::shared_mutex> const shared(m_state->lock);
        auto const found = tags.find(name);
        if (found != tags.end()) return found->second;
        if (tags.size() > _maxTags) return 0;
    }
    boost::unique_lock<boost::shared_mutex> const exclusive(m_state->lock);
    auto const found = tags.find(name); // another thread may have added it
    if (found != tags.end()) return found->second;
    if (tags.size() > _maxTags) return 0;
    auto const number = static_cast<unsigned int>(tags.size() + 1);
    tags.emplace(name, number);
    return number;
}

TD::langID Config::languageOf(std::string const& charset) const
{
    auto const found = _languages().find(stringToLower(charset));
    return found == _languages().end() ? TD::LanguageWestern : found->second;
}

dict const& Config::dictionary(TD::langID language) const
{
    static dict const empty;
    auto const slot = static_cast<size_t>(language);
    dict const* list = slot < _slots ? m_state->lists[slot].load(std::memory_order_acquire) : nullptr;
    return list ? *list : empty;
}

bool Config::ready() const
{
    return m_state->ready.load(std::memory_order_acquire);
}

Config& configuration()
{
    static auto* const empty = new Config;
    Config* const config = __atomic_load_n(&pconfig, __ATOMIC_ACQUIRE);
    return config ? *config : *empty;
}

/// On a thread of its own, where nobody could catch anything. A lack of memory passes, but words that were read
/// before it would keep other numbers: all begins anew.
void Config::load()
{
    while (!tryLoad()) std::this_thread::sleep_for(std::chrono::milliseconds(100));
    m_state->ready.store(true, std::memory_order_release);
}

bool Config::tryLoad()
{
    try {
        readDict(Installation::wordDirectory());
        initLang();
        return true;
    } catch (std::bad_alloc const&) {
        for (auto& list : m_state->lists) list.store(nullptr, std::memory_order_release);
        return false;
    }
}

} // namespace Velmara
