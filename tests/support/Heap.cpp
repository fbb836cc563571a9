#include "Heap.h"

#include <atomic>
#include <cstdlib>
#include <limits>
#include <new>

namespace {

constexpr std::size_t kLargest = std::size_t(1) << 40; // sanitizers end the program at larger ones
constexpr std::size_t kNoLimit = std::numeric_limits<std::size_t>::max();

std::atomic<std::size_t> blocksInUse{0};
std::atomic<std::size_t> allocations{0};
std::atomic<std::size_t> allocationsLeft{kNoLimit}; // exhaustion is tried on one thread only
std::atomic<bool> failsOnce{false};
std::atomic<bool> happened{false};

void CountDown()
{
    if (allocationsLeft == kNoLimit)
        return;
    if (allocationsLeft > 0) {
        --allocationsLeft;
        return;
    }
    happened = true;
    if (failsOnce)
        allocationsLeft = kNoLimit;
    throw std::bad_alloc();
}

} // namespace

Heap::Exhaustion::Exhaustion(std::size_t left, Lasts lasts)
{
    happened = false;
    failsOnce = lasts == Lasts::ForOne;
    allocationsLeft = left;
}

Heap::Exhaustion::~Exhaustion()
{
    allocationsLeft = kNoLimit;
}

bool Heap::Exhaustion::Happened()
{
    return happened;
}

std::size_t Heap::BlocksInUse()
{
    return blocksInUse;
}

std::size_t Heap::Allocations()
{
    return allocations;
}

void* operator new(std::size_t size)
{
    if (size > kLargest)
        throw std::bad_alloc();
    CountDown();
    void* block = std::malloc(size > 0 ? size : 1);
    if (block == nullptr)
        throw std::bad_alloc();
    ++blocksInUse;
    ++allocations;
    return block;
}

void operator delete(void* block) noexcept
{
    if (block == nullptr)
        return;
    --blocksInUse;
    std::free(block);
}

void operator delete(void* block, std::size_t) noexcept
{
    operator delete(block);
}

void* operator new[](std::size_t size)
{
    return operator new(size);
}

void operator delete[](void* block) noexcept
{
    operator delete(block);
}

void operator delete[](void* block, std::size_t) noexcept
{
    operator delete(block);
}
