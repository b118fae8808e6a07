#pragma once

#include <map>
#include <string>

#include <velmara/Singleton.h>
#include <velmara/TypedHeader.h>

namespace Velmara {

class ContentEncodingImpl;

/// The typed view of a "Content-Transfer-Encoding" header.
///
/// Its first word in any case is the encoding; comments and what follows are ignored, and an unknown
/// word has code 0. Copies share the value, and questions fill caches even through a const handle, so
/// they stay on one thread. On a null handle every accessor throws HeaderException (code 1).
class VELMARA_EXPORT ContentEncoding : public TypedHeader<ContentEncoding, ContentEncodingImpl> {
public:
    /// Other programs store these numbers: add at the end, never renumber; 6 and 8 stay free.
    enum EncodingType : int {
        EncodingUnknown = 0,
        Encoding7Bit = 1,
        Encoding8Bit = 2,
        EncodingBase64 = 3,
        EncodingQuotedPrintable = 4,
        EncodingBinary = 5,
        EncodingUUEncode = 7,
        EncodingYEnc = 9
    };

    /// "Content-Transfer-Encoding".
    static std::string const htype;

    /// A null handle.
    ContentEncoding() = default;
    /// An empty value leaves the handle null.
    ContentEncoding(std::string const& value) : TypedHeader(value) {}
    /// A null header leaves the handle null; one of another name throws Exception "assign" (code 2).
    ContentEncoding(Header const& other) : TypedHeader(other) {}
    using TypedHeader::operator=;

    /// Ask once and keep the answer: each further question about an unknown word appends that word to
    /// `encodingAsString()` again.
    EncodingType encoding() const;
    /// The word as it stood, in lower case.
    std::string const& encodingAsString() const;

    /// The printed form; "unknown" for a code without one.
    static std::string const& encodingAsString(EncodingType type);
    /// The code of a text in any case, 0 if there is none. What begins with "x-uue" or "x-yenc" is that
    /// encoding ("x-uuencode").
    static EncodingType stringAsEncoding(std::string const& text);
};

/// What a ContentEncoding points at; the accessors are those of the handle.
class VELMARA_EXPORT ContentEncodingImpl : public HeaderImpl {
public:
    ContentEncodingImpl();
    ~ContentEncodingImpl() override;

    /// As of ContentEncoding.
    ContentEncoding::EncodingType encoding() const;
    std::string const& encodingAsString() const;

private:
    mutable ContentEncoding::EncodingType m_encoding = ContentEncoding::EncodingUnknown; // 0 until found
    mutable std::string m_text;                                                          // read with it
};

/// The printed forms of the encodings.
class VELMARA_EXPORT ContentEncodingMapping : public Singleton<ContentEncodingMapping> {
public:
    ContentEncodingMapping();
    ~ContentEncodingMapping() override;

    /// As the class-wide operations of ContentEncoding.
    std::string const& find(ContentEncoding::EncodingType type) const;
    ContentEncoding::EncodingType find(std::string const& text) const;

private:
    std::map<ContentEncoding::EncodingType, std::string> m_names;
};

} // namespace Velmara
