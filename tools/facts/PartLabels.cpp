#include "PartLabels.h"

#include <velmara/ContentDisposition.h>
#include <velmara/ContentEncoding.h>
#include <velmara/EmailAddress.h>
#include <velmara/StringOperations.h>

namespace VelmaraCommand {

using namespace Velmara;

namespace {

void _readType(Header const& header, PartLabels& labels)
{
    ContentType const type(header);
    if (type.isNull()) return;
    labels.mediaType = type.mediatypeAsString() + "/" + type.subtypeAsString();
    labels.charset = type.charset();
    labels.typeName = type.utf8name();
}

void _readDisposition(Header const& header, PartLabels& labels)
{
    ContentDisposition const disposition(header);
    if (disposition.isNull()) return;
    labels.disposition = stringToLower(ContentDisposition::dispositionAsString(disposition.fileType()));
    labels.name = disposition.utf8fileName();
}

} // namespace

PartLabels labelsOf(HeaderContainer const& headers)
{
    PartLabels labels;
    _readType(headers.find(ContentType::htype), labels);
    _readDisposition(headers.find(ContentDisposition::htype), labels);
    if (labels.name.empty()) labels.name = labels.typeName;
    ContentEncoding const encoding(headers.find(ContentEncoding::htype));
    if (!encoding.isNull()) labels.encoding = stringToLower(encoding.value());
    Header const& id = headers.find("Content-ID");
    if (!id.isNull()) labels.contentId = EmailAddress::rfc5322Parse(id.value(), true).address();
    return labels;
}

bool isText(ContentType const& type)
{
    return type.isNull() || type.mediatype() == ContentType::MediaTypeText;
}

bool isHtml(ContentType const& type)
{
    return !type.isNull() && isText(type) && type.subtype() == ContentType::SubTypeHtml;
}

} // namespace VelmaraCommand
