#pragma once

#include <cstddef>
#include <cstdint>

#include <unicode/utypes.h>

namespace Velmara {

/// UTF-16 to UTF-8 with the results of ICU, at a fraction of the cost. A pair may be cut between two
/// calls; a unit that is no half of a pair is dropped and counted.
class Utf8Writer {
public:
    /// The most bytes that `n` units make.
    static constexpr size_t mostBytes(size_t n) { return 3 * n + 1; }

    /// Writes the units to `to` and gives the end of what was written.
    char* write(UChar const* at, UChar const* end, char* to);
    /// The text ends here: half a pair that waits is dropped.
    void end();
    /// Forgets what waits, uncounted.
    void restart() { m_lead = 0; }

    bool isIdle() const { return m_lead == 0; }
    /// The units dropped so far.
    std::uint32_t dropped() const { return m_dropped; }

private:
    char* surrogate(UChar const*& at, UChar const* end, char* to);

    UChar m_lead = 0; // the first half of a pair that waits for the second; 0: none
    std::uint32_t m_dropped = 0;
};

} // namespace Velmara
