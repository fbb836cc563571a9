#include <KelInsInfra/json/Object.h>
#include <KelInsInfra/json/internal/Clone.h>
#include <KelInsInfra/json/internal/Escapes.h>
#include <KelInsInfra/json/internal/KeyIndex.h>
#include <KelInsInfra/json/internal/Member.h>
#include <KelInsInfra/json/internal/Pool.h>
#include <KelInsInfra/json/internal/TakeApart.h>
#include <KelInsInfra/json/internal/Writer.h>
#include <algorithm>

namespace JSON {
namespace {

constexpr std::size_t kSearchedThrough = 8; ///< up to so many members a search beats a hash

void UnescapeInPlace(std::string& key)
{
    if (key.find('\\') != std::string::npos)
        key.resize(static_cast<std::size_t>(Unescape(key, key.data()) - key.data()));
}

template <typename T>
void MakeRoomForOne(std::vector<T>& items)
{
    if (items.size() == items.capacity())
        items.reserve(std::max<std::size_t>(4, 2 * items.size()));
}

} // namespace

Object::Object() : Value(Type::Object) {}

Object::~Object()
{
    while (std::shared_ptr<Value>* const last = LastChild()) {
        if (IsLastOwnerOfContainer(*last))
            TakeApart(std::move(*last));
        DropLastChild();
    }
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
    Pool pool;
    InsertUnsettled(pool, std::move(key), std::move(value));
    Settle();
}

void Object::InsertUnsettled(Pool& pool, std::string key, std::shared_ptr<Value> value)
{
    UnescapeInPlace(key);
    MakeRoomForOne(order_);
    if (order_.size() >= kSearchedThrough)
        MakeRoomInIndex();
    if (const Member* const member = Find(key))
        Replace(MemberAt(member), std::move(value));
    else
        AddMember(pool, std::move(key), std::move(value));
}

/// Makes the index where there is none yet, and sees to it that the next member can be added to it.
void Object::MakeRoomInIndex()
{
    if (index_) {
        index_->ReserveOneMore();
        return;
    }
    auto index = std::make_unique<KeyIndex>();
    for (const POSITION position : order_) {
        if (position == nullptr)
            continue;
        index->ReserveOneMore();
        index->Add(MemberAt(position));
    }
    index->ReserveOneMore();
    index_ = std::move(index);
}

void Object::Replace(Member& member, std::shared_ptr<Value> value) noexcept
{
    order_[member.place] = nullptr;
    firstHole_ = std::min(firstHole_, member.place);
    member.place = order_.size();
    order_.push_back(&member);
    member.second = std::move(value);
}

void Object::AddMember(Pool& pool, std::string key, std::shared_ptr<Value> value)
{
    Chunk& chunk = pool.ChunkFor(Chunk::Rounded(sizeof(Member)));
    auto* const member =
        new (chunk.Take(sizeof(Member))) Member(std::move(key), std::move(value), chunk, order_.size());
    order_.push_back(member);
    if (index_)
        index_->Add(*member);
}

void Object::Settle() noexcept
{
    if (firstHole_ == kNoHole)
        return;
    std::size_t end = firstHole_;
    for (std::size_t i = firstHole_; i < order_.size(); ++i) {
        if (order_[i] == nullptr)
            continue;
        MemberAt(order_[i]).place = end;
        order_[end++] = order_[i];
    }
    order_.resize(end);
    firstHole_ = kNoHole;
}

const Member* Object::Find(std::string_view key) const
{
    if (index_)
        return index_->Find(key);
    for (const POSITION position : order_) {
        if (position != nullptr && position->first == key)
            return &MemberAt(position);
    }
    return nullptr;
}

std::shared_ptr<Value>* Object::LastChild() noexcept
{
    Settle(); // memory may have run out in the middle of a document
    return order_.empty() ? nullptr : &MemberAt(order_.back()).second;
}

void Object::DropLastChild() noexcept
{
    Member& member = MemberAt(order_.back());
    order_.pop_back();
    Chunk* const chunk = member.chunk;
    member.~Member();
    chunk->Release(1);
}

} // namespace JSON
