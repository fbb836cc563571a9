#pragma once

#include <cstddef>

/// The C++ heap of this program, counted, and exhausted on demand.
namespace Heap {

/// While this lives, allocations fail after this many: all later ones, or the next one alone.
class Exhaustion
{
public:
    enum class Lasts
    {
        ForAll,
        ForOne
    };

    explicit Exhaustion(std::size_t allocationsLeft, Lasts lasts = Lasts::ForAll);
    ~Exhaustion();
    Exhaustion(const Exhaustion&) = delete;
    Exhaustion& operator=(const Exhaustion&) = delete;

    /// Whether an allocation failed.
    static bool Happened();
};

/// Blocks in use, of all threads.
std::size_t BlocksInUse();

/// All allocations so far, of all threads.
std::size_t Allocations();

} // namespace Heap
