#pragma once

#include <cstddef>

/// The C++ heap of this program, counted, and exhausted on demand.
namespace Heap {

/// Allocations on this thread fail from now on after this many; of the next of these objects the count starts anew.
class Exhaustion
{
public:
    explicit Exhaustion(std::size_t allocationsLeft);
    ~Exhaustion();
    Exhaustion(const Exhaustion&) = delete;
    Exhaustion& operator=(const Exhaustion&) = delete;
};

/// Blocks in use, of all threads.
std::size_t BlocksInUse();

/// All allocations so far, of all threads.
std::size_t Allocations();

} // namespace Heap
