#pragma once

#include <optional>
#include <string_view>

#include <velmara/EmailAddress.h>

#include "runtime/AddressScanner.h"

namespace Velmara {

/// Gives the addresses of a header value one by one, whatever the value (see EmailAddress), in linear
/// time. Groups are flattened.
class AddressReader {
public:
    /// In a list a "," ends an address even where its bracket was not closed; in the value of one it is
    /// a character of the address there.
    enum Form { One, List };

    AddressReader(std::string_view text, Form form) : m_scanner(text), m_form(form) {}

    /// False at the end.
    bool next(EmailAddress& address);
    /// What was read so far is not what the standard allows.
    bool isMalformed() const { return m_malformed || m_inGroup || m_scanner.foundStray(); }

private:
    class Entry;
    using Token = AddressScanner::Token;

    Token scan(bool encodedWords);
    bool read(Entry& entry);
    bool readAhead(Entry& entry, Token const& token);
    bool readInside(Entry& entry, Token const& token);
    bool readBehind(Entry& entry, Token const& token);
    bool separator(Entry& entry, Token const& token);
    bool beginGroup(Entry& entry);

    AddressScanner m_scanner;
    Form const m_form;
    bool m_ended = false;
    bool m_inGroup = false;
    bool m_malformed = false;
    std::optional<Token> m_held; // begins an entry without a separator
};

} // namespace Velmara
