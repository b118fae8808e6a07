#include <velmara/Logger.h>

#include <syslog.h>

#include <cstdarg>
#include <cstdio>
#include <memory>
#include <mutex>
#include <vector>

namespace Velmara {

namespace {

using Sink = std::function<void(unsigned int, std::string const&)>;

// Held by pointer: a message under way keeps the sink that it started with, so that setSink never
// waits for a sink and a sink may itself log or call setSink.
std::mutex s_sinkMutex;
std::shared_ptr<Sink const>& _sink()
{
    static auto* sink = new std::shared_ptr<Sink const>; // outlives every thread that may still log
    return *sink;
}

std::string _formatted(char const* format, va_list arguments)
{
    va_list again;
    va_copy(again, arguments);
    int const length = vsnprintf(nullptr, 0, format, again);
    va_end(again);
    if (length <= 0) return std::string();
    std::vector<char> text(static_cast<size_t>(length) + 1);
    vsnprintf(text.data(), text.size(), format, arguments);
    return std::string(text.data(), static_cast<size_t>(length));
}

void _deliver(unsigned int id, std::string const& text)
{
    std::shared_ptr<Sink const> sink;
    {
        std::lock_guard<std::mutex> guard(s_sinkMutex);
        sink = _sink();
    }
    if (sink)
        (*sink)(id, text);
    else
        syslog(LOG_MAIL | LOG_NOTICE, "velmara[0x%x]: %s", id, text.c_str());
}

} // namespace

Logger::Logger() = default;
Logger::~Logger() = default;

Logger& Logger::instance(bool)
{
    struct Process : Logger {};
    static auto* logger = new Process; // never destroyed: threads may log until the very end
    return *logger;
}

void Logger::log(unsigned int id, int, char const* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    // A message that cannot be made or delivered must not change what the library does.
    try {
        _deliver(id, _formatted(format, arguments));
    } catch (...) {
    }
    va_end(arguments);
}

void Logger::setSink(std::function<void(unsigned int id, std::string const& text)> sink)
{
    std::shared_ptr<Sink const> next;
    if (sink) next = std::make_shared<Sink const>(std::move(sink));
    std::lock_guard<std::mutex> guard(s_sinkMutex);
    _sink().swap(next);
}

} // namespace Velmara
