#pragma once

#include <list>
#include <string>

#include <velmara/Export.h>

namespace Velmara {

/// A mail address with the name that stands beside it, or none.
///
/// The two parsers read RFC 5322 with its obsolete forms and UTF-8 (RFC 6532). Comments nest and count
/// as white space; groups are flattened; a source route is dropped; case is kept. Encoded words stay as
/// they stand, whatever is in them. A lenient reader (`lenient` true) also takes what mailers really
/// send: bare words, names full of specials, a ";" between addresses, brackets and quotes without
/// their partner, which hide no address behind them.
///
/// Time is linear in the text, and no nesting deepens the stack.
class VELMARA_EXPORT EmailAddress {
public:
    /// Null.
    EmailAddress() = default;
    /// Taken as they stand; an empty address is null.
    EmailAddress(std::string const& address);
    EmailAddress(std::string const& address, std::string const& displayName);

    /// The first address in the text. Where none can be read: null with `lenient`; else, and for
    /// anything but one well-formed address, Exception (code 5).
    static EmailAddress rfc5322Parse(std::string const& text, bool lenient);
    /// All addresses of a list. Where none can be read: empty with `lenient`; else, and for anything
    /// malformed, Exception (code 5). Empty places between commas are well-formed.
    static std::list<EmailAddress> rfc5322ParseList(std::string const& text, bool lenient);
    /// Cuts at these characters outside quotes and angle brackets and reads one address out of each
    /// piece, leniently. A blank as separator stands for any white space, which a folded header has.
    static std::list<EmailAddress> rfc5322ParseList(std::string const& text, std::string const& separators);
    static std::list<EmailAddress> rfc5322ParseList(std::string const& text, char const* separators);

    /// True without an address, be there a name or not.
    bool isNull() const { return m_address.empty(); }
    /// "local@domain", or a bare word. A quoted local part keeps its quotes.
    std::string const& address() const { return m_address; }
    /// What stands behind the last "@", a literal with its brackets; "" for a bare word.
    std::string const& domain() const { return m_domain; }
    /// The phrase, with quotes and escapes resolved; without one, a comment behind the address.
    std::string const& displayName() const { return m_displayName; }
    /// What the parsers read as this address: "Name <address>", the name quoted where it has to be, or
    /// the address alone; "" for null.
    std::string asString() const;

    /// Address and name, to the byte.
    bool operator==(EmailAddress const& other) const;
    bool operator!=(EmailAddress const& other) const { return !(*this == other); }
    bool operator<(EmailAddress const& other) const;

private:
    std::string m_address; // empty: null
    std::string m_domain;
    std::string m_displayName;
};

} // namespace Velmara
