#include <KelInsInfra/json/Object.h>
#include <KelInsInfra/json/internal/Clone.h>
#include <KelInsInfra/json/internal/Escapes.h>
#include <KelInsInfra/json/internal/KeyIndex.h>
#include <KelInsInfra/json/internal/KeyStack.h>
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

void Object::Fill(Pool& pool, KeyStack& keys, std::span<std::shared_ptr<Value>> values, bool shallow)
{
    order_.reserve(values.size());
    if (values.size() > kSearchedThrough)
        index_ = std::make_unique<KeyIndex>(values.size());
    blocks_ = MemberBlock::Create(pool, values.size(), blocks_);
    shallow_ = shallow;

    // From the last to the first: of a repeated key the last value stays, in the last place.
    Member* const end = blocks_->Begin() + values.size();
    Member* first = end;
    for (std::size_t i = values.size(); i-- > 0; keys.DropLast()) {
        const std::string_view key = keys.Last();
        if (!index_ && std::any_of(first, end, [key](const Member& other) { return SameKey(other.first, key); }))
            continue;
        auto* const member = new (first - 1) Member(key, std::move(values[i]));
        if (index_ && !index_->Add(member)) {
            member->~Member();
            continue;
        }
        order_.push_back(member);
        first = member;
    }
    std::reverse(order_.begin(), order_.end());
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
