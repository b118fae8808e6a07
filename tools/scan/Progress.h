#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

namespace VelmaraCommand {

/// How far a scan has come.
struct Advance {
    std::uint64_t messages = 0;
    std::uint64_t bytes = 0;
    std::uint64_t bytesInAll = 0; // 0: not known (yet)
    double seconds = 0;
};

/// "1234 messages, 56.7 MB, 12.3 MB/s, 617 messages/s [####    ] 1:23 left", no wider than `columns`.
std::string shownAdvance(Advance const& advance, std::size_t columns);

/// The line at the bottom of a terminal that tells how far a scan has come; on anything else than a terminal
/// nothing. Complaints go past it, so that it never stands in the middle of one. Safe from any thread.
class Progress {
public:
    /// `total` runs on a thread of its own if there is a terminal: it adds the bytes of all files to
    /// the number and ends early once `stop` is set.
    using Total = std::function<void(std::atomic<std::uint64_t>& bytes, std::atomic<bool> const& stop)>;
    explicit Progress(Total total);
    ~Progress();
    Progress(Progress const&) = delete;
    Progress& operator=(Progress const&) = delete;

    /// To be added to by the sources; null without a terminal.
    std::atomic<std::uint64_t>* bytesDone() { return m_wanted ? &m_bytesDone : nullptr; }
    void messageDone();
    /// Runs what writes to standard error while the line is out of the way.
    void aside(std::function<void()> const& write);

private:
    using Clock = std::chrono::steady_clock;
    void draw();
    void erase();

    bool const m_wanted; // standard error is a terminal
    Clock::time_point const m_begun = Clock::now();
    std::atomic<std::uint64_t> m_bytesDone{0}, m_bytesInAll{0};
    std::atomic<bool> m_totalKnown{false}, m_stop{false};
    std::mutex m_mutex; // for those that follow
    std::uint64_t m_messages = 0;
    Clock::time_point m_drawn{};
    bool m_shown = false;
    std::thread m_counting;
};

} // namespace VelmaraCommand
