#pragma once

#include <list>

#include <velmara/EmailAddress.h>
#include <velmara/HeaderContainer.h>
#include <velmara/TypedHeader.h>

namespace Velmara {

class ReferencesImpl;

/// The typed view of a "References" header: the Message-IDs of a thread, separated by white space and
/// read as addresses (see HeaderWithEmailAddress.h). Reading never fails.
///
/// Copies share what was read and stay on one thread. On a null handle `addresses` throws
/// HeaderException (code 1).
class VELMARA_EXPORT References : public TypedHeader<References, ReferencesImpl> {
public:
    /// "References".
    static std::string const htype;

    /// A null handle.
    References() = default;
    /// An empty value leaves the handle null.
    References(std::string const& value) : TypedHeader(value) {}
    /// A null header leaves the handle null; one of another name throws Exception "assign" (code 2).
    References(Header const& other) : TypedHeader(other) {}
    using TypedHeader::operator=;

    /// In their order, the oldest message first.
    std::list<EmailAddress> const& addresses() const;
};

/// What a References points at.
class VELMARA_EXPORT ReferencesImpl : public ParsedHeaderImpl, public NonCopyable {
public:
    ReferencesImpl();
    ~ReferencesImpl() override;

    /// As of References.
    std::list<EmailAddress> const& addresses() const;

private:
    void read() const override;

    mutable std::list<EmailAddress> m_addresses; // valid once parsed
};

/// True if a message replies to mail of the domains that it is addressed to: a domain of "To" or "Cc"
/// stands in the Message-ID of "In-Reply-To" or of "References", letter by letter.
///
/// A bare word ("root") has the empty domain, which is one like others: the mail of hosts that use local
/// names among themselves. Any exception on the way counts as false.
VELMARA_EXPORT bool inReplyToDomainMatch(HeaderContainer const& headers);
/// The same for the domain of this address, whatever the message is addressed to; false for null.
VELMARA_EXPORT bool inReplyToDomainMatch(HeaderContainer const& headers, EmailAddress const& address);

} // namespace Velmara
