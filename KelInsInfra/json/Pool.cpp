#include <KelInsInfra/json/internal/Pool.h>
#include <algorithm>

namespace JSON {

Chunk* Chunk::Create(std::size_t capacity, std::size_t live)
{
    if (capacity > static_cast<std::size_t>(-1) / 2)
        throw std::bad_alloc();
    return new (::operator new(sizeof(Chunk) + Rounded(capacity))) Chunk(Rounded(capacity), live);
}

Chunk& Pool::NewChunk(std::size_t bytes)
{
    if (nextCapacity_ < bytes || bytes > kLargeThing)
        return *Chunk::Create(bytes, 1);
    Chunk* const chunk = Chunk::Create(nextCapacity_, kHeld);
    Retire();
    current_ = chunk;
    handedOut_ = 1;
    nextCapacity_ = std::min(2 * nextCapacity_, kLargestChunk);
    return *current_;
}

void Pool::Retire() noexcept
{
    if (current_ != nullptr)
        current_->Release(kHeld - handedOut_);
    current_ = nullptr;
}

} // namespace JSON
