// Reading trace headers: a walk over words that knows no clause by name. It has three steps, which
// follow each other in a ring: to the next word, over a name, over a value. A value ends at the first
// word that follows a blank outside of comments, or at a ")" that closes nothing.
//
//     from a.example (b.example [192.0.2.1]) by c.example      from, by
//     (comment) from a by b                                    from, by; the comment is the value of ""
//     a ) b c                                                  a: "", "b" closes nothing: ")": "b", c: none
//
// The walk takes no more steps than the value has characters ahead of its date. That matters for
// values such as ") ) ) )", where a clause costs three steps and two characters, and two
// installations must find the same clauses. A word without white space behind it cannot become a name
// any more, so the walk ends there: the steps that are left could not change anything.
#include <velmara/Received.h>

#include <algorithm>
#include <string_view>

#include <velmara/StringOperations.h>

#include "header/Scan.h"
#include "runtime/Ascii.h"

namespace Velmara {

namespace {

constexpr size_t _none = std::string::npos;

std::string _lowerTrimmed(std::string_view text)
{
    return stringToLower(std::string(trimmed(text)));
}

std::string_view _between(std::string const& text, size_t begin, size_t end)
{
    return std::string_view(text).substr(begin, end - begin);
}

using Clauses = std::map<std::string, std::string>;

class Walk {
public:
    /// `limit`: where the date begins; at least 1.
    Walk(std::string const& value, size_t limit, Clauses& clauses) : m_value(value), m_limit(limit), m_clauses(clauses)
    {}

    void run()
    {
        static constexpr void (Walk::*ring[])() = {&Walk::skip, &Walk::readName, &Walk::readValue};
        size_t const steps = std::max<size_t>(m_limit - 1, 1);
        for (size_t i = 0; i < steps && m_at < m_limit; ++i) (this->*ring[i % 3])();
    }

private:
    void skip()
    {
        m_at = findFrom(m_value, m_at, [](unsigned char c) { return !isHeaderSpace(c); });
        if (m_at == m_limit) throw Exception("void Velmara::ReceivedImpl::parse() const", 5, "HeaderImpl", __LINE__);
    }

    void readName()
    {
        m_name.clear();
        if (m_value[m_at] == '(') return;
        size_t const end = findFrom(m_value, m_at, isHeaderSpace);
        if (end < m_value.size()) copyStringToLower(m_value, m_name, m_at, end - m_at);
        m_at = findFrom(m_value, end, [](unsigned char c) { return !isHeaderSpace(c); });
    }

    void readValue()
    {
        size_t const begin = m_at;
        bool const closed = findValueEnd();
        if (m_name.empty()) return;
        m_clauses[m_name] = closed ? trimmed(_between(m_value, begin, m_at)) : std::string_view();
    }

    /// False if a comment reaches to the end.
    bool findValueEnd()
    {
        size_t depth = 0;
        for (bool blank = false; m_at < m_value.size(); ++m_at) {
            auto const c = static_cast<unsigned char>(m_value[m_at]);
            if (c == '(') {
                ++depth;
            } else if (c == ')') {
                if (depth == 0) return true;
                --depth;
            } else if (depth == 0) {
                if (blank && !isHeaderSpace(c)) return true;
                blank = blank || isHeaderSpace(c);
            }
        }
        return depth == 0;
    }

