#pragma once

namespace VelmaraCommand {

/// While one lives, SIGINT and SIGTERM only ask the scan to end: it finishes the messages that it has
/// begun, so that what it wrote ends with a whole line. The second one of a kind ends the process at once.
class InterruptScope {
public:
    InterruptScope();
    ~InterruptScope();
    InterruptScope(InterruptScope const&) = delete;
    InterruptScope& operator=(InterruptScope const&) = delete;
};

/// Whether such a signal came; safe from any thread.
bool interrupted();

/// Ends the process by the signal that came, so that a shell sees why; without one, does nothing.
void endByInterrupt();

} // namespace VelmaraCommand
