#include <KelInsInfra/json/internal/KeyIndex.h>
#include <KelInsInfra/json/internal/KeyedHash.h>
#include <KelInsInfra/json/internal/Member.h>

namespace JSON {
namespace {

constexpr std::size_t kFirstSize = 32;

}

void KeyIndex::ReserveOneMore()
{
    if (2 * (members_ + 1) <= slots_.size())
        return;
    std::vector<Slot> slots(slots_.empty() ? kFirstSize : 2 * slots_.size());
    for (const Slot& slot : slots_) {
        if (slot.member != nullptr)
            Place(slots, slot);
    }
    slots_ = std::move(slots);
}

void KeyIndex::Add(const Member& member) noexcept
{
    Place(slots_, {KeyedHash(member.first), &member});
    ++members_;
}

const Member* KeyIndex::Find(std::string_view key) const
{
    const std::uint64_t hash = KeyedHash(key);
    for (std::size_t i = hash & (slots_.size() - 1); slots_[i].member != nullptr; i = (i + 1) & (slots_.size() - 1)) {
        if (slots_[i].hash == hash && slots_[i].member->first == key)
            return slots_[i].member;
    }
    return nullptr;
}

void KeyIndex::Place(std::vector<Slot>& slots, const Slot& slot) noexcept
{
    std::size_t i = slot.hash & (slots.size() - 1);
    while (slots[i].member != nullptr)
        i = (i + 1) & (slots.size() - 1);
    slots[i] = slot;
}

} // namespace JSON
