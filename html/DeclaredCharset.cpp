#include "html/DeclaredCharset.h"

#include <velmara/ContentType.h>
#include <velmara/MediaOut.h>

#include "html/Node.h"

namespace Velmara {

void tellDeclaredCharset(_xmlNode const* meta, MediaOut& output)
{
    std::string_view equivalent, content;
    HTML::forEachAttribute(meta, [&](xmlAttr const* attribute) {
        std::string_view const value = HTML::text(attribute);
        if (value.empty()) return;
        if (HTML::isNamed(attribute, "http-equiv")) equivalent = value;
        if (HTML::isNamed(attribute, "content")) content = value;
    });
    if (equivalent.empty() || content.empty()) return;
    output.characterSet(ContentType(std::string(content)).charset());
}

} // namespace Velmara
