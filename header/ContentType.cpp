// Reading a content type. The value is cut by its first "/" and then by the first ";" or line end, and
// the rest goes to the reader of parameters. Nothing is trimmed and no token grammar is applied, so
// that every value gives the same texts on every installation: `TEXT/HTML; Charset=UTF-8` is html with
// a charset, `text/plain ; a=b` has the unknown subtype "plain ". A value without any slash is the
// parameter list of a text/plain: mailers send `attachment; name=foo`, and the first name keeps what
// stands ahead of it ("attachment; name").
#include <velmara/ContentType.h>

#include <algorithm>

#include <velmara/StringOperations.h>

#include "header/AttachmentNames.h"
#include "header/MediaTypeOf.h"
#include "header/ParameterReader.h"
#include "header/Scan.h"
#include "runtime/Ascii.h"

namespace Velmara {

namespace {

template <class Code> struct _Name {
    Code code;
    char const* text;
};

constexpr _Name<ContentType::MediaType> _mediaTypes[] = {
    {ContentType::MediaTypeText, "text"},
    {ContentType::MediaTypeImage, "image"},
    {ContentType::MediaTypeAudio, "audio"},
    {ContentType::MediaTypeVideo, "video"},
    {ContentType::MediaTypeApplication, "application"},
    {ContentType::MediaTypeMultipart, "multipart"},
    {ContentType::MediaTypeMessage, "message"},
};

constexpr _Name<ContentType::SubType> _subTypes[] = {
    {ContentType::SubTypeDeliveryStatus, "delivery-status"},
    {ContentType::SubTypeEnriched, "enriched"},
    {ContentType::SubTypeHtml, "html"},
    {ContentType::SubTypePlain, "plain"},
    {ContentType::SubTypeRfc822, "rfc822"},
    {ContentType::SubTypeRichtext, "richtext"},
    {ContentType::SubTypeSgml, "sgml"},
    {ContentType::SubTypeTabSeparatedValues, "tab-separated-values"},
    {ContentType::SubTypeXSetext, "x-setext"},
    {ContentType::SubTypeAlternative, "alternative"},
    {ContentType::SubTypeMixed, "mixed"},
    {ContentType::SubTypeJpeg, "jpeg"}, // the first in the alphabet is the one we print
    {ContentType::SubTypeJpeg, "pjpeg"},
    {ContentType::SubTypeGif, "gif"},
    {ContentType::SubTypePng, "png"},
    {ContentType::SubTypeSigned, "signed"},
    {ContentType::SubTypeEncrypted, "encrypted"},
    {ContentType::SubTypePkcs7Signature, "pkcs7-signature"},
    {ContentType::SubTypePkcs7Mime, "pkcs7-mime"},
    {ContentType::SubTypeXPkcs7Signature, "x-pkcs7-signature"},
    {ContentType::SubTypeXPkcs7Mime, "x-pkcs7-mime"},
    {ContentType::SubTypePgpSignature, "pgp-signature"},
    {ContentType::SubTypePgpEncrypted, "pgp-encrypted"},
    {ContentType::SubTypePgpKeys, "pgp-keys"},
    {ContentType::SubTypeVeEncrypted, "ve-encrypted"},
    {ContentType::SubTypePdf, "pdf"},
    {ContentType::SubTypeMsword, "msword"},
    {ContentType::SubTypePartial, "partial"},
    {ContentType::SubTypeExternalBody, "external-body"},
    {ContentType::SubTypeDigest, "digest"},
    {ContentType::SubTypeRelated, "related"},
    {ContentType::SubTypeReport, "report"},
    {ContentType::SubTypeOctetStream, "octet-stream"},
    {ContentType::SubTypeXml, "xml"},
    {ContentType::SubTypeZip, "zip"},
    {ContentType::SubTypeTiff, "tiff"},
    {ContentType::SubTypeMpeg, "mpeg"},
    {ContentType::SubTypeVndMsPowerpoint, "vnd.ms-powerpoint"},
    {ContentType::SubTypeVndMsExcel, "vnd.ms-excel"},
    {ContentType::SubTypeCalendar, "calendar"},
    {ContentType::SubTypeIcs, "ics"},
    {ContentType::SubTypeMacBinhex40, "mac-binhex40"},
    {ContentType::SubTypeMsTnef, "ms-tnef"},
};

static_assert(std::size(_mediaTypes) == ContentType::MediaTypeMessage, "each media type has one name");
static_assert(std::size(_subTypes) == ContentType::SubTypeMsTnef + 1, "each subtype has one name, JPEG two");

template <class Code> std::string const* _nameOf(std::map<std::string, Code> const& names, Code code)
{
    for (auto const& entry : names)
        if (entry.second == code) return &entry.first;
    return nullptr;
}

template <class Code> Code _codeOf(std::map<std::string, Code> const& names, std::string const& name)
{
    auto const found = names.find(name);
    return found == names.end() ? Code() : found->second;
}

/// The media type stands from `start` to `slash`.
struct _Place {
    size_t start; // the size of a value without any type
    size_t slash; // npos where the whole value is parameters
};

_Place _placeOfType(std::string const& value)
{
    size_t const none = value.size();
    size_t const start = none < 2 ? none : findFrom(value, 0, [](unsigned char c) { return !isBlank(c); });
    return _Place{start, start == none ? none : value.find('/', start)};
}

std::string _mediatypeText(std::string const& value, _Place place)
{
    if (place.slash == std::string::npos) return "text";
    std::string text;
    copyStringToLower(value, text, place.start, place.slash - place.start);
    return text;
}

} // namespace

ContentType::MediaType mediaTypeOf(std::string const& value)
{
    _Place const place = _placeOfType(value);
    if (place.start == value.size()) return ContentType::MediaTypeUnknown;
    return ContentTypeStringMap::instance().findMediaType(_mediatypeText(value, place));
}

ContentTypeStringMap::ContentTypeStringMap() : m_unknown("MediaTypeUnknown")
{
    for (auto const& name : _mediaTypes) m_mediaTypes[name.text] = name.code;
    for (auto const& name : _subTypes) m_subTypes[name.text] = name.code;
}

ContentTypeStringMap::~ContentTypeStringMap() = default;

std::string const& ContentTypeStringMap::find(ContentType::MediaType type) const
{
    std::string const* name = _nameOf(m_mediaTypes, type);
    return name ? *name : m_unknown;
}

std::string const& ContentTypeStringMap::find(ContentType::SubType type) const
{
    std::string const* name = _nameOf(m_subTypes, type);
    return name ? *name : m_unknown;
}

ContentType::MediaType ContentTypeStringMap::findMediaType(std::string const& name) const
{
    return _codeOf(m_mediaTypes, name);
}

ContentType::SubType ContentTypeStringMap::findSubType(std::string const& name) const
{
    return _codeOf(m_subTypes, name);
}

ContentTypeImpl::ContentTypeImpl()
{
    type(ContentType::htype);
}

ContentTypeImpl::~ContentTypeImpl() = default;

bool ContentTypeImpl::operator==(TypeAndValueImpl const&) const
{
    return false;
}

void ContentTypeImpl::read() const
{
    _Place const place = _placeOfType(m_value);
    if (place.start == m_value.size()) return;
    m_mediatypeText = _mediatypeText(m_value, place);
    ParameterReader parameters(m_value, readSubtype(place.start, place.slash), ParameterNames::LowerCase);
    while (parameters.next()) keep(parameters.name(), parameters.value());
}

/// Gives the index at which the parameters start.
size_t ContentTypeImpl::readSubtype(size_t start, size_t slash) const
{
    if (slash == std::string::npos) {
        m_subtypeText = "plain";
        return start;
    }
    size_t const end = findFrom(m_value, slash + 1, [](unsigned char c) { return c == ';' || isLineEnd(c); });
    copyStringToLower(m_value, m_subtypeText, slash + 1, end - (slash + 1));
    if (end == m_value.size()) closeValue();
    return end + (m_value[end] == '\r' ? 2 : 1);
}

/// Stored headers and what is computed from them have the ";", so everyone has to add it.
void ContentTypeImpl::closeValue() const
{
    std::string closed;
    closed.reserve(m_value.size() + 1); // no more than it needs: a value may be megabytes long
    closed.append(m_value).push_back(';');
    m_value.swap(closed);
}

void ContentTypeImpl::keep(std::string const& name, std::string const& value) const
{
    static char const prefix[] = "charset";
    if (name.compare(0, sizeof prefix - 1, prefix) == 0) m_charset = value;
    m_parameters.emplace_back(name, value);
}

ContentType::MediaType ContentTypeImpl::mediatype() const
{
    parse();
    if (m_mediatype == ContentType::MediaTypeUnknown) m_mediatype = ContentType::stringAsType(m_mediatypeText);
    return m_mediatype;
}

ContentType::SubType ContentTypeImpl::subtype() const
{
    parse();
    if (m_subtype == ContentType::SubTypeUnknown) m_subtype = ContentType::stringAsSubType(m_subtypeText);
    return m_subtype;
}

std::string const& ContentTypeImpl::mediatypeAsString() const
{
    parse();
    return m_mediatypeText;
}

std::string const& ContentTypeImpl::subtypeAsString() const
{
    parse();
    return m_subtypeText;
}

std::list<TypeAndValue> const& ContentTypeImpl::parameters() const
{
    parse();
    return m_parameters;
}

std::string const& ContentTypeImpl::charset() const
{
    parse();
    return m_charset;
}

std::string const& ContentTypeImpl::boundary() const
{
    parse();
    if (!m_boundary.empty()) return m_boundary;
    auto const isBoundary = [](TypeAndValue const& parameter) { return parameter.type() == "boundary"; };
    auto const found = std::find_if(m_parameters.begin(), m_parameters.end(), isBoundary);
    if (found != m_parameters.end()) m_boundary = found->value();
    return m_boundary;
}

std::string const& ContentTypeImpl::utf8name() const
{
    parse();
    // A type whose boundary has been asked for was taken for a multipart, and what names those is no file.
    if (m_utf8name.empty() && m_boundary.empty()) m_utf8name = collectRfc2231Parameter(m_parameters, "name");
    return m_utf8name;
}

ContentType::MediaType ContentType::mediatype() const
{
    if (isNull()) throw HeaderException(__LINE__);
    return impl().mediatype();
}

ContentType::SubType ContentType::subtype() const
{
    if (isNull()) throw HeaderException(__LINE__);
    return impl().subtype();
}

std::string const& ContentType::mediatypeAsString() const
{
    if (isNull()) throw HeaderException(__LINE__);
    return impl().mediatypeAsString();
}

std::string const& ContentType::subtypeAsString() const
{
    if (isNull()) throw HeaderException(__LINE__);
    return impl().subtypeAsString();
}

std::list<TypeAndValue> const& ContentType::parameters() const
{
    if (isNull()) throw HeaderException(__LINE__);
    return impl().parameters();
}

std::string const& ContentType::charset() const
{
    if (isNull()) throw HeaderException(__LINE__);
    return impl().charset();
}

std::string const& ContentType::boundary() const
{
    if (isNull()) throw HeaderException(__LINE__);
    return impl().boundary();
}

std::string const& ContentType::utf8name() const
{
    if (isNull()) throw HeaderException(__LINE__);
    return impl().utf8name();
}

std::string const& ContentType::mediaTypeAsString(MediaType type)
{
    return ContentTypeStringMap::instance().find(type);
}

std::string const& ContentType::subTypeAsString(SubType type)
{
    return ContentTypeStringMap::instance().find(type);
}

ContentType::MediaType ContentType::stringAsType(std::string const& text)
{
    return ContentTypeStringMap::instance().findMediaType(stringToLower(text));
}

ContentType::SubType ContentType::stringAsSubType(std::string const& text)
{
    return ContentTypeStringMap::instance().findSubType(stringToLower(text));
}

bool ContentType::subTypeIsEncrypted(SubType type)
{
    switch (type) {
    case SubTypeEncrypted:
    case SubTypePkcs7Mime:
    case SubTypeXPkcs7Mime:
    case SubTypePgpEncrypted:
    case SubTypePgpKeys:
    case SubTypeVeEncrypted:
        return true;
    default:
        return false;
    }
}

bool ContentType::subTypeIsSigned(SubType type)
{
    switch (type) {
    case SubTypeSigned:
    case SubTypePkcs7Signature:
    case SubTypeXPkcs7Signature:
    case SubTypePgpSignature:
        return true;
    default:
        return false;
    }
}

} // namespace Velmara
