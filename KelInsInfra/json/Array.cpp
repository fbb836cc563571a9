#include <KelInsInfra/json/Array.h>
#include <KelInsInfra/json/internal/Clone.h>
#include <KelInsInfra/json/internal/MakeOnce.h>
#include <KelInsInfra/json/internal/Pool.h>
#include <KelInsInfra/json/internal/TakeApart.h>
#include <KelInsInfra/json/internal/Writer.h>
#include <iterator>
#include <memory>
#include <utility>

namespace JSON {

Array::~Array()
{
    if (!shallow_)
        DestroyChildren(*this);
    DropPooled();
}

std::shared_ptr<Value> Array::Clone() const
{
    return CloneTree(*this);
}

void Array::Write(std::ostream& out) const
{
    WriteTree(*this, Form::Compact, 0, out);
}

std::uint64_t Array::GetSize() const
{
    return Elements().size();
}

void Array::WriteIndented(std::ostream& out, std::int32_t level) const
{
    WriteTree(*this, Form::Indented, level, out);
}

void Array::Append(std::shared_ptr<Value> value)
{
    Append({&value, 1});
}

void Array::Append(std::span<std::shared_ptr<Value>> values)
{
    Vector();
    vector_.insert(vector_.end(), std::make_move_iterator(values.begin()), std::make_move_iterator(values.end()));
    DropPooled();
    shallow_ = false;
}

void Array::Complete(Pool& pool, std::span<std::shared_ptr<Value>> values, bool shallow)
{
    static_assert(alignof(Pooled) <= alignof(void*) && sizeof(Pooled) % alignof(void*) == 0);
    if (!vector_.empty()) {
        Append(values);
    } else if (!values.empty()) {
        const std::size_t bytes = sizeof(Pooled) + values.size_bytes();
        Chunk& chunk = pool.ChunkFor(bytes);
        pooled_ = new (chunk.Take(bytes)) Pooled{chunk, values.size()};
        std::uninitialized_move(values.begin(), values.end(), pooled_->Begin());
    }
    shallow_ = shallow;
}

const std::vector<std::shared_ptr<Value>>& Array::Vector() const
{
    if (pooled_ != nullptr)
        MakeOnce(vector_, copied_, [this] { return std::vector(pooled_->Begin(), pooled_->End()); });
    return vector_;
}

std::shared_ptr<Value>* Array::LastChild() noexcept
{
    if (pooled_ == nullptr)
        return vector_.empty() ? nullptr : &vector_.back();
    vector_.clear(); // only second owners
    return pooled_->count > 0 ? pooled_->End() - 1 : nullptr;
}

void Array::DropLastChild() noexcept
{
    if (pooled_ == nullptr)
        vector_.pop_back();
    else
        std::destroy_at(pooled_->Begin() + --pooled_->count);
}

void Array::DropPooled() noexcept
{
    if (Pooled* const pooled = std::exchange(pooled_, nullptr)) {
        std::destroy(pooled->Begin(), pooled->End());
        pooled->chunk.Release(1);
    }
}

} // namespace JSON
