#pragma once

#include <atomic>
#include <memory>

namespace JSON {

/// What is made when it is first asked for, on whatever thread. No thread waits for another: of those that make it at
/// the same time the first one's stays.
/// @param thing  the pointer's holder owns it. Still null if make throws.
/// @param make   gives the thing.
template <typename T, typename Make>
T& MakeOnce(std::atomic<T*>& thing, Make make)
{
    if (T* const present = thing.load(std::memory_order_acquire))
        return *present;
    auto fresh = std::make_unique<T>(make());
    T* present = nullptr;
    if (thing.compare_exchange_strong(present, fresh.get(), std::memory_order_acq_rel))
        present = fresh.release();
    return *present;
}

} // namespace JSON
