#include <KelInsInfra/json/internal/KeyIndex.h>
#include <KelInsInfra/json/internal/KeyedHash.h>
#include <bit>

namespace JSON {
namespace {

std::size_t SlotsFor(std::size_t members)
{
    return std::bit_ceil(members + members / 3 + 1);
}

} // namespace

KeyIndex::KeyIndex(std::size_t members) : slots_(SlotsFor(members))
{
    KeyedHash({}); // makes the process's hash key, which may throw here
}

void KeyIndex::ReserveOneMore()
{
    if (SlotsFor(members_ + 1) <= slots_.size())
        return;
    std::vector<Slot> slots(2 * slots_.size());
    for (const Slot& slot : slots_) {
        if (slot.member == nullptr)
            continue;
        std::size_t i = slot.hash & (slots.size() - 1);
        while (slots[i].member != nullptr)
            i = (i + 1) & (slots.size() - 1);
        slots[i] = slot;
    }
    slots_ = std::move(slots);
}

bool KeyIndex::Add(POSITION member) noexcept
{
    const std::uint64_t hash = KeyedHash(member->first);
    Slot& slot = slots_[SlotFor(hash, member->first)];
    if (slot.member != nullptr)
        return false;
    slot = {hash, member};
    ++members_;
    return true;
}

POSITION KeyIndex::Find(std::string_view key) const
{
    return slots_[SlotFor(KeyedHash(key), key)].member;
}

/// The slot that holds the key, or the empty one where it belongs.
std::size_t KeyIndex::SlotFor(std::uint64_t hash, std::string_view key) const
{
    std::size_t i = hash & (slots_.size() - 1);
    while (slots_[i].member != nullptr && (slots_[i].hash != hash || slots_[i].member->first != key))
        i = (i + 1) & (slots_.size() - 1);
    return i;
}

} // namespace JSON
