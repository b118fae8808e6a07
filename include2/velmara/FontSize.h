#pragma once

#include <set>
#include <string>

#include <velmara/Export.h>

struct _xmlNode; // libxml2's

namespace Velmara {

/// A font size on HTML's scale of 1 to 7, with 0 for text too small to be read; 0 until parsed.
///
/// This class reads the "size" of a `font` element. Values belong to one thread.
class VELMARA_EXPORT FontSize {
public:
    FontSize() = default;
    FontSize(FontSize const&) = default;
    FontSize& operator=(FontSize const&) = default;
    virtual ~FontSize();

    /// Reads the content of a text node against the current size: "+2" and "-2" are relative, any
    /// other text is the number at its start. The result is 1 to 7, 1 where no number stands, but for a
    /// "+" that adds up to 0, as "+-3" does at a size of 3. Any other node, or none, changes nothing.
    virtual void parse(_xmlNode const* text, unsigned int current);

    /// 0 to 7.
    unsigned int size() const { return m_size; }

protected:
    /// 0 to 7; set by what reads it.
    unsigned int m_size = 0;
};

/// The size that a "font-size" of a style states. The text must be trimmed and in lower case.
class VELMARA_EXPORT CssFontSize : public FontSize {
public:
    /// A size that has a name.
    struct TextSize {
        /// No word, and 0.
        TextSize() = default;
        /// A row as it is given.
        TextSize(std::string const& word, unsigned int value = 0) : name(word), size(value) {}

        /// In lower case, and the size that it stands for; rows are ordered by name.
        std::string name;
        unsigned int size = 0;
        bool operator<(TextSize const& other) const { return name < other.name; }
    };

    ~CssFontSize() override;

    using FontSize::parse;
    /// "smaller" and "larger" are relative, a text with a digit is measured by the number at its start
    /// whatever its unit (5 or less gives 0, so "1em" does; "100%" gives 7, and so does a negative
    /// number), and a word is looked up in sizes(). Any other word leaves the size alone: a new object
    /// keeps 0, and text of an unknown size counts as hidden.
    virtual void parse(std::string const& text, unsigned int current);

    /// The words that are known, without "x-small". One set for the process, only read.
    std::set<TextSize> const& sizes() const;
};

} // namespace Velmara
