#pragma once

#include <KelInsInfra/json/Value.h>
#include <atomic>
#include <span>

namespace JSON {

class Pool;
enum class Made : std::uint8_t;

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

    /// Appends the values of an array that gets no more of them for now, which then take their exact room in the pool.
    /// @param shallow  whether the elements may be destroyed by recursion.
    void Complete(Pool& pool, std::span<std::shared_ptr<Value>> values, bool shallow);

    /// The elements, wherever they lie.
    std::span<const std::shared_ptr<Value>> Elements() const;

    /// The elements as a vector. Made when it is first asked for, on whatever thread, as most arrays are only written
    /// or asked for single elements; it stays the same vector from then on.
    std::vector<std::shared_ptr<Value>>& Vector() const;

    /// For taking a document apart: the last child's place, null where none is left.
    std::shared_ptr<Value>* LastChild() noexcept;
    void DropLastChild() noexcept;
    /// @endcond

private:
    struct Pooled;

    void DropPooled() noexcept;

    bool shallow_ = false;
    mutable std::atomic<Made> inVector_{}; ///< whether the vector has the elements
    Pooled* pooled_ = nullptr;             ///< the elements, unless they are in the vector alone
    mutable std::vector<std::shared_ptr<Value>> vector_;
};

} // namespace JSON
