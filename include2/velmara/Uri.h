#pragma once

#include <list>
#include <map>
#include <string>
#include <unordered_set>

#include <velmara/Buffer.h>
#include <velmara/Export.h>
#include <velmara/HostName.h>

namespace Velmara {

/// A link as a message carries it, and the host that it leads to.
///
/// The text is kept as it came. What is asked of it is the host that a browser or mail client would
/// reach, however the sender disguised it: the reading is the one that browsers share (WHATWG), not
/// that of RFC 3986, in which a hostile link looks harmless.
class VELMARA_EXPORT Uri {
public:
    /// Throws Exception (code 5) where no scheme can be read. Control characters count as absent.
    Uri(std::string const& text);

    /// As it was given.
    std::string const& asString() const { return m_text; }
    /// In lower case, without the colon.
    std::string const& scheme() const { return m_scheme; }

    /// The host, in lower case and in ASCII; null where there is none or no browser would find it.
    ///
    ///  - Control characters, tabs and line ends are as if absent; back slashes are slashes.
    ///  - Of "http", "https", "ftp", "ws" and "wss" any number of slashes leads to the host; of "file" two
    ///    do, or four and more (a network share); of other schemes two.
    ///  - User information ends at the last "@" ahead of the path; a port is left out, even a bad one.
    ///  - Percent escapes are decoded; international names go through UTS #46, so look-alike dots,
    ///    digits and letters of full width and invisible characters come out as what they stand for.
    ///  - Numeric IPv4 forms (decimal, octal, hexadecimal, one to four parts) become four decimal parts;
    ///    IPv6 stays in its brackets, compressed. Dots at the end are dropped.
    ///  - Of "mailto" it is the domain of the first address that has one, the "to" field included.
    ///
    /// A name of more than 253 bytes is none. The result read as "http://" + result gives itself.
    HostName hostname() const;

    /// The same text.
    bool operator==(Uri const& other) const { return m_text == other.m_text; }
    bool operator!=(Uri const& other) const { return m_text != other.m_text; }

private:
    std::string m_text;
    std::string m_scheme;
};

/// URIs under numbered identifiers, such as the positions of the parts that they were found in.
class VELMARA_EXPORT UriContainer {
public:
    UriContainer();
    UriContainer(UriContainer const&) = default;
    UriContainer& operator=(UriContainer const&) = default;
    virtual ~UriContainer();

    /// Appends under the current identifier. With `unique` a URI that it already has is dropped.
    void add(Uri const& uri, bool unique);
    /// Selects the identifier that new entries get; 0 at first.
    void currentId(unsigned long id) { m_current = id; }
    unsigned long currentId() const { return m_current; }
    /// In the order in which they were added; empty for an identifier that nothing was added to.
    std::list<Uri> const& hrefs(unsigned long id) const;

private:
    struct Entries {
        std::list<Uri> uris;
        std::unordered_set<std::string> texts; // of all uris
    };
    std::map<unsigned long, Entries> m_entries;
    unsigned long m_current = 0;
};

/// Finds URIs in plain text and in the raw source of documents.
///
/// A URI begins at a scheme: any name and "://", a web scheme and slashes of either kind, or one of the
/// few schemes that need none ("mailto:"); or at "www.". It ends at white space, a control character,
/// "<", ">", a double or a back quote, Unicode spaces, quotes and brackets, or ahead of another URI behind
/// one of ",;|". Punctuation behind it (".,;:!?" and a closing bracket or quote without its partner) is
/// not part of it. A URI inside another one's query belongs to that one.
///
/// Whatever has to have a host but leads to none (see Uri::hostname) is no URI. Time and memory are
/// linear in the text.
class VELMARA_EXPORT UriSniffer {
public:
    /// Adds to `out`, under its current identifier, each URI that this does not have yet. What stands
    /// without a scheme is added with "http://" in front. With `bareNames`, host names without a
    /// scheme count as well: "a.example/x"; names that belong to a mail address do not.
    static void search(UriContainer& out, Buffer const& text, bool bareNames);
    /// Beginning at `from`; past the end there is nothing to find.
    static void search(UriContainer& out, std::string const& text, unsigned long from, bool bareNames);
};

} // namespace Velmara
