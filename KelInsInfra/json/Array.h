#pragma once

#include <KelInsInfra/json/Value.h>
#include <atomic>
#include <span>

namespace JSON {

class Chunk;
class Pool;

/// Values in order. Filled through JSON::Driver.
class Array : public Value
{
public:
    /// For the library itself: Driver::CreateArray makes arrays.
    Array() : Value(Type::Array) {}

    ~Array() override;

    std::shared_ptr<Value> Clone() const override;
    void Write(std::ostream& out) const override;
    std::uint64_t GetSize() const override;
    void WriteIndented(std::ostream& out, std::int32_t level) const override;

    /// @cond  what follows is for the library itself, and not exported
    void Append(std::shared_ptr<Value> value);
    void Append(std::span<std::shared_ptr<Value>> values);

    /// Appends the last values of an array that is being built. If they are all of its values, they take their exact
    /// room in the pool.
    /// @param shallow  whether the elements may be destroyed by recursion.
    void Complete(Pool& pool, std::span<std::shared_ptr<Value>> values, bool shallow);

    /// The elements, wherever they lie.
    std::span<const std::shared_ptr<Value>> Elements() const
    {
        using Span = std::span<const std::shared_ptr<Value>>;
        if (pooled_ != nullptr)
            return Span(pooled_->Begin(), pooled_->count);
        const auto* const vector = vector_.load(std::memory_order_acquire);
        return vector != nullptr ? Span(*vector) : Span();
    }

    /// The elements as a vector. Made when it is first asked for, on whatever thread, as many arrays are only written
    /// or asked for single elements; it stays the same vector from then on.
    const std::vector<std::shared_ptr<Value>>& Vector() const;

    /// For taking a document apart: the last child's place, null where none is left. Called before DropLastChild,
    /// as it takes the vector's copies away.
    std::shared_ptr<Value>* LastChild() noexcept;
    void DropLastChild() noexcept;
    /// @endcond

private:
    /// Elements in a pool, which follow this.
    struct Pooled
    {
        std::shared_ptr<Value>* Begin() { return reinterpret_cast<std::shared_ptr<Value>*>(this + 1); }

        std::shared_ptr<Value>* End() { return Begin() + count; }

        Chunk& chunk; ///< in which they lie
        std::size_t count;
    };

    void DropPooled() noexcept;
    void DropVector() noexcept;

    bool shallow_ = false;
    Pooled* pooled_ = nullptr; ///< the elements, unless the vector alone has them
    /// Owned; has copies of those in the pool.
    mutable std::atomic<std::vector<std::shared_ptr<Value>>*> vector_ = nullptr;
};

} // namespace JSON
