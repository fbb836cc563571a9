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
    DropVector();
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
    auto& vector = const_cast<std::vector<std::shared_ptr<Value>>&>(Vector());
    vector.insert(vector.end(), std::make_move_iterator(values.begin()), std::make_move_iterator(values.end()));
    DropPooled();
    shallow_ = false;
}

void Array::Complete(Pool& pool, std::span<std::shared_ptr<Value>> values, bool shallow)
{
    static_assert(alignof(Pooled) <= alignof(void*) && sizeof(Pooled) % alignof(void*) == 0);
    if (vector_.load(std::memory_order_relaxed) != nullptr) {
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
    return MakeOnce(vector_, [this] {
        const auto elements = Elements();
        return std::vector(elements.begin(), elements.end());
    });
}

std::shared_ptr<Value>* Array::LastChild() noexcept
{
    if (pooled_ != nullptr) {
        DropVector(); // other owners of the same values, so none is destroyed
        return pooled_->count > 0 ? pooled_->End() - 1 : nullptr;
    }
    auto* const vector = vector_.load(std::memory_order_relaxed);
    return vector != nullptr && !vector->empty() ? &vector->back() : nullptr;
}

void Array::DropLastChild() noexcept
{
    if (pooled_ != nullptr)
        std::destroy_at(pooled_->Begin() + --pooled_->count);
    else
        vector_.load(std::memory_order_relaxed)->pop_back();
}

void Array::DropPooled() noexcept
{
    if (Pooled* const pooled = std::exchange(pooled_, nullptr)) {
        std::destroy(pooled->Begin(), pooled->End());
        pooled->chunk.Release(1);
    }
}

void Array::DropVector() noexcept
{
    delete vector_.load(std::memory_order_relaxed);
    vector_.store(nullptr, std::memory_order_relaxed);
}

} // namespace JSON
