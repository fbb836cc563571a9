#pragma once

#include <type_traits>

/// A set of the bits of one enumeration.
template <typename E>
class BitMask
{
public:
    using Value = std::underlying_type_t<E>; ///< what holds the bits

    constexpr BitMask() = default; ///< no bit: "nothing"

    constexpr BitMask(E bit) : value_(static_cast<Value>(bit)) {} ///< implicit: one bit is a set of one

    /// Whether the bit is in the set; of a value with several bits, whether one of them is.
    constexpr bool Has(E bit) const { return (value_ & static_cast<Value>(bit)) != 0; }

    /// The bits as a number.
    constexpr Value GetValue() const { return value_; }

    /// Adds the other's bits.
    constexpr BitMask& operator|=(BitMask other) { return *this = *this | other; }

    /// The bits of either.
    friend constexpr BitMask operator|(BitMask a, BitMask b)
    {
        return BitMask(static_cast<Value>(a.value_ | b.value_));
    }

    /// The bits that are in both.
    friend constexpr BitMask operator&(BitMask a, BitMask b)
    {
        return BitMask(static_cast<Value>(a.value_ & b.value_));
    }

    /// Whether both hold the same bits.
    friend constexpr bool operator==(BitMask a, BitMask b) = default;

private:
    constexpr explicit BitMask(Value value) : value_(value) {}

    Value value_ = 0;
};
