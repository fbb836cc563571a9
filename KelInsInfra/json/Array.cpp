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

/// Elements in a pool, which follow this.
struct Array::Pooled
{
    std::shared_ptr<Value>* Begin() { return reinterpret_cast<std::shared_ptr<Value>*>(this + 1); }

    std::shared_ptr<Value>* End() { return Begin() + count; }

    Chunk& chunk; ///< in which they lie
    std::size_t count;
};

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
    auto& vector = Vector();
    vector.insert(vector.end(), std::make_move_iterator(values.begin()), std::make_move_iterator(values.end()));
    DropPooled();
    shallow_ = false;
}

void Array::Complete(Pool& pool, std::span<std::shared_ptr<Value>> values, bool shallow)
{
    if (!Elements().empty()) {
        Append(values);
    } else if (!values.empty()) {
        const std::size_t bytes = sizeof(Pooled) + values.size_bytes();
        Chunk& chunk = pool.ChunkFor(bytes);
        pooled_ = new (chunk.Take(bytes)) Pooled{chunk, values.size()};
        std::uninitialized_move(values.begin(), values.end(), pooled_->Begin());
    }
    shallow_ = shallow;
}

std::span<const std::shared_ptr<Value>> Array::Elements() const
{
    using Span = std::span<const std::shared_ptr<Value>>;
    return pooled_ != nullptr ? Span(pooled_->Begin(), pooled_->End()) : Span(vector_);
}

std::vector<std::shared_ptr<Value>>& Array::Vector() const
{
    if (pooled_ != nullptr)
        MakeOnce(vector_, inVector_, [this] { return std::vector(pooled_->Begin(), pooled_->End()); });
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
