#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include <velmara/TD.h>

namespace Velmara {

/// One word list: words and their numbers. A list can be filled by hand too; what stands in `words`
/// when a text is described is what counts.
struct VELMARA_EXPORT dict {
    std::string name;                           // path of the first file read into it
    std::map<std::wstring, unsigned int> words; // word to number

    /// No words. A copy has words of its own.
    dict();
    dict(dict const& other);
    dict(dict&& other) noexcept;
    dict& operator=(dict other) noexcept;
    ~dict();

    /// Adds the words of a file: records of UTF-32 in native byte order, a 32-bit zero and one LF byte.
    /// A word gets the number of words after it plus one; a word read again takes the new number. A
    /// record without its zero ends at the LF, an empty record is the empty word, and a record of more
    /// than 2047 bytes ends the reading. A missing file adds nothing.
    void read(std::string const& path);
    /// The number of the `length` characters at `word`, null if they are not in the list.
    unsigned int const* find(wchar_t const* word, size_t length) const;

private:
    friend class Config; // nobody can change its lists, so they keep their index
    class Batch;
    using Entry = std::map<std::wstring, unsigned int>::value_type;
    void readIndexed(std::string const& path);
    void reindex(size_t count);
    void index(Entry& entry);
    void place(Entry& entry);
    Entry* entryOf(wchar_t const* word, size_t length) const;

    // Open addressing over the entries of `words`; used while it covers them all.
    std::vector<Entry*> m_slots;
    size_t m_indexed = 0;
};

/// The word lists and tag numbers of the process, for data tools and tests; everyone else goes through
/// TD. Safe from any thread, while it is being loaded too: a list appears whole, when it has been read.
class VELMARA_EXPORT Config : private NonCopyable {
public:
    Config();
    ~Config();

    /// Reads "html.dict" and the word files of a directory, in a fixed order, for numbers depend on it.
    /// Tags are read anew; word lists keep their words, whose numbers change. A path of more than 255
    /// bytes is cut there. What was there before stays in memory: this is for once or twice in the life
    /// of a process.
    void readDict(std::string const& dir);
    /// The names of the files that readDict() looks for in its directory: first that of the tags, then the
    /// word files, those of one list in the order in which they are read. No one of them need be there.
    static std::vector<std::string> fileNames();
    /// Makes the table of charsets; done by itself at the first question too.
    void initLang();

    /// The number of a tag. An unknown one is given the next number for the life of the process, which
    /// may equal one from the file; with 10000 tags known the answer is 0. Case counts.
    unsigned int getHtmlTagIdx(std::string const& name);

    /// The language of a charset in any case; LanguageWestern if it is not known.
    TD::langID languageOf(std::string const& charset) const;
    /// The list under a language's own number; empty for those without one. Traditional Chinese has
    /// none: its texts are read with the list of simplified Chinese, which holds both writings.
    dict const& dictionary(TD::langID language) const;

    /// True when loading by TD::s_initConfig() has ended.
    bool ready() const;

private:
    friend class TD;
    void load();
    bool tryLoad();

    struct State;
    std::unique_ptr<State> m_state;
};

/// The configuration of the process; null until TD::s_initConfig() was called.
extern VELMARA_EXPORT Config* pconfig;

} // namespace Velmara
