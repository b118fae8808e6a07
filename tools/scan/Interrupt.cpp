#include "Interrupt.h"

#include <atomic>
#include <csignal>

namespace VelmaraCommand {

namespace {

std::atomic<int> _signal{0};
static_assert(std::atomic<int>::is_always_lock_free, "it is set in a signal handler");

constexpr int _asked[] = {SIGINT, SIGTERM};

void _remember(int signal)
{
    _signal = signal;
}

} // namespace

InterruptScope::InterruptScope()
{
    struct sigaction action = {};
    action.sa_handler = _remember;
    action.sa_flags = static_cast<int>(SA_RESETHAND | SA_RESTART);
    for (int signal : _asked) {
        struct sigaction before = {};
        ::sigaction(signal, nullptr, &before);
        if (before.sa_handler != SIG_IGN) ::sigaction(signal, &action, nullptr); // nohup and the like stay
    }
}

InterruptScope::~InterruptScope()
{
    for (int signal : _asked) {
        struct sigaction now = {};
        ::sigaction(signal, nullptr, &now);
        if (now.sa_handler == _remember) std::signal(signal, SIG_DFL);
    }
}

bool interrupted()
{
    return _signal.load(std::memory_order_relaxed) != 0;
}

void endByInterrupt()
{
    int const signal = _signal;
    if (signal == 0) return;
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

} // namespace VelmaraCommand
