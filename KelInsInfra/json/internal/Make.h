#pragma once

#include <KelInsInfra/json/Array.h>
#include <KelInsInfra/json/Item.h>
#include <KelInsInfra/json/Object.h>
#include <KelInsInfra/json/internal/ByteRuns.h>
#include <KelInsInfra/json/internal/Escapes.h>
#include <KelInsInfra/json/internal/Pool.h>
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
    char* const copy = chunk.Take(text.size());
    textOffset_ = static_cast<std::uint32_t>(copy - reinterpret_cast<char*>(this));
    textSize_ = text.size();
    if (hasEscapes)
        textSize_ = static_cast<std::size_t>(Unescape(text, copy) - copy);
    else
        CopyBytes(copy, text);
}

inline std::shared_ptr<Item> MakeItem(Pool& pool, Type type, std::string_view text = {}, bool hasEscapes = false)
{
    Chunk& chunk = pool.ChunkFor(kSharedSize<Item> + Chunk::Rounded(text.size()));
    return std::allocate_shared<Item>(ChunkAllocator<Item>(chunk), type, chunk, text, hasEscapes);
}

} // namespace JSON
