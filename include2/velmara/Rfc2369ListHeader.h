#pragma once

#include <list>
#include <string>

#include <velmara/HeaderWithEmailAddress.h>
#include <velmara/Uri.h>

/// The headers of mailing lists that hold URIs (RFC 2369): "<http://a.example/>, <mailto:b@a.example>".
namespace Velmara {

/// The names, made at the first call.
VELMARA_EXPORT std::string const& listHelpType();
VELMARA_EXPORT std::string const& listPostType();
VELMARA_EXPORT std::string const& listOwnerType();
VELMARA_EXPORT std::string const& listArchiveType();
VELMARA_EXPORT std::string const& listSubscribeType();
VELMARA_EXPORT std::string const& listUnsubscribeType();

/// What such a header points at.
class VELMARA_EXPORT Rfc2369ListHeaderBaseImpl : public HeaderImpl, public NonCopyable {
public:
    ~Rfc2369ListHeaderBaseImpl() override;

    /// Appends the URIs of the value once more.
    void parse() const;
    std::list<Uri> const& uris() const;

private:
    mutable std::list<Uri> m_uris; // of all readings so far
};

/// The accessor of these headers. Copies share what was read and stay on one thread. On a null handle
/// it throws HeaderException (code 1).
class VELMARA_EXPORT Rfc2369ListHeaderBase : public Header {
public:
    /// A null handle.
    Rfc2369ListHeaderBase() = default;
    /// Without a name. An empty value leaves the handle null.
    Rfc2369ListHeaderBase(std::string const& value);
    /// By itself it has no name of its own, so it keeps that of whichever header it is given.
    Rfc2369ListHeaderBase(Header const& other);
    HeaderImpl* newImpl() override;
    Header& operator=(Header const& other) override;

    /// What a UriSniffer finds between each "<" and the next ">", in their order; other text is ignored.
    ///
    /// Limits: each call, through whichever copy, reads the value again and appends the same URIs to the
    /// same list. Ask once.
    std::list<Uri> const& uris() const;
};

/// A header of URIs, with the name that the function gives.
template <std::string const& (*name)()> class VELMARA_EXPORT Rfc2369ListHeader
    : public TypedHeader<Rfc2369ListHeader<name>, NamedHeaderImpl<name, Rfc2369ListHeaderBaseImpl>,
                         Rfc2369ListHeaderBase> {
    using Shared =
        TypedHeader<Rfc2369ListHeader<name>, NamedHeaderImpl<name, Rfc2369ListHeaderBaseImpl>, Rfc2369ListHeaderBase>;

public:
    /// The name that the function gives.
    static std::string const& htype;

    /// A null handle.
    Rfc2369ListHeader() = default;
    /// An empty value leaves the handle null.
    Rfc2369ListHeader(std::string const& value) : Shared(value) {}
    /// A null header leaves the handle null; one of another name throws Exception "assign" (code 2).
    Rfc2369ListHeader(Header const& other) : Shared(other) {}
    using Shared::operator=;
    /// Usable while the program is being loaded as well, when `htype` may not be.
    std::string const& type() const override { return name(); }
};

template <std::string const& (*name)()> std::string const& Rfc2369ListHeader<name>::htype = name();

using HeaderListHelp = Rfc2369ListHeader<listHelpType>;               // "List-Help"
using HeaderListPost = Rfc2369ListHeader<listPostType>;               // "List-Post"
using HeaderListOwner = Rfc2369ListHeader<listOwnerType>;             // "List-Owner"
using HeaderListArchive = Rfc2369ListHeader<listArchiveType>;         // "List-Archive"
using HeaderListSubscribe = Rfc2369ListHeader<listSubscribeType>;     // "List-Subscribe"
using HeaderListUnsubscribe = Rfc2369ListHeader<listUnsubscribeType>; // "List-Unsubscribe"

} // namespace Velmara
