#pragma once

#include <ctime>
#include <string>

#include <velmara/Export.h>

/// Values for headers that a message lacks.
namespace Velmara::LW {

/// The value of a "Date" header (RFC 5322), in English whatever the locale: "Mon, 1 Jan 2024 00:00:00
/// +0000". The day of the week follows from the date and fields out of their range are carried over,
/// so the value is always a date. The offset is `tm_gmtoff`. Null means now, local time.
VELMARA_EXPORT std::string createHeaderDateValue(tm const* time);

/// A new value for a "Message-Id" header: "<20240101000000.RANDOM@host>", with 96 random bits, so it is
/// not seen twice, from forked processes either. Of the host only what a host name or an address
/// literal can hold is used ("localhost" where nothing is left), so it cannot add header lines. Null
/// means now. Throws Exception (code 6) where the system gives no random bytes.
VELMARA_EXPORT std::string createHeaderMessageIdValue(std::string const& host, tm const* time);

} // namespace Velmara::LW
