#pragma once

#include <velmara/Export.h>
#include <velmara/VmaraRefcounted.h>

struct _xmlNode; // libxml2's

namespace Velmara {

/// Receives what a TextHtmlDoc finds in its document; every operation does nothing unless overridden.
/// A node lives no longer than the call. One visitor serves one document, on its thread.
class VELMARA_EXPORT HtmlDocVisitor : virtual public RefImpl {
public:
    ~HtmlDocVisitor() override;

    /// Each text node, hidden ones too: ask the document's isVisible().
    virtual void text(_xmlNode const* node);
    /// Each `meta` element ahead of the first `body`.
    virtual void meta(_xmlNode const* node);
    /// Elements that none of the following is for.
    virtual void node(_xmlNode const* node);
    /// `a`, `area` and `base`.
    virtual void href(_xmlNode const* node);
    /// `embed`, `frame` and `img`.
    virtual void image(_xmlNode const* node);
    virtual void form(_xmlNode const* node);
    /// `br`, `p` and every element of two letters that begins with "h", such as `h1` and `hr`.
    virtual void ignore(_xmlNode const* node);
    /// `body`, `table`, `tr`, `th` and `td`.
    virtual void background(_xmlNode const* node);
    /// Every element, behind the call that is its own.
    virtual void tags(_xmlNode const* node);
    virtual void cdata(_xmlNode const* node);
    virtual void comment(_xmlNode const* node);
    /// The end of every node of any type.
    virtual void endTag(_xmlNode const* node);
    /// Once, when the whole document was walked.
    virtual void done();
};

} // namespace Velmara
