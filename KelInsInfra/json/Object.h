#pragma once

#include <KelInsInfra/json/Value.h>
#include <atomic>
#include <span>
#include <string_view>

namespace JSON {

class KeyIndex;
class KeyStack;
class Pool;
struct MemberBlock;

/// Members by key, in the order of their insertion. Filled through JSON::Driver.
class Object : public Value
{
public:
    /// For the library itself: Driver::CreateObject makes objects.
    Object();

    ~Object() override;

    std::shared_ptr<Value> Clone() const override;
    void Write(std::ostream& out) const override;
    std::uint64_t GetSize() const override;
    void WriteIndented(std::ostream& out, std::int32_t level) const override;

    /// @cond  what follows is for the library itself, and not exported

    /// Stores a member under the key as Driver::RemoveJSONEscaping gives it. A key that is there already gets the new
    /// value and moves to the end.
    void Insert(std::string key, std::shared_ptr<Value> value);

    /// The same for all members of an object that is empty yet, one after the other, their keys unescaped already.
    /// @param keys  has the object's keys on its top, which it loses.
    /// @param shallow  whether the values may be destroyed by recursion.
    void Fill(Pool& pool, KeyStack& keys, std::span<std::shared_ptr<Value>> values, bool shallow);

    /// Null where there is none.
    POSITION Find(std::string_view key) const;

    /// The member at a place below GetSize.
    POSITION At(std::size_t place) const
    {
        const std::vector<POSITION>* const order = order_.load(std::memory_order_acquire);
        return order != nullptr ? (*order)[place] : first_ + place;
    }

    /// All of them. Made when it is first asked for, on whatever thread, as most objects are only written or looked
    /// into; it stays the same vector from then on.
    const std::vector<POSITION>& Order() const;

    /// For taking a document apart: the last child's place, null where none is left.
    std::shared_ptr<Value>* LastChild() noexcept;
    void DropLastChild() noexcept;
    /// @endcond

private:
    void MakeRoomInIndex();

    bool shallow_ = false;
    std::size_t size_ = 0;
    POSITION first_ = nullptr; ///< all members lie one after the other from here, as long as there is no order
    mutable std::atomic<std::vector<POSITION>*> order_ = nullptr; ///< owned
    MemberBlock* blocks_ = nullptr;                               ///< the last one
    std::unique_ptr<KeyIndex> index_; ///< only in objects of many members; the others are searched through
};

} // namespace JSON
