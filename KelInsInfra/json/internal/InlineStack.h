#pragma once

#include <cstddef>
#include <memory>
#include <new>
#include <utility>

namespace JSON {

/// A stack whose first values lie in itself. What lies on it owns nothing, so it is not destroyed.
///
/// The parser has it in place of the generated one: several steps are taken on it for each token, which are a few
/// instructions here.
template <typename T, std::size_t kFirst>
class InlineStack
{
public:
    InlineStack() = default;
    InlineStack(const InlineStack&) = delete;
    InlineStack& operator=(const InlineStack&) = delete;

    /// The one so many places below the top.
    T& operator[](std::ptrdiff_t depth) { return next_[-1 - depth]; }

    const T& operator[](std::ptrdiff_t depth) const { return next_[-1 - depth]; }

    void push(T&& value)
    {
        if (next_ == end_)
            Grow();
        new (next_++) T(std::move(value));
    }

    void pop(std::ptrdiff_t count = 1) noexcept { next_ -= count; }

    void clear() noexcept { next_ = begin_; }

    std::ptrdiff_t size() const noexcept { return next_ - begin_; }

    bool empty() const noexcept { return next_ == begin_; }

private:
    [[gnu::noinline]] void Grow() // seldom needed; inlined, it brings gcc 12 to a warning about sizes of 0
    {
        const auto count = static_cast<std::size_t>(size());
        auto memory = std::make_unique_for_overwrite<std::byte[]>(2 * count * sizeof(T));
        auto* const begin = reinterpret_cast<T*>(memory.get());
        next_ = std::uninitialized_move(begin_, next_, begin);
        begin_ = begin;
        end_ = begin + 2 * count;
        memory_ = std::move(memory);
    }

    alignas(T) std::byte first_[kFirst * sizeof(T)];
    std::unique_ptr<std::byte[]> memory_; ///< once those do not suffice
    T* begin_ = reinterpret_cast<T*>(first_);
    T* next_ = begin_;
    T* end_ = begin_ + kFirst;
};

} // namespace JSON
