#pragma once

#include <cstddef>
#include <vector>

namespace JSON {

/// The parser's stack, in place of the generated one: several steps are taken on it for each token, which are a few
/// instructions here.
template <typename Symbol>
class ParserStack
{
public:
    ParserStack() : symbols_(kFirst), top_(symbols_.data()) {}

    ParserStack(const ParserStack&) = delete;
    ParserStack& operator=(const ParserStack&) = delete;

    /// The symbol so many places below the top.
    Symbol& operator[](std::ptrdiff_t depth) { return top_[-depth]; }

    void push(Symbol&& symbol)
    {
        if (top_ == &symbols_.back())
            Grow();
        (++top_)->move(symbol);
    }

    void pop(std::ptrdiff_t count = 1) noexcept { top_ -= count; }

    void clear() noexcept { top_ = symbols_.data(); }

    std::ptrdiff_t size() const noexcept { return top_ - symbols_.data(); }

private:
    static constexpr std::size_t kFirst = 200;

    void Grow()
    {
        const std::ptrdiff_t count = size();
        symbols_.resize(2 * symbols_.size());
        top_ = symbols_.data() + count;
    }

    std::vector<Symbol> symbols_; ///< the first one is never used
    Symbol* top_;
};

} // namespace JSON