    std::string const& m_value;
    size_t const m_limit;
    Clauses& m_clauses;
    size_t m_at = 0;
    std::string m_name; // empty where a comment stands for it
};

} // namespace

IPAddress s_extractIPAddress(std::string const& value, unsigned long start, unsigned long end)
{
    std::string text(trimmed(value.substr(start, end - start)));
    std::string const tag = "ipv6:";
    if (stringCompareNoCase(text, tag, static_cast<unsigned int>(tag.size()))) text.erase(0, tag.size());
    return IPAddress(text);
}

ReceivedImpl::ReceivedImpl()
{
    type(Received::htype);
}

ReceivedImpl::~ReceivedImpl() = default;

void ReceivedImpl::read() const
{
    stringRightTrim(m_value);
    stringLeftTrim(m_value);
    size_t const limit = readDate();
    if (limit > 0) Walk(m_value, limit, m_clauses).run();
}

/// Gives the place of the ";", or the end.
size_t ReceivedImpl::readDate() const
{
    size_t const semicolon = m_value.find(';');
    if (semicolon == _none) return m_value.size();
    m_date = _lowerTrimmed(_between(m_value, semicolon + 1, m_value.size()));
    return semicolon;
}

std::string ReceivedImpl::find(std::string const& name) const
{
    parse();
    auto const clause = m_clauses.find(name);
    return clause == m_clauses.end() ? std::string() : clause->second;
}

std::string const& ReceivedImpl::date() const
{
    parse();
    return m_date;
}

std::string const& ReceivedImpl::by() const
{
    if (m_by.empty()) {
        std::string const clause = find("by");
        size_t const comment = clause.find('(');
        m_by = comment == _none ? stringToLower(clause) : _lowerTrimmed(_between(clause, 0, comment));
    }
    return m_by;
}

std::string const& ReceivedImpl::from() const
{
    parseFrom();
    return m_from;
}

/// Callers tell a header that nobody took apart by its empty name, so this does not take it apart.
std::string const& ReceivedImpl::reverseName() const
{
    parse();
    return m_reverseName;
}

IPAddress const& ReceivedImpl::address() const
{
    parseFrom();
    return m_address;
}

void ReceivedImpl::parseFrom() const
{
    if (m_fromParsed) return;
    parse();
    auto const clause = m_clauses.find("from");
    if (clause != m_clauses.end()) {
        size_t const comment = clause->second.find('(');
        if (comment == _none)
            readPlain(clause->second);
        else
            readCommented(clause->second, comment);
        judgeName();
    }
    m_fromParsed = true;
}

void ReceivedImpl::readCommented(std::string const& clause, size_t comment) const
{
    m_from = _lowerTrimmed(_between(clause, 0, comment));
    size_t const open = clause.find('[', comment);
    if (open != _none) {
        m_reverseName = _lowerTrimmed(_between(clause, comment + 1, open));
        size_t const close = clause.find(']', open);
        if (close != _none) m_address = s_extractIPAddress(clause, open + 1, close);
        return;
    }
    // "(helo) (192.0.2.1)": the address may stand in the last comment.
    for (size_t const begin : {comment, clause.rfind('(')}) {
        size_t const end = clause.find(')', begin);
        if (m_address.isNull() && end != _none) m_address = s_extractIPAddress(clause, begin + 1, end);
    }
}

void ReceivedImpl::readPlain(std::string const& clause) const
{
    size_t const open = clause.find('[');
    if (open == _none) {
        m_from = clause;
        return;
    }
    size_t const close = clause.find(']', open);
    if (close != _none) m_address = s_extractIPAddress(clause, open + 1, close);
}

/// A name that is an address is none.
void ReceivedImpl::judgeName() const
{
    if (m_from.empty()) return;
    if (m_from.front() == '[') {
        m_from.erase(0, 1);
        if (!m_from.empty() && m_from.back() == ']') m_from.pop_back();
    }
    if (!m_address.isNull() || !IPAddress::isValidIPAddress(m_from)) return;
    m_address = IPAddress(m_from);
    m_from.clear();
}

std::string Received::find(std::string const& name) const
{
    if (isNull()) throw HeaderException(__LINE__);
    return impl().find(name);
}

std::string const& Received::date() const
{
    if (isNull()) throw HeaderException(__LINE__);
    return impl().date();
}

std::string const& Received::by() const
{
    if (isNull()) throw HeaderException(__LINE__);
    return impl().by();
}

std::string const& Received::from() const
{
    if (isNull()) throw HeaderException(__LINE__);
    return impl().from();
}

std::string const& Received::reverseName() const
{
    if (isNull()) throw HeaderException(__LINE__);
    return impl().reverseName();
}

IPAddress const& Received::address() const
{
    if (isNull()) throw HeaderException(__LINE__);
    return impl().address();
}

} // namespace Velmara
