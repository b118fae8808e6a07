#pragma once

#include <list>
#include <map>
#include <string>

#include <velmara/Singleton.h>
#include <velmara/TypedHeader.h>

namespace Velmara {

class ContentTypeImpl;

/// The typed view of a "Content-Type" header (RFC 2045, read forgivingly).
///
/// The value is kept as it came and read once, at the first question. Reading never fails: a value
/// without a slash is text/plain with the whole value as its parameters, one of fewer than two
/// characters has no type, an unknown type has code 0 and keeps its text. "(...)" is ordinary text, a
/// back slash too. A value without anything behind its type gains a ";" when it is read.
///
/// Copies share the value. The first question fills caches even through a const handle, so one
/// ContentType and its copies stay on one thread. On a null handle every accessor throws
/// HeaderException (code 1).
class VELMARA_EXPORT ContentType : public TypedHeader<ContentType, ContentTypeImpl> {
public:
    /// Other programs store these numbers: add at the end, never renumber.
    enum MediaType : int {
        MediaTypeUnknown = 0,
        MediaTypeText = 1,
        MediaTypeImage = 2,
        MediaTypeAudio = 3,
        MediaTypeVideo = 4,
        MediaTypeApplication = 5,
        MediaTypeMultipart = 6,
        MediaTypeMessage = 7
    };

    /// Other programs store these numbers: add at the end, never renumber. A subtype is known by its
    /// text alone: "plain" is 4 under any media type.
    enum SubType : int {
        SubTypeUnknown = 0,
        SubTypeDeliveryStatus = 1,
        SubTypeEnriched = 2,
        SubTypeHtml = 3,
        SubTypePlain = 4,
        SubTypeRfc822 = 5,
        SubTypeRichtext = 6,
        SubTypeSgml = 7,
        SubTypeTabSeparatedValues = 8,
        SubTypeXSetext = 9,
        SubTypeAlternative = 10,
        SubTypeMixed = 11,
        SubTypeJpeg = 12, // "jpeg" and "pjpeg"
        SubTypeGif = 13,
        SubTypePng = 14,
        SubTypeSigned = 15,
        SubTypeEncrypted = 16,
        SubTypePkcs7Signature = 17,
        SubTypePkcs7Mime = 18,
        SubTypeXPkcs7Signature = 19,
        SubTypeXPkcs7Mime = 20,
        SubTypePgpSignature = 21,
        SubTypePgpEncrypted = 22,
        SubTypePgpKeys = 23,
        SubTypeVeEncrypted = 24,
        SubTypePdf = 25,
        SubTypeMsword = 26,
        SubTypePartial = 27,
        SubTypeExternalBody = 28,
        SubTypeDigest = 29,
        SubTypeRelated = 30,
        SubTypeReport = 31,
        SubTypeOctetStream = 32,
        SubTypeXml = 33,
        SubTypeZip = 34,
        SubTypeTiff = 35,
        SubTypeMpeg = 36,
        SubTypeVndMsPowerpoint = 37,
        SubTypeVndMsExcel = 38,
        SubTypeCalendar = 39,
        SubTypeIcs = 40,
        SubTypeMacBinhex40 = 41,
        SubTypeMsTnef = 42
    };

    /// "Content-Type".
    static std::string const htype;

    /// A null handle.
    ContentType() = default;
    /// An empty value leaves the handle null.
    ContentType(std::string const& value) : TypedHeader(value) {}
    /// A null header leaves the handle null; one of another name throws Exception "assign" (code 2).
    ContentType(Header const& other) : TypedHeader(other) {}
    using TypedHeader::operator=;

    /// 0 for a type without a number; mediatypeAsString() still tells what stood there.
    MediaType mediatype() const;
    SubType subtype() const;
    /// The text as it stood, lower-cased and not trimmed: "text/plain ; a=b" gives "plain ".
    std::string const& mediatypeAsString() const;
    std::string const& subtypeAsString() const;
    /// In the order of the value, duplicates kept; names in lower case, values unquoted.
    std::list<TypeAndValue> const& parameters() const;
    /// The last parameter whose name starts with "charset"; "" without one.
    std::string const& charset() const;
    /// The first parameter "boundary"; "" without one.
    std::string const& boundary() const;
    /// The parameter "name" in UTF-8: a plain one, which beats all others and may hold encoded words, or
    /// the segments of RFC 2231 in the order of the value, whatever their numbers say. "" without one,
    /// for an unknown character set, and once `boundary` has found something: containers have no name.
    std::string const& utf8name() const;

    /// The printed form; "MediaTypeUnknown" for a code without one, whichever of the two is asked.
    static std::string const& mediaTypeAsString(MediaType type);
    static std::string const& subTypeAsString(SubType type);
    /// The code of a text in any case, 0 if there is none.
    static MediaType stringAsType(std::string const& text);
    static SubType stringAsSubType(std::string const& text);

    /// Encrypted content; PGP keys count as such.
    static bool subTypeIsEncrypted(SubType type);
    static bool subTypeIsSigned(SubType type);
};

/// What a ContentType points at; the accessors are those of the handle.
class VELMARA_EXPORT ContentTypeImpl : public ParsedHeaderImpl {
public:
    ContentTypeImpl();
    ~ContentTypeImpl() override;

    /// Always false: whole headers are compared through their handles.
    bool operator==(TypeAndValueImpl const& other) const override;

    /// As of ContentType.
    ContentType::MediaType mediatype() const;
    ContentType::SubType subtype() const;
    std::string const& mediatypeAsString() const;
    std::string const& subtypeAsString() const;
    std::list<TypeAndValue> const& parameters() const;
    std::string const& charset() const;
    std::string const& boundary() const;
    std::string const& utf8name() const;

private:
    void read() const override;
    size_t readSubtype(size_t start, size_t slash) const;
    void closeValue() const;
    void keep(std::string const& name, std::string const& value) const;

    // Valid once parsed.
    mutable std::string m_mediatypeText;
    mutable std::string m_subtypeText;
    mutable std::string m_charset;
    mutable std::list<TypeAndValue> m_parameters;

    // Caches of what is derived from those; 0 or empty until found.
    mutable ContentType::MediaType m_mediatype = ContentType::MediaTypeUnknown;
    mutable ContentType::SubType m_subtype = ContentType::SubTypeUnknown;
    mutable std::string m_boundary;
    mutable std::string m_utf8name;
};

/// The names of media types and subtypes and their codes; lookups are exact, in lower case.
class VELMARA_EXPORT ContentTypeStringMap : public Singleton<ContentTypeStringMap> {
public:
    ContentTypeStringMap();
    ~ContentTypeStringMap() override;

    /// The first name in alphabetical order with that code; "MediaTypeUnknown" if there is none, for
    /// subtypes too: stored texts are matched against it.
    std::string const& find(ContentType::MediaType type) const;
    std::string const& find(ContentType::SubType type) const;
    /// The code of that name, 0 if there is none.
    ContentType::MediaType findMediaType(std::string const& name) const;
    ContentType::SubType findSubType(std::string const& name) const;

private:
    std::map<std::string, ContentType::MediaType> m_mediaTypes;
    std::map<std::string, ContentType::SubType> m_subTypes;
    std::string m_unknown;
};

} // namespace Velmara
