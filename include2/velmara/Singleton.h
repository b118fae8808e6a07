#pragma once

#include <atomic>

#include <velmara/Mutex.h>

namespace Velmara {

/// Base of a class of which the process has one object, built at first use and never destroyed:
/// `class Table : public Singleton<Table>`.
///
/// Safe from any thread; once the object stands, a call costs one load.
template <class T> class VELMARA_EXPORT Singleton {
public:
    virtual ~Singleton() = default;

    /// The object. If the constructor of T throws, the exception travels to the caller and the next
    /// call tries again.
    static T& instance()
    {
        T* found = s_instance.load(std::memory_order_acquire);
        return found ? *found : create();
    }

    /// Null until the first instance() has finished: tells whether the object stands without
    /// building it. Only instance() changes it.
    static std::atomic<T*> s_instance;
    static Mutex s_mutex; // guards creation

protected:
    Singleton() = default;

private:
    static T& create()
    {
        Synchronized guard(s_mutex);
        T* found = s_instance.load(std::memory_order_relaxed);
        if (!found) {
            found = new T;
            s_instance.store(found, std::memory_order_release);
        }
        return *found;
    }
};

template <class T> std::atomic<T*> Singleton<T>::s_instance{nullptr};
template <class T> Mutex Singleton<T>::s_mutex;

} // namespace Velmara
