#pragma once

#include <KelInsInfra/json/Value.h>
#include <string_view>

namespace JSON {

class KeyIndex;
class Pool;
struct Member;

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

    /// The same, but a repeated key leaves a hole in the order until Settle closes all holes at once: for whole
    /// documents, in which many keys may be repeated.
    void InsertUnsettled(Pool& pool, std::string key, std::shared_ptr<Value> value);
    void Settle() noexcept;

    const Member* Find(std::string_view key) const;

    const std::vector<POSITION>& Order() const { return order_; }

    /// For taking a document apart: the last child's place, null where none is left.
    std::shared_ptr<Value>* LastChild() noexcept;
    void DropLastChild() noexcept;
    /// @endcond

private:
    static constexpr std::size_t kNoHole = static_cast<std::size_t>(-1);

    void MakeRoomInIndex();
    void Replace(Member& member, std::shared_ptr<Value> value) noexcept;
    void AddMember(Pool& pool, std::string key, std::shared_ptr<Value> value);

    std::vector<POSITION> order_;
    std::unique_ptr<KeyIndex> index_; ///< only in objects of many members; the others are searched through
    std::size_t firstHole_ = kNoHole;
};

} // namespace JSON
