#pragma once

#include <mutex>

#include <velmara/Export.h>
#include <velmara/VmaraRefcounted.h>

namespace Velmara {

/// A non-recursive lock. It is ready before any constructor of the program runs, so that tables made
/// at load time may use it.
class VELMARA_EXPORT Mutex : private NonCopyable {
public:
    constexpr Mutex() noexcept = default;
    /// A thread that holds it already must not lock it again.
    void lock() { m_mutex.lock(); }
    void unlock() { m_mutex.unlock(); }

private:
    std::mutex m_mutex;
};

/// Holds a lock from construction to destruction.
class VELMARA_EXPORT Synchronized : private NonCopyable {
public:
    /// The lock must outlive this object.
    explicit Synchronized(Mutex& mutex) : m_mutex(mutex) { m_mutex.lock(); }
    ~Synchronized() { m_mutex.unlock(); }

private:
    Mutex& m_mutex; // not owned
};

} // namespace Velmara
