#pragma once

#include <velmara/HtmlDocVisitor.h>
#include <velmara/MediaOut.h>
#include <velmara/Singleton.h>
#include <velmara/StringPattern.h>

namespace Velmara {

class TextHtmlDoc;
class UriContainer;

/// Writes the text that a reader of an HTML body sees, and collects the body's links.
///
/// A line feed within text becomes a blank; lines end at `br`, `p`, `h1` and their like, which begin a
/// new one if they can be seen, and at the end of a table row. A blank ends every link, be it visible or
/// not. There is nothing between the cells of a row, and nothing at the end of a `div`.
///
/// Links are the values of "href", "action", "src" and "background" of links, images, forms and tables,
/// and URIs in the first 2048 bytes of the source. A value that is no URI with a host is searched for
/// one. The character set that a `meta` element declares ahead of the body is told to the output.
class VELMARA_EXPORT HtmlTxtExtract : public HtmlDocVisitor {
public:
    /// `document` is the one that the visitor is added to and outlives it; so does `uris`, which may be null: then
    /// no links are looked for. Links are added under `id`.
    HtmlTxtExtract(TextHtmlDoc* document, unsigned long id, MediaOut const& output, UriContainer* uris);
    ~HtmlTxtExtract() override;

    void text(_xmlNode const* node) override;
    void meta(_xmlNode const* node) override;
    void href(_xmlNode const* node) override;
    void image(_xmlNode const* node) override;
    void form(_xmlNode const* node) override;
    void ignore(_xmlNode const* node) override;
    void background(_xmlNode const* node) override;
    void endTag(_xmlNode const* node) override;
    /// Ends the output, and looks for links in the head of the source.
    void done() override;

private:
    TextHtmlDoc* m_document; // not owned
    unsigned long m_id;
    MediaOut m_output;
    UriContainer* m_uris; // not owned, may be null
};

/// The names of the attributes that hold links: "href", "action", "src" and "background".
class VELMARA_EXPORT HrefAttributePatterns : public Singleton<HrefAttributePatterns>, public StringPattern {
public:
    HrefAttributePatterns();
    ~HrefAttributePatterns() override;
};

} // namespace Velmara
