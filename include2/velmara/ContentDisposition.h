#pragma once

#include <list>
#include <map>
#include <string>

#include <velmara/Singleton.h>
#include <velmara/TypedHeader.h>

namespace Velmara {

class ContentDispositionImpl;

/// The typed view of a "Content-Disposition" header (RFC 2183, read forgivingly).
///
/// The value is read once, at the first question. What begins with "inline" is inline; everything else,
/// an unknown word too, is an attachment, and the word is logged. Parameters are read as those of
/// ContentType, but their names keep their case and an LF does not end them.
///
/// Copies share the value, and the first question fills caches even through a const handle, so they
/// stay on one thread. On a null handle every accessor throws HeaderException (code 1).
class VELMARA_EXPORT ContentDisposition : public TypedHeader<ContentDisposition, ContentDispositionImpl> {
public:
    /// Other programs store these numbers: add at the end, never renumber.
    enum FileType : int { FileTypeUnknown = 0, FileTypeAttachment = 1, FileTypeInline = 2 };

    /// "Content-Disposition".
    static std::string const htype;

    /// A null handle.
    ContentDisposition() = default;
    /// An empty value leaves the handle null.
    ContentDisposition(std::string const& value) : TypedHeader(value) {}
    /// A null header leaves the handle null; one of another name throws Exception "assign" (code 2).
    ContentDisposition(Header const& other) : TypedHeader(other) {}
    using TypedHeader::operator=;

    /// 0 for an empty value only.
    FileType fileType() const;
    /// In the order of the value, duplicates kept; names as they stood, values unquoted.
    std::list<TypeAndValue> const& parameters() const;
    /// The parameter "filename", in lower case only, read as ContentType::utf8name reads "name".
    std::string const& utf8fileName() const;

    /// The printed form ("Attachment"); "Unknown" for a code without one.
    static std::string const& dispositionAsString(FileType type);
    /// The code of a whole text in any case, 0 if there is none.
    static FileType stringAsDisposition(std::string const& text);
};

/// What a ContentDisposition points at; the accessors are those of the handle.
class VELMARA_EXPORT ContentDispositionImpl : public ParsedHeaderImpl {
public:
    ContentDispositionImpl();
    ~ContentDispositionImpl() override;

    /// As of ContentDisposition.
    ContentDisposition::FileType fileType() const;
    std::list<TypeAndValue> const& parameters() const;
    std::string const& utf8fileName() const;

private:
    void read() const override;

    // Valid once parsed.
    mutable ContentDisposition::FileType m_fileType = ContentDisposition::FileTypeUnknown;
    mutable std::list<TypeAndValue> m_parameters;

    mutable std::string m_utf8fileName; // empty until found
};

/// The printed forms of the dispositions.
class VELMARA_EXPORT ContentDispositionMapping : public Singleton<ContentDispositionMapping> {
public:
    ContentDispositionMapping();
    ~ContentDispositionMapping() override;

    /// As the class-wide operations of ContentDisposition.
    std::string const& find(ContentDisposition::FileType type) const;
    ContentDisposition::FileType find(std::string const& text) const;

private:
    std::map<ContentDisposition::FileType, std::string> m_names;
};

} // namespace Velmara
