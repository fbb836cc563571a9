#pragma once

#include <KelInsInfra/json/Value.h>
#include <cstdint>
#include <string_view>
#include <vector>

namespace JSON {

/// A hash table over the members of one object. Its hash is keyed with a random number of this process, so that a
/// document cannot choose keys that collide.
class KeyIndex
{
public:
    /// With room for so many members.
    explicit KeyIndex(std::size_t members);

    /// Makes room for one more member, so that Add throws nothing.
    void ReserveOneMore();

    /// Adds a member unless its key is there already. Answers whether it was added.
    bool Add(POSITION member) noexcept;

    /// Null where there is none.
    POSITION Find(std::string_view key) const;

private:
    struct Slot
    {
        std::uint64_t hash;
        POSITION member;
    };

    std::size_t SlotFor(std::uint64_t hash, std::string_view key) const;

    std::size_t members_ = 0;
    std::vector<Slot> slots_; ///< a power of two of them, at least a quarter of them empty
};

} // namespace JSON
