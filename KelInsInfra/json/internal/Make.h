#pragma once

#include <KelInsInfra/json/Array.h>
#include <KelInsInfra/json/Item.h>
#include <KelInsInfra/json/Object.h>
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

inline std::shared_ptr<Item> MakeItem(Pool& pool, Type type, std::string_view text = {})
{
    Chunk& chunk = pool.ChunkFor(Chunk::Rounded(text.size()) + kSharedSize<Item>);
    char* const copy = chunk.Take(text.size());
    if (!text.empty())
        std::memcpy(copy, text.data(), text.size());
    return std::allocate_shared<Item>(ChunkAllocator<Item>(chunk), type, std::string_view(copy, text.size()));
}

/// A string from its text with escapes. An empty one becomes null: kept for readers that know no empty strings.
inline std::shared_ptr<Item> MakeUnescapedString(Pool& pool, std::string_view escaped)
{
    Chunk& chunk = pool.ChunkFor(Chunk::Rounded(escaped.size()) + kSharedSize<Item>);
    char* const begin = chunk.Take(escaped.size());
    const std::string_view text(begin, static_cast<std::size_t>(Unescape(escaped, begin) - begin));
    return std::allocate_shared<Item>(ChunkAllocator<Item>(chunk), text.empty() ? Type::Null : Type::String, text);
}

} // namespace JSON
