#include <KelInsInfra/json/Object.h>
#include <KelInsInfra/json/internal/Clone.h>
#include <KelInsInfra/json/internal/Escapes.h>
#include <KelInsInfra/json/internal/KeyIndex.h>
#include <KelInsInfra/json/internal/KeyStack.h>
#include <KelInsInfra/json/internal/MakeOnce.h>
#include <KelInsInfra/json/internal/Member.h>
#include <KelInsInfra/json/internal/TakeApart.h>
#include <KelInsInfra/json/internal/Writer.h>
#include <algorithm>
#include <numeric>

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
        while (size_ > 0)
            DropLastChild();
    } else {
        DestroyChildren(*this);
    }
    MemberBlock::ReleaseAll(blocks_);
    delete order_.load(std::memory_order_relaxed);
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
    return size_;
}

void Object::WriteIndented(std::ostream& out, std::int32_t level) const
{
    WriteTree(*this, Form::Indented, level, out);
}

const std::vector<POSITION>& Object::Order() const
{
    return MakeOnce(order_, [this] {
        std::vector<POSITION> order(size_);
        std::iota(order.begin(), order.end(), first_);
        return order;
    });
}

void Object::Insert(std::string key, std::shared_ptr<Value> value)
{
    UnescapeInPlace(key);
    auto& order = const_cast<std::vector<POSITION>&>(Order());
    // Room first, so that a member is either inserted, or memory runs out before anything happens.
    if (size_ == order.capacity())
        order.reserve(std::max<std::size_t>(4, 2 * size_));
    if (size_ >= kSearchedThrough)
        MakeRoomInIndex();
    if (const POSITION position = Find(key)) {
        order.erase(std::find(order.rbegin(), order.rend(), position).base() - 1);
        order.push_back(position);
        const_cast<Member*>(position)->second = std::move(value);
        shallow_ = false;
        return;
    }
    Pool pool;
    blocks_ = MemberBlock::Create(pool, 1, blocks_);
    order.push_back(new (blocks_->Begin()) Member(std::move(key), std::move(value)));
    ++size_;
    shallow_ = false;
    if (index_)
        index_->Add(order.back());
}

void Object::MakeRoomInIndex()
{
    if (index_) {
        index_->ReserveOneMore();
        return;
    }
    auto index = std::make_unique<KeyIndex>(size_ + 1);
    for (std::size_t i = 0; i < size_; ++i)
        index->Add(At(i));
    index_ = std::move(index);
}

void Object::Fill(Pool& pool, KeyStack& keys, std::span<std::shared_ptr<Value>> values, bool shallow)
{
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
        first_ = first = member; // at once: memory may run out for the next
        ++size_;
    }
}

POSITION Object::Find(std::string_view key) const
{
    if (index_)
        return index_->Find(key);
    for (std::size_t i = 0; i < size_; ++i) {
        if (const POSITION member = At(i); SameKey(member->first, key))
            return member;
    }
    return nullptr;
}

std::shared_ptr<Value>* Object::LastChild() noexcept
{
    return size_ > 0 ? &const_cast<Member*>(At(size_ - 1))->second : nullptr;
}

void Object::DropLastChild() noexcept
{
    At(--size_)->~Member();
}

} // namespace JSON
