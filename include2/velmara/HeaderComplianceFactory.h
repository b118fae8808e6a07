#pragma once

#include <ctime>
#include <list>
#include <memory>
#include <string>

#include <velmara/EmailAddress.h>
#include <velmara/HeaderContainer.h>

namespace Velmara {

/// Finds out which headers a message still needs to be one of RFC 5322, and makes them. The message is
/// never changed: the caller adds what it is given, and takes out what that replaces.
class VELMARA_EXPORT _HeaderComplianceFactory {
public:
    /// Whether a message without "MIME-Version" needs one; false at first.
    void mimeRequired(bool required);
    bool mimeRequired() const;
    /// Whether "Message-Id" and "Date" are made anew for a message that has them; true at first. The
    /// caller then removes the old ones.
    void replace(bool replaced);
    bool replace() const;

    /// Null means now.
    static Header createDate(tm const* time);
    static Header createMessageId(std::string const& host, tm const* time);

    /// Appends what is missing to `out`: "Message-Id" of that host, "Date", "MIME-Version" and
    /// "Return-Path", in this order. The last is the bare address of the sender, "<>" for a null one;
    /// one that is there stays, whatever `replace` says.
    void process(HeaderContainer const& headers, std::list<Header>& out, std::string const& host,
                 EmailAddress const& sender) const;

private:
    bool m_mimeRequired = false;
    bool m_replace = true;
};

/// A shared pointer to one such object: `factory->process(...)`. Copies share its flags.
class VELMARA_EXPORT HeaderComplianceFactory : public std::shared_ptr<_HeaderComplianceFactory> {
public:
    /// Points at nothing, so it must not be used before it is assigned.
    HeaderComplianceFactory() = default;
    /// Points at a new object, whatever the flag says.
    explicit HeaderComplianceFactory(bool);

    /// Whether it points at nothing.
    bool isNull() const { return !get(); }
};

/// An address as it may stand in a header: "Name <address>", the name as an encoded word if it holds
/// 8-bit bytes, which are taken for UTF-8; the bare address without a name; "" for a null one.
///
/// Limits: a name of ASCII alone is not quoted, so one with a comma in it is read as another address.
VELMARA_EXPORT std::string emailAddressAsRfc2047String(EmailAddress const& address);
/// Each address of a list in that form, joined with ", ". What cannot be read leaves no trace.
VELMARA_EXPORT std::string emailAddressAsRfc2047String(std::string const& list);

} // namespace Velmara
