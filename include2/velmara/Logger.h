#pragma once

#include <functional>
#include <string>

#include <velmara/Export.h>

namespace Velmara {

/// The process-wide logger. The library logs little: it reports by exceptions and results.
/// Messages go to syslog (facility mail) until a sink is set. Safe from any thread.
class VELMARA_EXPORT Logger {
public:
    virtual ~Logger();

    /// The one logger; the flag is taken for the sake of callers and changes nothing.
    static Logger& instance(bool);

    /// Logs a text made by the rules of printf under a message identifier. The number in between is
    /// always 0. Never throws.
    virtual void log(unsigned int id, int, char const* format, ...) __attribute__((format(printf, 4, 5)));

    /// Sends all further messages to `sink` instead of syslog; an empty function restores syslog. The
    /// sink is called on the thread that logs; what it throws is dropped. A message that is under way
    /// on another thread may still reach the sink that was replaced.
    static void setSink(std::function<void(unsigned int id, std::string const& text)> sink);

protected:
    Logger();
};

} // namespace Velmara
