#include <velmara/ContentEncoding.h>

#include <velmara/StringOperations.h>

#include "header/CodeNames.h"
#include "header/Scan.h"
#include "runtime/Ascii.h"

namespace Velmara {

namespace {

/// Mailers write "x-uuencode", "x-uue" and more: the beginning tells the encoding.
bool _isKnownByItsBeginning(ContentEncoding::EncodingType type)
{
    return type == ContentEncoding::EncodingUUEncode || type == ContentEncoding::EncodingYEnc;
}

} // namespace

ContentEncodingMapping::ContentEncodingMapping()
    : m_names{{ContentEncoding::EncodingUnknown, "unknown"},
              {ContentEncoding::Encoding7Bit, "7bit"},
              {ContentEncoding::Encoding8Bit, "8bit"},
              {ContentEncoding::EncodingBase64, "base64"},
              {ContentEncoding::EncodingQuotedPrintable, "quoted-printable"},
              {ContentEncoding::EncodingBinary, "binary"},
              {ContentEncoding::EncodingUUEncode, "x-uue"},
              {ContentEncoding::EncodingYEnc, "x-yenc"}}
{}

ContentEncodingMapping::~ContentEncodingMapping() = default;

std::string const& ContentEncodingMapping::find(ContentEncoding::EncodingType type) const
{
    return CodeNames::nameOf(m_names, type);
}

ContentEncoding::EncodingType ContentEncodingMapping::find(std::string const& text) const
{
    return CodeNames::codeOf(m_names, [&](ContentEncoding::EncodingType type, std::string const& name) {
        size_t const compared = _isKnownByItsBeginning(type) ? name.size() : 0; // 0: all
        return stringCompareNoCase(text, name, static_cast<unsigned int>(compared));
    });
}

ContentEncodingImpl::ContentEncodingImpl()
{
    type(ContentEncoding::htype);
}

ContentEncodingImpl::~ContentEncodingImpl() = default;

ContentEncoding::EncodingType ContentEncodingImpl::encoding() const
{
    if (m_value.empty() || m_encoding != ContentEncoding::EncodingUnknown) return m_encoding;
    size_t const start = findFrom(m_value, 0, [](unsigned char c) { return !isCSpace(c); });
    size_t const end = findFrom(m_value, start, isCSpace);
    // An unknown word is appended with each question: stored texts show it as often as it was asked for.
    copyStringToLower(m_value, m_text, start, end - start);
    m_encoding = ContentEncoding::stringAsEncoding(m_text);
    return m_encoding;
}

std::string const& ContentEncodingImpl::encodingAsString() const
{
    if (m_text.empty()) encoding();
    return m_text;
}

ContentEncoding::EncodingType ContentEncoding::encoding() const
{
    if (isNull()) throw HeaderException(__LINE__);
    return impl().encoding();
}

std::string const& ContentEncoding::encodingAsString() const
{
    if (isNull()) throw HeaderException(__LINE__);
    return impl().encodingAsString();
}

std::string const& ContentEncoding::encodingAsString(EncodingType type)
{
    return ContentEncodingMapping::instance().find(type);
}

ContentEncoding::EncodingType ContentEncoding::stringAsEncoding(std::string const& text)
{
    return ContentEncodingMapping::instance().find(text);
}

} // namespace Velmara
