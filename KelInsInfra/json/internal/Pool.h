#pragma once

#include <atomic>
#include <cstddef>
#include <new>

namespace JSON {

/// A piece of memory for values that are made one after the other. It goes when the last of them is released, on
/// whatever thread that happens.
class Chunk
{
public:
    static Chunk* Create(std::size_t capacity, std::size_t live);

    std::size_t Room() const { return static_cast<std::size_t>(end_ - next_); }

    char* Take(std::size_t bytes); ///< aligned for pointers; throws std::bad_alloc where the room does not suffice
    void Release(std::size_t count) noexcept;

    static constexpr std::size_t Rounded(std::size_t bytes)
    {
        return (bytes + alignof(void*) - 1) / alignof(void*) * alignof(void*);
    }

private:
    Chunk(std::size_t capacity, std::size_t live)
        : live_(live), next_(reinterpret_cast<char*>(this + 1)), end_(next_ + capacity)
    {}

    std::atomic<std::size_t> live_;
    char* next_;
    char* end_;
};

inline char* Chunk::Take(std::size_t bytes)
{
    char* const taken = Room() >= bytes ? next_ : throw std::bad_alloc();
    next_ += Rounded(bytes);
    return taken;
}

inline void Chunk::Release(std::size_t count) noexcept
{
    if (live_.fetch_sub(count, std::memory_order_acq_rel) == count)
        ::operator delete(this);
}

/// Hands out chunks to values that are made together; used by one thread. The values outlive it.
class Pool
{
public:
    /// @param firstChunk  bytes; each further chunk doubles, up to kLargestChunk. 0 gives each value its own memory.
    explicit Pool(std::size_t firstChunk = 0) : nextCapacity_(firstChunk) {}

    ~Pool() { Retire(); }

    Pool(const Pool&) = delete;
    Pool& operator=(const Pool&) = delete;

    static constexpr std::size_t kFirstChunk = 2048;

    /// A chunk with room for one thing of so many bytes (each part rounded), which must then be made in it, and which
    /// must release it once.
    Chunk& ChunkFor(std::size_t bytes)
    {
        if (current_ != nullptr && current_->Room() >= bytes) {
            ++handedOut_;
            return *current_;
        }
        return NewChunk(bytes);
    }

private:
    static constexpr std::size_t kLargestChunk = 65536;
    static constexpr std::size_t kLargeThing = kLargestChunk / 8; // gets a chunk of its own, so that none is wasted
    static constexpr std::size_t kHeld = static_cast<std::size_t>(-1) / 2;

    Chunk& NewChunk(std::size_t bytes);
    void Retire() noexcept;

    Chunk* current_ = nullptr;
    std::size_t handedOut_ = 0; ///< of the current chunk, not yet in its count: spares an atomic step for each
    std::size_t nextCapacity_;
};

/// Places what std::allocate_shared makes into one chunk.
template <typename T>
class ChunkAllocator
{
public:
    using value_type = T;

    explicit ChunkAllocator(Chunk& chunk) : chunk_(&chunk) {}

    template <typename U>
    ChunkAllocator(const ChunkAllocator<U>& other) : chunk_(other.chunk_) // implicit, as allocators convert
    {}

    T* allocate(std::size_t count)
    {
        static_assert(alignof(T) <= alignof(void*));
        return reinterpret_cast<T*>(chunk_->Take(count * sizeof(T)));
    }

    void deallocate(T*, std::size_t) noexcept { chunk_->Release(1); }

    template <typename U>
    void destroy(U* object) noexcept
    {
        object->U::~U(); // the very type is known here: no virtual call
    }

    bool operator==(const ChunkAllocator& other) const { return chunk_ == other.chunk_; }

private:
    template <typename U>
    friend class ChunkAllocator;

    Chunk* chunk_;
};

} // namespace JSON
