#include <KelInsInfra/json/internal/Member.h>

namespace JSON {

MemberBlock* MemberBlock::Create(Pool& pool, std::size_t members, MemberBlock* previous)
{
    static_assert(alignof(Member) <= alignof(void*) && sizeof(Member) % alignof(void*) == 0);
    if (members > (static_cast<std::size_t>(-1) / 2 - sizeof(MemberBlock)) / sizeof(Member))
        throw std::bad_alloc();
    const std::size_t bytes = sizeof(MemberBlock) + members * sizeof(Member);
    Chunk& chunk = pool.ChunkFor(bytes);
    return new (chunk.Take(bytes)) MemberBlock{previous, &chunk};
}

void MemberBlock::ReleaseAll(MemberBlock* last) noexcept
{
    while (last != nullptr) {
        Chunk* const chunk = last->chunk;
        last = last->previous;
        chunk->Release(1);
    }
}

} // namespace JSON
