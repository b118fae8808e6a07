#pragma once

#include <string_view>

#include <velmara/HtmlDocVisitor.h>
#include <velmara/MediaOut.h>
#include <velmara/Singleton.h>
#include <velmara/StringPattern.h>

namespace Velmara {

class TextHtmlDoc;

/// Makes the plain-text twin of a disclaimer that is kept as HTML: text for people, not for analysis.
///
/// All text is kept, whether it can be seen or not. Lines end at the ends of blocks, of rows, of `br` and
/// of links, with never two line feeds in a row; a `span` and a cell end in a blank. The target of a link
/// stands in parentheses on a line ahead of its text, without the scheme of a "cid:". The character set
/// that a `meta` element declares ahead of the body is told to the output.
class VELMARA_EXPORT HtmlToTxtDisclaimer : public HtmlDocVisitor {
public:
    /// Nothing is asked of the document; it may be null.
    HtmlToTxtDisclaimer(TextHtmlDoc* document, MediaOut const& output);
    ~HtmlToTxtDisclaimer() override;

    void text(_xmlNode const* node) override;
    void meta(_xmlNode const* node) override;
    void href(_xmlNode const* node) override;
    void image(_xmlNode const* node) override;
    void form(_xmlNode const* node) override;
    /// Nothing: lines end where elements end.
    void ignore(_xmlNode const* node) override;
    void background(_xmlNode const* node) override;
    void endTag(_xmlNode const* node) override;
    /// Ends the output.
    void done() override;

private:
    enum Ending { Blank, LineFeed, OtherText };
    void write(std::string_view bytes);
    void writeJoined(std::string_view text);

    MediaOut m_output;
    Ending m_last = OtherText; // what the output ends with
};

/// The name of the attribute whose link is written: "href".
class VELMARA_EXPORT DisclaimerHrefAttributePatterns : public Singleton<DisclaimerHrefAttributePatterns>,
                                                       public StringPattern {
public:
    DisclaimerHrefAttributePatterns();
    ~DisclaimerHrefAttributePatterns() override;
};

} // namespace Velmara
