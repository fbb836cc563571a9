#pragma once

#include <KelInsInfra/json/Value.h>
#include <cstddef>
#include <utility>

namespace JSON {

class Chunk;

/// One member of an object, where positions point to.
struct Member : std::pair<const std::string, std::shared_ptr<Value>>
{
    Member(std::string key, std::shared_ptr<Value> value, Chunk& memory, std::size_t index)
        : pair(std::move(key), std::move(value)), chunk(&memory), place(index)
    {}

    Chunk* chunk;      ///< in which it lies
    std::size_t place; ///< its index in the object's order
};

/// The member behind a position that the object itself handed out.
inline Member& MemberAt(POSITION position)
{
    return const_cast<Member&>(static_cast<const Member&>(*position));
}

} // namespace JSON
