#pragma once

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <new>

namespace XML {

/// A piece of memory that the parser cuts into many small ones, so that it need not ask the heap for each. Pieces are
/// given back one by one, on any thread, and the chunk goes with the last of them.
class Chunk
{
public:
    static Chunk* Create(std::size_t size) { return new (::operator new(sizeof(Chunk) + size)) Chunk(size); }

    bool HasRoomFor(std::size_t size) const { return static_cast<std::size_t>(end_ - next_) >= RoundedUp(size); }

    /// Only by the creator, before Close, and only where there is room.
    void* Take(std::size_t size)
    {
        char* piece = next_;
        next_ += RoundedUp(size);
        ++taken_;
        return piece;
    }

    /// No more pieces are taken.
    void Close() { Drop(kOpen - taken_); }

    void GiveBack() { Drop(1); }

private:
    static constexpr std::size_t kAlignment = alignof(std::max_align_t);
    static constexpr std::size_t kOpen = std::size_t(1) << 40; // more than can be taken: taking need not touch users_

    static constexpr std::size_t RoundedUp(std::size_t size) { return (size + kAlignment - 1) & ~(kAlignment - 1); }

    explicit Chunk(std::size_t size) : next_(reinterpret_cast<char*>(this + 1)), end_(next_ + size) {}

    void Drop(std::size_t count)
    {
        if (users_.fetch_sub(count, std::memory_order_acq_rel) == count)
            ::operator delete(this);
    }

    std::atomic<std::size_t> users_{kOpen};
    std::size_t taken_ = 0;
    char* next_;
    char* end_;
};

static_assert(sizeof(Chunk) % alignof(std::max_align_t) == 0);

/// The chunks of one parse: small ones at first, for small documents.
class ChunkSource
{
public:
    ChunkSource() = default;
    ChunkSource(const ChunkSource&) = delete;
    ChunkSource& operator=(const ChunkSource&) = delete;

    ~ChunkSource()
    {
        if (chunk_ != nullptr)
            chunk_->Close();
    }

    Chunk& WithRoomFor(std::size_t size)
    {
        if (chunk_ == nullptr || !chunk_->HasRoomFor(size)) {
            Chunk* next = Chunk::Create(nextSize_);
            if (chunk_ != nullptr)
                chunk_->Close();
            chunk_ = next;
            nextSize_ = std::min(nextSize_ * 2, kLargest);
        }
        return *chunk_;
    }

private:
    static constexpr std::size_t kLargest = 32 * 1024;

    Chunk* chunk_ = nullptr;
    std::size_t nextSize_ = 1024;
};

/// For std::allocate_shared: one piece of a chunk that has room for it.
template <typename T>
class ChunkAllocator
{
public:
    using value_type = T;

    explicit ChunkAllocator(Chunk& chunk) : chunk_(&chunk) {}

    template <typename Other>
    ChunkAllocator(const ChunkAllocator<Other>& other) : chunk_(other.chunk_)
    {} // implicit: rebinding

    T* allocate(std::size_t count)
    {
        const std::size_t size = count * sizeof(T);
        return chunk_->HasRoomFor(size) ? static_cast<T*>(chunk_->Take(size)) : throw std::bad_alloc();
    }

    void deallocate(T*, std::size_t) { chunk_->GiveBack(); }

    bool operator==(const ChunkAllocator& other) const = default;

private:
    template <typename Other>
    friend class ChunkAllocator;

    Chunk* chunk_;
};

} // namespace XML
