#pragma once

#include <iosfwd>
#include <string>

#include <velmara/Export.h>

namespace Velmara {

/// A telephone number as text, or none. The text is not checked; it can be the key of ordered containers.
class VELMARA_EXPORT MSISDN {
public:
    /// Null.
    MSISDN();
    /// A null pointer counts as an empty text, which is null.
    MSISDN(char const* number);
    MSISDN(std::string const& number);
    MSISDN(MSISDN const&) = default;
    MSISDN& operator=(MSISDN const&) = default;
    virtual ~MSISDN();

    /// Whether there is no number.
    bool isNull() const;
    /// The number as it was taken; "" for null.
    std::string const& asString() const;

    /// To the byte.
    bool operator==(MSISDN const& other) const;
    /// By bytes; of two that begin alike the shorter stands first.
    bool operator<(MSISDN const& other) const;

private:
    std::string m_number;
};

/// Writes the text.
VELMARA_EXPORT std::ostream& operator<<(std::ostream& out, MSISDN const& number);

} // namespace Velmara
