#pragma once

#include <KelInsInfra/json/Value.h>
#include <span>

namespace JSON {

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

    /// @param shallow  whether the elements may be destroyed by recursion.
    void Append(std::span<std::shared_ptr<Value>> values, bool shallow = false);

    const std::vector<std::shared_ptr<Value>>& Elements() const { return elements_; }

    /// For taking a document apart: the last child's place, null where none is left.
    std::shared_ptr<Value>* LastChild() noexcept { return elements_.empty() ? nullptr : &elements_.back(); }

    void DropLastChild() noexcept { elements_.pop_back(); }

    /// @endcond

private:
    bool shallow_ = false;
    std::vector<std::shared_ptr<Value>> elements_;
};

} // namespace JSON
