#pragma once

#include <string>

#include <velmara/HtmlDocVisitor.h>
#include <velmara/ImageProperties.h>
#include <velmara/Singleton.h>
#include <velmara/StringPattern.h>

namespace Velmara {

class TextHtmlDoc;

/// Records which images an HTML body shows and how many lines of text stand above each: 120 characters
/// to the line, and one more for each `br` and `div`, two for a row of a table. Hidden text counts. A
/// background is no image.
class VELMARA_EXPORT HtmlImageExtract : public HtmlDocVisitor {
public:
    /// Images are added to `properties`, which is not owned, until done() was called. Document and
    /// number are not asked for anything; the document may be null.
    HtmlImageExtract(TextHtmlDoc* document, unsigned long id, ImageProperties* properties);
    ~HtmlImageExtract() override;

    void text(_xmlNode const* node) override;
    void node(_xmlNode const* node) override;
    void image(_xmlNode const* node) override;
    void ignore(_xmlNode const* node) override;
    void background(_xmlNode const* node) override;
    void done() override;

    /// The text since the last break becomes lines, and `lines` more are added. With `dropShort`, fewer
    /// than three characters are dropped and nothing is counted.
    void calcTextLine(int lines, bool dropShort);
    /// Adds an image; a source of fewer than two bytes is none.
    void registerImage(std::string const& source, int width, int height, bool isBackground);
    /// The lines so far.
    int textLineBeforeImag() const { return m_textLines; }

private:
    ImageProperties* m_properties; // not owned, null once done
    int m_textLines = 0;
    int m_textChars = 0;      // not yet counted as lines
    bool m_imageSeen = false; // since there was text
};

/// The names "href", "src" and "background", by which elements are asked whether they have a background image.
class VELMARA_EXPORT HtmlSLinkPatterns : public Singleton<HtmlSLinkPatterns>, public StringPattern {
public:
    HtmlSLinkPatterns();
    ~HtmlSLinkPatterns() override;
};

} // namespace Velmara
