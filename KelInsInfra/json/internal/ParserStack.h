#pragma once

#include <cstddef>
#include <memory>
#include <new>
#include <utility>

namespace JSON {

/// The parser's stack, in place of the generated one: several steps are taken on it for each token, which are a few
/// instructions here. Symbols own nothing, so they are not destroyed.
template <typename Symbol>
class ParserStack
{
public:
    ParserStack() = default;
    ParserStack(const ParserStack&) = delete;
    ParserStack& operator=(const ParserStack&) = delete;

    /// The symbol so many places below the top.
    Symbol& operator[](std::ptrdiff_t depth) { return next_[-1 - depth]; }

    void push(Symbol&& symbol)
    {
        if (next_ == end_)
            Grow();
        new (next_++) Symbol(std::move(symbol));
    }

    void pop(std::ptrdiff_t count = 1) noexcept { next_ -= count; }

    void clear() noexcept { next_ = begin_; }

    std::ptrdiff_t size() const noexcept { return next_ - begin_; }

private:
    static constexpr std::size_t kFirst = 200;

    [[gnu::noinline]] void Grow() // seldom needed; inlined, it brings gcc 12 to a warning about sizes of 0
    {
        const auto count = static_cast<std::size_t>(size());
        auto memory = std::make_unique_for_overwrite<std::byte[]>(2 * count * sizeof(Symbol));
        auto* const begin = reinterpret_cast<Symbol*>(memory.get());
        next_ = std::uninitialized_move(begin_, next_, begin);
        begin_ = begin;
        end_ = begin + 2 * count;
        memory_ = std::move(memory);
    }

    alignas(Symbol) std::byte first_[kFirst * sizeof(Symbol)];
    std::unique_ptr<std::byte[]> memory_; ///< once those do not suffice
    Symbol* begin_ = reinterpret_cast<Symbol*>(first_);
    Symbol* next_ = begin_;
    Symbol* end_ = begin_ + kFirst;
};

} // namespace JSON
