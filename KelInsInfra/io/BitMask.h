#pragma once

#include <type_traits>

/// A set of the bits of one enumeration.
template <typename E>
class BitMask
{
public:
    using Value = std::underlying_type_t<E>;

    constexpr BitMask() = default; // no bit: "nothing"

    constexpr BitMask(E bit) : value_(static_cast<Value>(bit)) {} // implicit: one bit is a set of one

    constexpr bool Has(E bit) const { return (value_ & static_cast<Value>(bit)) != 0; }

    constexpr Value GetValue() const { return value_; }

    constexpr BitMask& operator|=(BitMask other) { return *this = *this | other; }

    friend constexpr BitMask operator|(BitMask a, BitMask b)
    {
        return BitMask(static_cast<Value>(a.value_ | b.value_));
    }

    friend constexpr BitMask operator&(BitMask a, BitMask b)
    {
        return BitMask(static_cast<Value>(a.value_ & b.value_));
    }

    friend constexpr bool operator==(BitMask a, BitMask b) = default;

private:
    constexpr explicit BitMask(Value value) : value_(value) {}

    Value value_ = 0;
};
