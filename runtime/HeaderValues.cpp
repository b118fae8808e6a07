#include <velmara/HeaderValues.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <iterator>

#include <unistd.h>

#include <velmara/Exception.h>

#include "runtime/Ascii.h"

namespace Velmara::LW {

namespace {

tm _given(tm const* time)
{
    if (time) return *time;
    time_t const now = std::time(nullptr);
    tm local = {};
    localtime_r(&now, &local);
    return local;
}

/// Fields within their ranges, with the right day of the week. A year that no calendar holds gives the
/// first second of 1970.
tm _normal(tm time)
{
    errno = 0;
    if (timegm(&time) != -1 || errno == 0) return time;
    time_t const epoch = 0;
    gmtime_r(&epoch, &time);
    return time;
}

/// "+hhmm". An offset of four days cannot be written in two digits of hours: such a field was never set.
std::string _zone(long seconds)
{
    long const minutes = std::abs(seconds / 60);
    if (minutes >= 100L * 60) return "+0000";
    char zone[32];
    std::snprintf(zone, sizeof zone, "%c%02ld%02ld", seconds < 0 ? '-' : '+', minutes / 60, minutes % 60);
    return zone;
}

bool _isHostByte(unsigned char c)
{
    return isAlnum(c) || c >= 0x80 || c == '-' || c == '.' || c == '_' || c == ':' || c == '[' || c == ']';
}

std::string _hostFrom(std::string const& text)
{
    std::string host;
    std::copy_if(text.begin(), text.end(), std::back_inserter(host), _isHostByte);
    return host.empty() ? "localhost" : host;
}

std::string _random()
{
    unsigned char bytes[12];
    if (getentropy(bytes, sizeof bytes) != 0)
        throw Exception("createHeaderMessageIdValue", 6, "HeaderValues", __LINE__);
    std::string text;
    for (unsigned char byte : bytes) {
        text += "0123456789abcdef"[byte >> 4];
        text += "0123456789abcdef"[byte & 15];
    }
    return text;
}

} // namespace

std::string createHeaderDateValue(tm const* time)
{
    static char const* const days[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
    static char const* const months[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                         "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    tm const given = _given(time), t = _normal(given);
    char date[64];
    std::snprintf(date, sizeof date, "%s, %d %s %04ld %02d:%02d:%02d ", days[t.tm_wday], t.tm_mday, months[t.tm_mon],
                  1900L + t.tm_year, t.tm_hour, t.tm_min, t.tm_sec);
    return date + _zone(given.tm_gmtoff);
}

std::string createHeaderMessageIdValue(std::string const& host, tm const* time)
{
    tm const t = _normal(_given(time));
    char stamp[64];
    std::snprintf(stamp, sizeof stamp, "<%04ld%02d%02d%02d%02d%02d.", 1900L + t.tm_year, t.tm_mon + 1, t.tm_mday,
                  t.tm_hour, t.tm_min, t.tm_sec);
    return stamp + _random() + '@' + _hostFrom(host) + '>';
}

} // namespace Velmara::LW
