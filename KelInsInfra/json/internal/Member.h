#pragma once

#include <KelInsInfra/json/Value.h>
#include <KelInsInfra/json/internal/Pool.h>
#include <cstddef>
#include <utility>

namespace JSON {

/// One member of an object, where positions point to.
using Member = std::pair<const std::string, std::shared_ptr<Value>>;

/// Memory for some members of an object, which follow it. They stay where they are as long as the object lives.
struct MemberBlock
{
    /// @param previous  of the same object.
    static MemberBlock* Create(Pool& pool, std::size_t members, MemberBlock* previous);

    /// Gives back this block and the ones before it; their members are destroyed already.
    static void ReleaseAll(MemberBlock* last) noexcept;

    Member* Begin() { return reinterpret_cast<Member*>(this + 1); }

    MemberBlock* previous;
    Chunk* chunk; ///< in which it lies
};

} // namespace JSON
