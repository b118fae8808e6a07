#pragma once

#include <map>
#include <string>

#include <velmara/IPAddress.h>
#include <velmara/TypedHeader.h>

namespace Velmara {

class ReceivedImpl;

/// The typed view of a "Received" trace header: who gave the message to whom, and when.
///
/// The value is a row of clauses, each a word, white space, another word and the comments behind it:
/// "from a.example (b.example [192.0.2.1]) by c.example with ESMTP; Mon, 1 Jan 2024 ...". Any word can
/// be the name of a clause. Reading never fails; of an odd value fewer clauses are found:
///
///  - The first ";" begins the date, in a comment too; no clause begins behind it, but one may reach
///    over it ("for <a@b>; Mon" has the value "<a@b>;").
///  - Of two clauses of one name the later counts. A comment in the place of a name is dropped. One
///    that is not closed empties its clause and ends the reading.
///
/// The value is trimmed when it is read, at the first question; the "from" clause is taken apart at the
/// first from() or address(). Copies share all that, so a Received and its copies stay on one thread.
/// On a null handle every accessor throws HeaderException (code 1).
class VELMARA_EXPORT Received : public TypedHeader<Received, ReceivedImpl> {
public:
    /// "Received".
    static std::string const htype;

    /// A null handle.
    Received() = default;
    /// An empty value leaves the handle null.
    Received(std::string const& value) : TypedHeader(value) {}
    /// A null header leaves the handle null; one of another name throws Exception "assign" (code 2).
    Received(Header const& other) : TypedHeader(other) {}
    using TypedHeader::operator=;

    /// The value of the clause, in its case and with its comments; "" without one. Names are stored in
    /// lower case, and only so they are found.
    std::string find(std::string const& name) const;
    /// What stands behind the first ";", in lower case; it need not be a date.
    std::string const& date() const;
    /// The receiving host, in lower case, without comments.
    std::string const& by() const;
    /// What the sending host called itself, in lower case where a comment follows, else as it stands.
    /// Empty if that was its address.
    std::string const& from() const;
    /// The name ahead of a "[" in the comments of the "from" clause, in lower case.
    ///
    /// Limits: empty until from() or address() has been called on this header or a copy.
    std::string const& reverseName() const;
    /// The sending host's address: of brackets, of a comment that is nothing else, or of the name; null
    /// if none of them is one.
    IPAddress const& address() const;
};

/// What a Received points at; the accessors are those of the handle.
class VELMARA_EXPORT ReceivedImpl : public ParsedHeaderImpl {
public:
    ReceivedImpl();
    ~ReceivedImpl() override;

    /// As of Received.
    std::string find(std::string const& name) const;
    std::string const& date() const;
    std::string const& by() const;
    std::string const& from() const;
    std::string const& reverseName() const;
    IPAddress const& address() const;

    /// Takes the "from" clause apart unless that has been done.
    void parseFrom() const;

private:
    void read() const override;
    size_t readDate() const;
    void readCommented(std::string const& clause, size_t comment) const;
    void readPlain(std::string const& clause) const;
    void judgeName() const;

    // Valid once parsed.
    mutable std::map<std::string, std::string> m_clauses; // by name, in lower case
    mutable std::string m_date;

    // Valid once m_fromParsed.
    mutable bool m_fromParsed = false;
    mutable std::string m_from;
    mutable std::string m_reverseName;
    mutable IPAddress m_address;

    mutable std::string m_by; // cache, empty until found
};

/// The address that stands from `start` up to `end`, alone but for white space around it and the tag
/// "IPv6:" of address literals ahead of it; null for any other text. A start behind the end of the
/// value throws std::out_of_range.
VELMARA_EXPORT IPAddress s_extractIPAddress(std::string const& value, unsigned long start, unsigned long end);

} // namespace Velmara
