#pragma once

#include <memory>
#include <string>
#include <utility>

#include <unicode/ucnv.h>

namespace Velmara {

/// Owns one ICU converter; every way out closes it.
///
/// Opening costs as much as converting a short header value, and header values come in runs of few
/// character sets, so a closed converter waits, reset to the state of a new one, for the next open
/// with the same name on its thread. A thread keeps at most eight.
class IcuConverter {
public:
    IcuConverter() = default;
    IcuConverter(IcuConverter const&) = delete;
    IcuConverter& operator=(IcuConverter const&) = delete;
    ~IcuConverter() { close(); }

    /// Closes what is open. False, with nothing open, if ICU does not know the name; std::bad_alloc leaves if
    /// it has no memory.
    bool open(std::string const& name);
    void close();

    explicit operator bool() const { return bool(m_opened); }
    UConverter* get() const { return m_opened->converter.get(); }

    /// A converter with the name under which it was opened.
    struct Opened {
        using Converter = std::unique_ptr<UConverter, decltype(&ucnv_close)>;
        Converter const converter;
        std::string const name;

        Opened(Converter icu, std::string const& as) : converter(std::move(icu)), name(as) {}
    };

private:
    std::unique_ptr<Opened> m_opened;
};

} // namespace Velmara
