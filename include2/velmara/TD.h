#pragma once

#include <string>
#include <vector>

#include <velmara/Buffer.h>
#include <velmara/MPartAttribute.h>
#include <velmara/VmaraRefcounted.h>

namespace Velmara {

struct dict;

/// A text descriptor: a text, or the sequence of HTML tags of a body, reduced to a short string of
/// dictionary numbers. Two messages that say the same in the same words give the same string, whatever
/// their layout, so it can stand as a semantic signature.
///
/// The charset chooses the language, the language chooses the word list (Config.h), and the language's
/// writing system how the text is cut into words: at blanks, or by matching against the list where
/// there are none. The work is bounded: 50 or 80 lines, 500 characters a line, 600 numbers.
///
/// The process calls s_initConfig() before it makes the first descriptor; without it the word lists
/// are empty, and while they are being loaded some are. Nothing is ever reported: text in an unknown
/// language gives an empty string. A descriptor belongs to one thread, different ones to different
/// threads at once.
class VELMARA_EXPORT TD : virtual public RefImpl, private NonCopyable {
public:
    /// Index of the word lists; stored by other programs, so never given anew.
    enum langID {
        LanguageWestern = 0, // also every charset that is not known
        LanguageArabic = 1,
        LanguageSimplifiedChinese = 2,
        LanguageTraditionalChinese = 3, // uses the list of 2
        LanguageCyrillic = 4,
        LanguageHebrew = 5,
        LanguageJapanese = 6,
        LanguageKorean = 7,
        LanguageThai = 8,    // has no list
        LanguageByScript = 9 // UTF-8: the text decides
    };

    /// Starts the loading of the word lists on a thread of its own, at the first call; returns at once.
    /// True when loading has ended. Safe from any thread.
    static bool s_initConfig();

    /// An empty descriptor, for tags.
    explicit TD(std::string const& charset);
    /// The descriptor of a text, which is UTF-8 whatever `charset` says it once was.
    TD(std::string const& text, std::string const& charset);
    ~TD() override;

    /// Adds the number of an HTML tag; a descriptor of more than 200 numbers takes no more.
    void add(std::string const& tag);

    /// The two ways to cut: at blanks, and by running match against the list. Each stores tokens().
    void getSemantics_1(std::string const& text, dict const& words);
    void getSemantics_2(std::string const& text, dict const& words);

    /// The result: each element is the number of a word or tag.
    std::wstring const& tokens() const { return m_tokens; }
    /// As decided; never LanguageByScript.
    langID language() const { return m_language; }
    /// In lower case.
    std::string const& charset() const { return m_charset; }

private:
    langID m_language;
    std::string m_charset;
    std::wstring m_tokens;
};

/// The descriptors of a message, four at the most: an attribute of its root.
class VELMARA_EXPORT TDProperties : public MPartAttribute {
public:
    /// What comes behind the fourth text is not described.
    static constexpr size_t maxDescriptors = 4;

    TDProperties();
    /// 17.
    MPartAttribute::Type type() const override;
    ~TDProperties() override;

    /// Adds the descriptor of a UTF-8 text, which ends at its first NUL. A buffer without capacity, and
    /// a fifth descriptor, add nothing.
    void addText(Buffer const& text, std::string const& charset);

    /// In the order in which the texts were added.
    std::vector<Ref<TD>>& descriptors() { return m_descriptors; }
    std::vector<Ref<TD>> const& descriptors() const { return m_descriptors; }

private:
    std::vector<Ref<TD>> m_descriptors;
};

} // namespace Velmara
