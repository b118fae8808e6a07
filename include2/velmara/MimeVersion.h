#pragma once

#include <string>

#include <velmara/TypedHeader.h>

namespace Velmara {

class MimeVersionImpl;

/// The typed view of a "MIME-Version" header: its first three characters, whatever they are.
///
/// Copies share the value and stay on one thread. On a null handle `version` throws HeaderException
/// (code 1).
class VELMARA_EXPORT MimeVersion : public TypedHeader<MimeVersion, MimeVersionImpl> {
public:
    /// "MIME-Version".
    static std::string const htype;

    /// A null handle.
    MimeVersion() = default;
    /// An empty value leaves the handle null.
    MimeVersion(std::string const& value) : TypedHeader(value) {}
    /// A null header leaves the handle null; one of another name throws Exception "assign" (code 2).
    MimeVersion(Header const& other) : TypedHeader(other) {}
    using TypedHeader::operator=;

    /// "1.0" for "1.0 (comment)"; fewer characters if the value has fewer.
    std::string version() const;
};

/// What a MimeVersion points at.
class VELMARA_EXPORT MimeVersionImpl : public HeaderImpl {
public:
    MimeVersionImpl();
    ~MimeVersionImpl() override;

    /// Always false: whole headers are compared through their handles.
    bool operator==(TypeAndValueImpl const& other) const override;

    /// As of MimeVersion.
    std::string version() const;
};

} // namespace Velmara
