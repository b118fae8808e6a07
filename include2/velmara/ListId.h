#pragma once

#include <velmara/HostName.h>
#include <velmara/TypedHeader.h>

namespace Velmara {

class ListIdImpl;

/// The typed view of a "List-Id" header (RFC 2919): the name in its first angle brackets. What people
/// read, outside of them, is ignored.
///
/// Copies share what was read and stay on one thread. On a null handle `domain` throws HeaderException
/// (code 1).
class VELMARA_EXPORT ListId : public TypedHeader<ListId, ListIdImpl> {
public:
    /// "List-Id".
    static std::string const htype;

    /// A null handle.
    ListId() = default;
    /// An empty value leaves the handle null.
    ListId(std::string const& value) : TypedHeader(value) {}
    /// A null header leaves the handle null; one of another name throws Exception "assign" (code 2).
    ListId(Header const& other) : TypedHeader(other) {}
    using TypedHeader::operator=;

    /// Null where there are no brackets or they hold no well-formed host name.
    HostName const& domain() const;
};

/// What a ListId points at.
class VELMARA_EXPORT ListIdImpl : public ParsedHeaderImpl, public NonCopyable {
public:
    ListIdImpl();
    ~ListIdImpl() override;

    /// As of ListId.
    HostName const& domain() const;

private:
    void read() const override;

    mutable HostName m_domain; // valid once parsed
};

} // namespace Velmara
