#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <thread>
#include <type_traits>
#include <utility>

namespace JSON {

/// Whether something that is made when it is first asked for is there.
enum class Made : std::uint8_t
{
    No,
    Now, ///< by another thread
    Yes,
};

/// Makes a thing unless it is there already; on whatever thread, as often at the same time as may be.
/// @param make  gives the thing; called by each thread that comes before it is there. Nothing has happened if it
/// throws.
template <typename T, typename Make>
void MakeOnce(T& thing, std::atomic<Made>& made, Make make)
{
    static_assert(std::is_nothrow_swappable_v<T>);
    if (made.load(std::memory_order_acquire) == Made::Yes)
        return;
    T fresh = make();
    Made before = Made::No;
    if (made.compare_exchange_strong(before, Made::Now, std::memory_order_relaxed)) {
        std::swap(thing, fresh);
        made.store(Made::Yes, std::memory_order_release);
        return;
    }
    // The other thread is between the two lines above. Sleeping lets it go on even if it is of a lower priority;
    // waiting on the atomic does not always wake up again with the Windows toolchain.
    while (made.load(std::memory_order_acquire) != Made::Yes)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

} // namespace JSON
