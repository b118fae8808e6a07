#pragma once

#include <string>

#include <velmara/ContentType.h>
#include <velmara/HeaderContainer.h>

namespace VelmaraCommand {

/// What the headers of a part say of its body; "" for what they do not say.
struct PartLabels {
    std::string mediaType, charset, encoding;
    std::string disposition; // "attachment", "inline"
    std::string name;        // of the attachment, decoded; that of Content-Disposition comes first
    std::string typeName;    // the one of Content-Type, which not every mail program prefers alike
    std::string contentId;
};

PartLabels labelsOf(Velmara::HeaderContainer const& headers);

/// What a part is read as; without a "Content-Type" it is text.
bool isText(Velmara::ContentType const& type);
bool isHtml(Velmara::ContentType const& type);

/// That of a text part that declares none.
constexpr char const defaultCharset[] = "us-ascii";

} // namespace VelmaraCommand
