#pragma once

#include <KelInsInfra/json/Array.h>
#include <KelInsInfra/json/Item.h>
#include <KelInsInfra/json/Object.h>
#include <KelInsInfra/json/internal/ByteRuns.h>
#include <KelInsInfra/json/internal/Escapes.h>
#include <KelInsInfra/json/internal/Pool.h>
#include <cstring>
#include <memory>
#include <string_view>

namespace JSON {

/// Bytes that a shared value takes in its chunk, with a generous share for the reference counts.
template <typename T>
constexpr std::size_t kSharedSize = Chunk::Rounded(sizeof(T) + 6 * sizeof(void*));

template <typename T>
std::shared_ptr<T> MakeContainer(Pool& pool)
{
    return std::allocate_shared<T>(ChunkAllocator<T>(pool.ChunkFor(kSharedSize<T>)));
}

inline Item::Item(Type type, Chunk& chunk, std::string_view text, bool hasEscapes) : Value(type)
{
    char* const room = chunk.Take(RoomFor(text.size()));
    char* const copy = room + (RoomFor(text.size()) - text.size());
    std::size_t size = text.size();
    if (hasEscapes)
        size = static_cast<std::size_t>(Unescape(text, copy) - copy);
    else
        CopyBytes(copy, text);
    text_ = copy;
    if (copy == room) {
        size_ = static_cast<std::uint32_t>(size);
    } else {
        size_ = kLong;
        std::memcpy(room, &size, sizeof(size));
    }
}

inline std::shared_ptr<Item> MakeItem(Pool& pool, Type type, std::string_view text = {}, bool hasEscapes = false)
{
    Chunk& chunk = pool.ChunkFor(kSharedSize<Item> + Chunk::Rounded(Item::RoomFor(text.size())));
    return std::allocate_shared<Item>(ChunkAllocator<Item>(chunk), type, chunk, text, hasEscapes);
}

} // namespace JSON
