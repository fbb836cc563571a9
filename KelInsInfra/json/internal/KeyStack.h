#pragma once

#include <KelInsInfra/json/internal/ByteRuns.h>
#include <KelInsInfra/json/internal/Escapes.h>
#include <algorithm>
#include <cstddef>
#include <memory>
#include <string_view>
#include <vector>

namespace JSON {

/// The keys of the objects that are being built: their bytes one after the other, so that a string is made of each only
/// once, in its final place.
class KeyStack
{
public:
    KeyStack() { sizes_.reserve(32); }

    void Push(std::string_view key)
    {
        if (capacity_ - used_ < key.size())
            Grow(key.size());
        sizes_.push_back(key.size());
        CopyBytes(bytes_.get() + used_, key);
        used_ += key.size();
    }

    std::string_view Last() const { return {bytes_.get() + used_ - sizes_.back(), sizes_.back()}; }

    void UnescapeLast()
    {
        char* const begin = bytes_.get() + used_ - sizes_.back();
        char* const end = Unescape(Last(), begin);
        used_ = static_cast<std::size_t>(end - bytes_.get());
        sizes_.back() = static_cast<std::size_t>(end - begin);
    }

    void DropLast() noexcept
    {
        used_ -= sizes_.back();
        sizes_.pop_back();
    }

private:
    void Grow(std::size_t size)
    {
        const std::size_t capacity = std::max<std::size_t>(512, 2 * (used_ + size));
        auto bytes = std::make_unique_for_overwrite<char[]>(capacity);
        std::copy_n(bytes_.get(), used_, bytes.get());
        bytes_ = std::move(bytes);
        capacity_ = capacity;
    }

    std::unique_ptr<char[]> bytes_;
    std::size_t used_ = 0;
    std::size_t capacity_ = 0;
    std::vector<std::size_t> sizes_;
};

} // namespace JSON
