#include "Progress.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdarg>
#include <cstdio>

namespace VelmaraCommand {

namespace {

std::string _format(char const* format, ...) __attribute__((format(printf, 1, 2)));

std::string _format(char const* format, ...)
{
    char text[128];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    return text;
}

std::string _shownTime(double seconds)
{
    auto const whole = static_cast<unsigned long long>(std::llround(std::min(seconds, 1e9)));
    if (whole < 3600) return _format("%llu:%02llu", whole / 60, whole % 60);
    return _format("%llu:%02llu:%02llu", whole / 3600, whole / 60 % 60, whole % 60);
}

std::string _bar(double fraction, std::size_t width)
{
    auto const full = static_cast<std::size_t>(fraction * static_cast<double>(width));
    return " [" + std::string(full, '#') + std::string(width - full, ' ') + "]";
}

std::size_t _columns()
{
    winsize window{};
    bool const known = ::ioctl(STDERR_FILENO, TIOCGWINSZ, &window) == 0 && window.ws_col > 0;
    return known ? window.ws_col : 80;
}

void _toTerminal(std::string const& text)
{
    std::fwrite(text.data(), 1, text.size(), stderr);
    std::fflush(stderr);
}

} // namespace

std::string shownAdvance(Advance const& advance, std::size_t columns)
{
    constexpr double mega = 1e6;
    constexpr std::size_t leastBar = 10, mostBar = 40, frame = 3;
    double const seconds = std::max(advance.seconds, 0.001);
    auto const bytes = static_cast<double>(advance.bytes);
    std::string text =
        _format("%llu messages, %.1f MB", static_cast<unsigned long long>(advance.messages), bytes / mega);
    std::string rate = _format(", %.1f MB/s, %.0f messages/s", bytes / mega / seconds,
                               static_cast<double>(advance.messages) / seconds);
    std::string left;
    double fraction = 0;
    if (advance.bytesInAll > 0 && advance.bytes > 0) {
        fraction = std::min(1.0, bytes / static_cast<double>(advance.bytesInAll));
        left = " " + _shownTime(seconds * (1 - fraction) / fraction) + " left";
    }
    if (text.size() + rate.size() + left.size() <= columns) text += rate;
    std::size_t const used = text.size() + left.size() + frame;
    if (!left.empty() && used + leastBar <= columns) text += _bar(fraction, std::min(columns - used, mostBar));
    return (text + left).substr(0, columns);
}

Progress::Progress(Total total) : m_wanted(::isatty(STDERR_FILENO))
{
    if (!m_wanted || !total) return;
    m_counting = std::thread([this, total = std::move(total)] {
        total(m_bytesInAll, m_stop);
        m_totalKnown = true;
    });
}

Progress::~Progress()
{
    m_stop = true;
    if (m_counting.joinable()) m_counting.join();
    erase();
}

void Progress::messageDone()
{
    if (!m_wanted) return;
    std::lock_guard<std::mutex> const lock(m_mutex);
    ++m_messages;
    Clock::time_point const now = Clock::now();
    if (now - m_drawn < std::chrono::milliseconds(200)) return;
    m_drawn = now;
    draw();
}

void Progress::aside(std::function<void()> const& write)
{
    std::lock_guard<std::mutex> const lock(m_mutex);
    bool const shown = m_shown;
    erase();
    write();
    if (shown) draw();
}

void Progress::draw()
{
    double const seconds = std::chrono::duration<double>(Clock::now() - m_begun).count();
    Advance const advance{m_messages, m_bytesDone, m_totalKnown ? m_bytesInAll.load() : 0, seconds};
    _toTerminal("\r\033[K" + shownAdvance(advance, _columns() - 1));
    m_shown = true;
}

void Progress::erase()
{
    if (m_shown) _toTerminal("\r\033[K");
    m_shown = false;
}

} // namespace VelmaraCommand
