#pragma once

#include <string>

#include <velmara/Export.h>

namespace Velmara {

/// The name of a host as somebody gave it, or none.
///
/// The text is kept as it came; comparison does not regard ASCII case. Nothing is looked up.
class VELMARA_EXPORT HostName {
public:
    /// Null.
    HostName() = default;
    /// Empty text gives null, and so does text that the flags do not allow:
    ///   acceptAny  strict
    ///   false      true    a well-formed host name: labels of 1 to 63 letters, digits, hyphens (not at
    ///                      an end) and underscores (mailing lists have them), 253 bytes at most, one
    ///                      dot at the end at will; no IP address. International names in ASCII form.
    ///   true       true    that, or an IP address
    ///   false      false   any text without white space, control characters and "/\@:<>[]()",;"
    ///   true       false   anything: what a client calls itself is kept, however odd
    HostName(std::string const& text, bool acceptAny, bool strict);

    /// Null is empty text.
    bool isNull() const { return m_text.empty(); }
    std::string const& asString() const { return m_text; }

    /// Without regard to ASCII case, and so is the order.
    bool operator==(HostName const& other) const;
    bool operator!=(HostName const& other) const { return !(*this == other); }
    bool operator<(HostName const& other) const;

private:
    std::string m_text; // empty: null
};

} // namespace Velmara
