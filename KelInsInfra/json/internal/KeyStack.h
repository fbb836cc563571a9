#pragma once

#include <KelInsInfra/json/internal/ByteRuns.h>
#include <KelInsInfra/json/internal/Escapes.h>
#include <KelInsInfra/json/internal/InlineStack.h>
#include <algorithm>
#include <cstddef>
#include <memory>
#include <string_view>
#include <utility>

namespace JSON {

/// The keys of the objects that are being built: their bytes one after the other, so that a string is made of each only
/// once, in its final place.
class KeyStack
{
public:
    KeyStack() = default;
    KeyStack(const KeyStack&) = delete;
    KeyStack& operator=(const KeyStack&) = delete;

    void Push(std::string_view key)
    {
        if (static_cast<std::size_t>(end_ - next_) < key.size())
            Grow(key.size());
        sizes_.push(key.size());
        CopyBytes(next_, key);
        next_ += key.size();
    }

    std::string_view Last() const { return {next_ - sizes_[0], sizes_[0]}; }

    void UnescapeLast()
    {
        char* const begin = next_ - sizes_[0];
        next_ = Unescape(Last(), begin);
        sizes_[0] = static_cast<std::size_t>(next_ - begin);
    }

    void DropLast() noexcept
    {
        next_ -= sizes_[0];
        sizes_.pop();
    }

private:
    [[gnu::noinline]] void Grow(std::size_t size) // seldom needed
    {
        const auto used = static_cast<std::size_t>(next_ - begin_);
        const std::size_t capacity = 2 * (used + size);
        auto bytes = std::make_unique_for_overwrite<char[]>(capacity);
        std::copy_n(begin_, used, bytes.get());
        begin_ = bytes.get();
        next_ = begin_ + used;
        end_ = begin_ + capacity;
        grown_ = std::move(bytes);
    }

    char first_[512];
    std::unique_ptr<char[]> grown_; ///< once those do not suffice
    char* begin_ = first_;
    char* next_ = first_;
    char* end_ = first_ + sizeof(first_);
    InlineStack<std::size_t, 32> sizes_;
};

} // namespace JSON
