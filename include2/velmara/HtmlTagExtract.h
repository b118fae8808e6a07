#pragma once

#include <string>

#include <velmara/HtmlDocVisitor.h>
#include <velmara/TD.h>

namespace Velmara {

/// Feeds the names of the elements and attributes of an HTML body, in their order, into a descriptor:
/// two bodies of the same build give the same string, whatever they say. `br` and `span` are left out
/// with their attributes, for editors strew them; values are never taken.
class VELMARA_EXPORT HtmlTagExtract : public HtmlDocVisitor {
public:
    /// Adds a new descriptor of that character set to `properties`. With four there already, nothing is
    /// added and the visitor does nothing.
    HtmlTagExtract(TDProperties* properties, std::string const& charset);
    ~HtmlTagExtract() override;

    void tags(_xmlNode const* node) override;

private:
    Ref<TD> m_tokens; // null where there was no room
};

} // namespace Velmara
