#include <KelInsInfra/json/Object.h>
#include <KelInsInfra/json/internal/Clone.h>
#include <KelInsInfra/json/internal/Escapes.h>
#include <KelInsInfra/json/internal/KeyIndex.h>
#include <KelInsInfra/json/internal/Member.h>
#include <KelInsInfra/json/internal/TakeApart.h>
#include <KelInsInfra/json/internal/Writer.h>
#include <algorithm>

namespace JSON {
namespace {

constexpr std::size_t kSearchedThrough = 32; ///< up to so many members a search beats a hash

/// Most keys differ in their size or their last byte.
bool SameKey(const std::string& a, std::string_view b)
{
    return a.size() == b.size() && (b.empty() || (a.back() == b.back() && a == b));
}

} // namespace

Object::Object() : Value(Type::Object) {}

Object::~Object()
{
    if (shallow_) {
        for (const POSITION position : order_)
            position->~Member();
    } else {
        DestroyChildren(*this);
    }
    MemberBlock::ReleaseAll(blocks_);
}

std::shared_ptr<Value> Object::Clone() const
{
    return CloneTree(*this);
}

void Object::Write(std::ostream& out) const
{
    WriteTree(*this, Form::Compact, 0, out);
}

std::uint64_t Object::GetSize() const
{
    return order_.size();
}

void Object::WriteIndented(std::ostream& out, std::int32_t level) const
{
    WriteTree(*this, Form::Indented, level, out);
}

void Object::Insert(std::string key, std::shared_ptr<Value> value)
{
    UnescapeInPlace(key);
    MakeRoomForOne();
    if (const POSITION position = Find(key)) {
        order_.erase(std::find(order_.rbegin(), order_.rend(), position).base() - 1);
        order_.push_back(position);
        const_cast<Member*>(position)->second = std::move(value);
        shallow_ = false;
        return;
    }
    Pool pool;
    blocks_ = MemberBlock::Create(pool, 1, blocks_);
    order_.push_back(new (blocks_->Begin()) Member(std::move(key), std::move(value)));
    shallow_ = false;
    if (index_)
        index_->Add(order_.back());
}

/// In order and index, so that a member is either inserted, or memory runs out before anything happens.
void Object::MakeRoomForOne()
{
    if (order_.size() == order_.capacity())
        order_.reserve(std::max<std::size_t>(4, 2 * order_.size()));
    if (order_.size() >= kSearchedThrough)
        MakeRoomInIndex();
}

void Object::MakeRoomInIndex()
{
    if (index_) {
        index_->ReserveOneMore();
        return;
    }
    auto index = std::make_unique<KeyIndex>(order_.size() + 1);
    for (const POSITION position : order_)
        index->Add(position);
    index_ = std::move(index);
}

void Object::Fill(Pool& pool, std::span<std::string> keys, std::span<std::shared_ptr<Value>> values, bool shallow)
{
    order_.reserve(keys.size());
    if (keys.size() > kSearchedThrough)
        index_ = std::make_unique<KeyIndex>(keys.size());
    blocks_ = MemberBlock::Create(pool, keys.size(), blocks_);
    shallow_ = shallow;

    // From the last to the first: of a repeated key the last value stays, in the last place.
    Member* const end = blocks_->Begin() + keys.size();
    Member* first = end;
    for (std::size_t i = keys.size(); i-- > 0;) {
        if (!index_ && std::any_of(first, end, [&](const Member& other) { return SameKey(other.first, keys[i]); }))
            continue;
        new (--first) Member(std::move(keys[i]), std::move(values[i]));
        if (index_ && !index_->Add(first))
            (first++)->~Member();
    }
    while (first != end)
        order_.push_back(first++);
}

POSITION Object::Find(std::string_view key) const
{
    if (index_)
        return index_->Find(key);
    const auto found =
        std::find_if(order_.begin(), order_.end(), [key](POSITION member) { return SameKey(member->first, key); });
    return found != order_.end() ? *found : nullptr;
}

std::shared_ptr<Value>* Object::LastChild() noexcept
{
    return order_.empty() ? nullptr : &const_cast<Member*>(order_.back())->second;
}

void Object::DropLastChild() noexcept
{
    order_.back()->~Member();
    order_.pop_back();
}

} // namespace JSON
