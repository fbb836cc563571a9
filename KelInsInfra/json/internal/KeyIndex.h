#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace JSON {

struct Member;

/// A hash table over the members of one object. Its hash is keyed with a random number of this process, so that a
/// document cannot choose keys that collide.
class KeyIndex
{
public:
    /// Makes room for one more member, so that Add throws nothing.
    void ReserveOneMore();

    /// A member whose key is not in the table yet.
    void Add(const Member& member) noexcept;

    const Member* Find(std::string_view key) const;

private:
    struct Slot
    {
        std::uint64_t hash;
        const Member* member;
    };

    static void Place(std::vector<Slot>& slots, const Slot& slot) noexcept;

    std::size_t members_ = 0;
    std::vector<Slot> slots_; ///< a power of two of them, at least half of them empty
};

} // namespace JSON
