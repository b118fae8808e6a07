#pragma once

#include <list>
#include <string>

#include <velmara/EmailAddress.h>
#include <velmara/TypedHeader.h>

/// Headers that hold mail addresses. A Message-ID and what refers to one are read as addresses too: the
/// text in the brackets has the form of one, and its domain is what tells a reply.
///
/// Values are read leniently (see EmailAddress) at the first question, and reading never fails. Copies
/// share what was read, so a header and its copies stay on one thread. On a null handle the accessors
/// throw HeaderException (code 1).
namespace Velmara {

/// The names, made at the first call.
VELMARA_EXPORT std::string const& fromType();
VELMARA_EXPORT std::string const& replyToType();
VELMARA_EXPORT std::string const& inReplyToType();
VELMARA_EXPORT std::string const& returnPathType();
VELMARA_EXPORT std::string const& messageID();
VELMARA_EXPORT std::string const& toType();
VELMARA_EXPORT std::string const& ccType();
VELMARA_EXPORT std::string const& referencesType();

/// What a header of one address points at.
class VELMARA_EXPORT HeaderWithEmailAddressBaseImpl : public ParsedHeaderImpl, public NonCopyable {
public:
    ~HeaderWithEmailAddressBaseImpl() override;
    /// The first of the value; null without one.
    EmailAddress const& address() const;

private:
    void read() const override;

    mutable EmailAddress m_address; // valid once parsed
};

/// What a header of any number of addresses points at.
class VELMARA_EXPORT HeaderWithEmailAddressListBaseImpl : public ParsedHeaderImpl, public NonCopyable {
public:
    ~HeaderWithEmailAddressListBaseImpl() override;
    /// All of the value.
    std::list<EmailAddress> const& addresses() const;

private:
    void read() const override;

    mutable std::list<EmailAddress> m_addresses; // valid once parsed
};

/// The accessor of the headers of one address.
class VELMARA_EXPORT HeaderWithEmailAddressBase : public Header {
public:
    /// A null handle.
    HeaderWithEmailAddressBase() = default;
    /// Without a name. An empty value leaves the handle null.
    HeaderWithEmailAddressBase(std::string const& value);
    /// By itself it has no name of its own, so it keeps that of whichever header it is given.
    HeaderWithEmailAddressBase(Header const& other);
    HeaderImpl* newImpl() override;
    Header& operator=(Header const& other) override;

    /// The first address of the value; null without one.
    EmailAddress const& address() const;
};

/// The accessor of the headers of any number of addresses.
class VELMARA_EXPORT HeaderWithEmailAddressListBase : public Header {
public:
    /// A null handle.
    HeaderWithEmailAddressListBase() = default;
    /// Without a name. An empty value leaves the handle null.
    HeaderWithEmailAddressListBase(std::string const& value);
    /// By itself it has no name of its own, so it keeps that of whichever header it is given.
    HeaderWithEmailAddressListBase(Header const& other);
    HeaderImpl* newImpl() override;
    Header& operator=(Header const& other) override;

    /// In their order, groups flattened.
    std::list<EmailAddress> const& addresses() const;
};

/// An implementation that differs from others of its kind by its name alone.
template <std::string const& (*name)(), class Base> class VELMARA_EXPORT NamedHeaderImpl : public Base {
public:
    NamedHeaderImpl() { this->type(name()); }
};

/// A header of one address, with the name that the function gives.
template <std::string const& (*name)()> class VELMARA_EXPORT HeaderWithEmailAddress
    : public TypedHeader<HeaderWithEmailAddress<name>, NamedHeaderImpl<name, HeaderWithEmailAddressBaseImpl>,
                         HeaderWithEmailAddressBase> {
    using Shared = TypedHeader<HeaderWithEmailAddress<name>, NamedHeaderImpl<name, HeaderWithEmailAddressBaseImpl>,
                               HeaderWithEmailAddressBase>;

public:
    /// The name that the function gives.
    static std::string const& htype;

    /// A null handle.
    HeaderWithEmailAddress() = default;
    /// An empty value leaves the handle null.
    HeaderWithEmailAddress(std::string const& value) : Shared(value) {}
    /// A null header leaves the handle null; one of another name throws Exception "assign" (code 2).
    HeaderWithEmailAddress(Header const& other) : Shared(other) {}
    using Shared::operator=;
    /// Usable while the program is being loaded as well, when `htype` may not be.
    std::string const& type() const override { return name(); }
};

/// A header of any number of addresses, with the name that the function gives.
template <std::string const& (*name)()> class VELMARA_EXPORT HeaderWithEmailAddressList
    : public TypedHeader<HeaderWithEmailAddressList<name>, NamedHeaderImpl<name, HeaderWithEmailAddressListBaseImpl>,
                         HeaderWithEmailAddressListBase> {
    using Shared =
        TypedHeader<HeaderWithEmailAddressList<name>, NamedHeaderImpl<name, HeaderWithEmailAddressListBaseImpl>,
                    HeaderWithEmailAddressListBase>;

public:
    /// The name that the function gives.
    static std::string const& htype;

    /// A null handle.
    HeaderWithEmailAddressList() = default;
    /// An empty value leaves the handle null.
    HeaderWithEmailAddressList(std::string const& value) : Shared(value) {}
    /// A null header leaves the handle null; one of another name throws Exception "assign" (code 2).
    HeaderWithEmailAddressList(Header const& other) : Shared(other) {}
    using Shared::operator=;
    /// Usable while the program is being loaded as well, when `htype` may not be.
    std::string const& type() const override { return name(); }
};

template <std::string const& (*name)()> std::string const& HeaderWithEmailAddress<name>::htype = name();
template <std::string const& (*name)()> std::string const& HeaderWithEmailAddressList<name>::htype = name();

using HeaderFrom = HeaderWithEmailAddress<fromType>;             // "From"
using HeaderReplyTo = HeaderWithEmailAddress<replyToType>;       // "Reply-To"
using HeaderInReplyTo = HeaderWithEmailAddress<inReplyToType>;   // "In-Reply-To"
using HeaderReturnPath = HeaderWithEmailAddress<returnPathType>; // "Return-Path"
using HeaderMessageId = HeaderWithEmailAddress<messageID>;       // "Message-ID"
using HeaderTo = HeaderWithEmailAddressList<toType>;             // "To"
using HeaderCc = HeaderWithEmailAddressList<ccType>;             // "Cc"
/// "References" as a list with commas, which few mailers write: see References.
using HeaderReferences = HeaderWithEmailAddressList<referencesType>;

} // namespace Velmara
