#pragma once

#include <functional>
#include <pthread.h>
#include <stdexcept>

/// Runs something on a thread with a stack of 256 KiB.
inline void OnSmallStack(const std::function<void()>& work)
{
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, 256 * 1024);
    pthread_t thread;
    const auto run = [](void* argument) -> void* {
        (*static_cast<const std::function<void()>*>(argument))();
        return nullptr;
    };
    const int error = pthread_create(&thread, &attributes, run, const_cast<std::function<void()>*>(&work));
    pthread_attr_destroy(&attributes);
    if (error != 0)
        throw std::runtime_error("no thread with a small stack");
    pthread_join(thread, nullptr);
}
