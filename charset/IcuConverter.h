#pragma once

#include <string>

#include <unicode/ucnv.h>

#include <velmara/VmaraRefcounted.h>

namespace Velmara {

/// Owns one ICU converter; every way out closes it.
///
/// Opening costs as much as converting a short header value, and header values come in runs of few
/// character sets, so a closed converter waits, reset to the state of a new one, for the next open
/// with the same name on its thread. A thread keeps at most eight.
class IcuConverter : private NonCopyable {
public:
    IcuConverter() = default;
    ~IcuConverter() { close(); }

    /// Closes what is open. False, with nothing open, if ICU does not know the name.
    bool open(std::string const& name);
    void close();

    explicit operator bool() const { return m_converter; }
    UConverter* get() const { return m_converter; }

private:
    UConverter* m_converter = nullptr; // owned
    std::string m_name;                // under which it was opened
};

} // namespace Velmara
