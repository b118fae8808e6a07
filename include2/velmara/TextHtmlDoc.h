#pragma once

#include <string>
#include <vector>

#include <velmara/Buffer.h>
#include <velmara/HtmlDocVisitor.h>
#include <velmara/HtmlParser.h>
#include <velmara/MediaIn.h>
#include <velmara/MediaOut.h>
#include <velmara/RgbColour.h>
#include <velmara/Singleton.h>
#include <velmara/StringPattern.h>

namespace Velmara {

/// An HTML body that tells of each piece of its text whether a reader would see it.
///
/// Bytes are written into it, `end` parses them, and the visitors get what is found in document order.
/// Text is hidden when its colour cannot be told from the background or its font size is 0. What an
/// element sets stays in force beyond its end until another one sets it anew: nothing goes back at an
/// end tag. Style sheets are not read, so a `span` with a class or an id has black text of size 3 on
/// white. A style that sets a background without a "color:" ahead of it sets both colours alike and
/// hides the text. Once a size of 0 was seen, the text stays hidden until a colour is set.
///
/// Limits: 150000 bytes are kept, the rest is dropped. See also HTML::Parser.
///
/// One document serves one body: construct, add visitors, feed by `write` and `end` or by `parse`.
/// It belongs to one thread. Exceptions of a visitor pass out through `end`.
class VELMARA_EXPORT TextHtmlDoc : public MediaOutImpl, public HTML::Builder {
public:
    /// A foreground on a background.
    class VELMARA_EXPORT Colour {
    public:
        /// Black on black, which cannot be seen.
        Colour() = default;
        /// The two as they are given.
        Colour(RgbColour const& foreground, RgbColour const& background);
        Colour(Colour const&) = default;
        Colour& operator=(Colour const&) = default;
        virtual ~Colour();

        /// Whether the eye can tell them apart.
        bool isVisible() const { return foreground.isVisible(background); }

        /// Of the text, and of what lies behind it.
        RgbColour foreground;
        RgbColour background;
    };

    /// With `ignoreEncoding` a character set that the document declares is not heeded.
    explicit TextHtmlDoc(bool ignoreEncoding);
    /// Starts as a copy of `html`.
    TextHtmlDoc(Buffer& html, bool ignoreEncoding);
    ~TextHtmlDoc() override;

    /// Visitors are called in the order in which they were added, ahead of the parse. A null one is none.
    void addVisitor(Ref<HtmlDocVisitor> const& visitor);

    /// Appends to the document.
    using MediaOutImpl::write;
    void write(uchar_t const* data, uint_t size) override;
    /// Parses what was written and tells the visitors that it is done. A second call does so again.
    void end() override;
    /// The character set of what is written; without one, the document's declaration is heeded.
    void characterSet(std::string const& name) override;

    /// Writes all of a stream and ends.
    void parse(MediaIn* in);

    /// Whether text at this point of the walk would be seen.
    bool isVisible();
    /// The colours and the font size, from 0 to 7, in force at this point. Text can be hidden though both
    /// would show it: by a size of 0 since which no colour was set.
    Colour const& presentColour() const { return m_colour; }
    unsigned int presentFontSize() const { return m_fontSize; }
    /// The bytes of the document.
    Buffer const& html() const { return m_html; }

    // The events of the parser, and what they come to for the view of the text and for the visitors.
    void foundTag(_xmlNode const* node) override;
    void endTag(_xmlNode const* node) override;
    void foundText(_xmlNode const* node) override;
    void foundCdata(_xmlNode const* node) override;
    void foundComment(_xmlNode const* node) override;

    /// Finds out what an element is, by its name in any case of letters, and does what it comes to.
    void tag(_xmlNode const* node);
    void span(_xmlNode const* node);
    void font(_xmlNode const* node);
    void body(_xmlNode const* node);
    void meta(_xmlNode const* node);
    void href(_xmlNode const* node);
    void image(_xmlNode const* node);
    void form(_xmlNode const* node);

    /// Takes the colours that the attributes of an element state.
    void colour(_xmlNode const* node);
    /// These set colours, a null one being the present one; they tell whether text is visible then.
    /// With two null pointers nothing is set and the answer is false.
    bool colour(RgbColour const* foreground, RgbColour const* background);
    bool colour(Colour const& both);
    /// Sets the size, and tells whether text is visible then.
    bool fontsize(unsigned int size);
    /// Takes size and colours of a "style", given as the text node of its value. "color:" is found
    /// within "background-color:" too.
    void parseStyle(_xmlNode const* value);

    /// Calls one operation of every visitor.
    void for_each_call(void (HtmlDocVisitor::*operation)(_xmlNode const*), _xmlNode const* node);

private:
    enum Visibility { Unknown, Visible, Hidden };

    void big(_xmlNode const*);
    void small(_xmlNode const*);
    struct Kind;
    static Kind const s_kinds[];

    // The tops of two stacks that only ever grow: what lies below can never be seen again.
    unsigned int m_fontSize = 3;
    Colour m_colour{RgbColour(0, 0, 0), RgbColour(255, 255, 255)};
    Visibility m_visibility = Unknown; // of the colours; a size of 0 leaves Hidden behind
    bool m_bodySeen = false;
    std::vector<Ref<HtmlDocVisitor>> m_visitors;
    Buffer m_html;
    std::string m_charset; // empty until told
    bool m_ignoreEncoding;
};

/// The names of the elements that can have a background: "body", "table", "tr", "th" and "td".
class VELMARA_EXPORT BodyOrTablePattern : public Singleton<BodyOrTablePattern>, public StringPattern {
public:
    BodyOrTablePattern();
    ~BodyOrTablePattern() override;
};

/// The names of the elements that begin a line: "br", "p" and every name of two letters that begins with "h".
class VELMARA_EXPORT ReplaceWithLF : public Singleton<ReplaceWithLF>, public StringPattern {
public:
    ReplaceWithLF();
    ~ReplaceWithLF() override;
};

} // namespace Velmara
