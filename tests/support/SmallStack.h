#pragma once

#include <pthread.h>

#include <functional>
#include <stdexcept>

namespace Velmara {

/// Does `work` on a thread with a stack of 256 KiB, the smallest that callers give us.
inline void onSmallStack(std::function<void()> work)
{
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, 256 * 1024);
    pthread_t thread;
    auto const run = [](void* f) -> void* {
        (*static_cast<std::function<void()>*>(f))();
        return nullptr;
    };
    if (pthread_create(&thread, &attributes, run, &work) != 0) throw std::runtime_error("pthread_create");
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
}

} // namespace Velmara
