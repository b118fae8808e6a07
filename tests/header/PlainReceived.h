#pragma once

#include <map>
#include <string>

#include <velmara/Received.h>

#include "tests/header/PlainHeaders.h"

/// A second reading of trace headers, by numbered states and with a counter of rounds that also counts
/// those in which nothing happens; what the library reads is compared with it.
namespace Velmara::PlainReceived {

struct Trace {
    std::string value, date;
    std::map<std::string, std::string> clauses;
};

inline bool isSpace(char c)
{
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

inline Trace read(std::string const& given)
{
    Trace trace;
    std::string const value = trace.value = PlainHeaders::trimmed(given);
    size_t limit = value.find(';');
    if (limit == std::string::npos)
        limit = value.size();
    else
        trace.date = PlainHeaders::trimmed(PlainHeaders::lower(value.substr(limit + 1)));
    if (limit < 1) return trace;

    enum { Skip, Name, Value } state = Skip;
    size_t at = 0;
    long rounds = 0;
    std::string name;
    do {
        if (state == Skip) {
            while (isSpace(value[at])) ++at;
            state = Name;
        } else if (state == Name) {
            size_t end = at;
            while (end < value.size() && !isSpace(value[end])) ++end;
            if (value[at] == '(') {
                name = "";
                state = Value;
            } else if (end < value.size()) {
                name = PlainHeaders::lower(value.substr(at, end - at));
                while (isSpace(value[end])) ++end;
                at = end;
                state = Value;
            }
        } else {
            size_t const begin = at;
            size_t depth = 0;
            bool inComment = false, seenBlank = false;
            for (; at < value.size(); ++at) {
                char const c = value[at];
                if (isSpace(c) && !inComment) {
                    seenBlank = true;
                } else if (c == '(') {
                    ++depth;
                    inComment = true;
                } else if (c == ')' && depth == 0) {
                    break;
                } else if (c == ')') {
                    if (--depth == 0) inComment = false;
                } else if (!inComment && seenBlank) {
                    break;
                }
            }
            std::string const text = inComment ? "" : PlainHeaders::trimmed(value.substr(begin, at - begin));
            if (!name.empty()) trace.clauses[name] = text;
            name = "";
            state = Skip;
        }
        ++rounds;
    } while (at < limit && static_cast<long>(limit) - 1 - rounds >= 1);
    return trace;
}

/// What must hold for any text, told as the name of the first claim that fails, or null.
inline char const* failed(std::string const& value)
{
    Received const received(Header(Received::htype, value));
    Trace const trace = read(value);
    if (received.date() != trace.date) return "date";
    if (received.value() != trace.value) return "value after reading";
    for (auto const& [name, text] : trace.clauses)
        if (received.find(name) != text) return "clause";
    for (char const* name : {"from", "by", "with", "a", "b", ")", "x"})
        if (!trace.clauses.count(name) && !received.find(name).empty()) return "clause that is not there";
    // A name that is an address has become the address.
    std::string const from = received.from();
    if (IPAddress::isValidIPAddress(from) && received.address().isNull()) return "address as name";
    if (!trace.clauses.count("from") && !(from.empty() && received.address().isNull())) return "from nothing";
    if (received.by() != PlainHeaders::lower(received.by())) return "case of by";
    return nullptr;
}

/// Text that readers of trace headers have something to do with: each byte picks a fragment.
inline std::string text(unsigned char const* bytes, size_t n)
{
    static char const* const fragments[] = {
        "from ", "by ",   "with ", "for ", "from", " ",           " ",  "\t",           "\r\n ", "(",
        "(",     ")",     ")",     "[",    "]",    ";",           "a",  "B.example",    "x",     "192.0.2.1",
        "::1",   "IPv6:", "id ",   "(a ",  ") ",   "[192.0.2.1]", ". ", "<a@b.example>"};
    std::string made;
    for (size_t i = 0; i < n; ++i) made += fragments[bytes[i] % (sizeof fragments / sizeof *fragments)];
    return made;
}

} // namespace Velmara::PlainReceived
