#pragma once

#include <KelInsInfra/foundation/internal/Bytes.h>
#include <string>
#include <utility>

namespace KelInsIO {

/// Puts a text together from many short pieces.
class TextBuilder
{
public:
    /// A text that becomes longer than expected by more than a sixteenth is copied on the way. That is room for a
    /// carriage return in each line of 16 bytes; what is not used of it costs nothing.
    explicit TextBuilder(std::size_t expectedSize) { text_.reserve(expectedSize + expectedSize / 16 + kBlockSize); }

    void Append(std::string_view piece)
    {
        if (piece.size() > text_.size() - used_)
            text_.resize(used_ + piece.size() + kBlockSize); // zeros, overwritten while they are in the cache
        KelInsString::CopyBytes(text_.data() + used_, piece);
        used_ += piece.size();
    }

    /// The text; nothing may be added then.
    std::string Take()
    {
        text_.resize(used_);
        return std::move(text_);
    }

private:
    static constexpr std::size_t kBlockSize = 4096;

    std::string text_;
    std::size_t used_ = 0;
};

} // namespace KelInsIO
