#pragma once

#include <KelInsInfra/json/Value.h>
#include <string_view>

namespace JSON {

class Chunk;

/// A number, a string, true, false or null. The text of a number is kept as it was written, never converted.
class Item : public Value
{
public:
    /// For the library itself: Driver's factories make items.
    /// @param chunk  in which the item is being made, with room for the text too: RoomFor its size.
    /// @param hasEscapes  of the text, to be resolved.
    inline Item(Type type, Chunk& chunk, std::string_view text, bool hasEscapes);

    std::shared_ptr<Value> Clone() const override;
    void Write(std::ostream& out) const override;
    void WriteIndented(std::ostream& out, std::int32_t level) const override;

    /// @cond  what follows is for the library itself, and not exported

    /// The text as it is kept.
    std::string_view Text() const { return {text_, size_ < kLong ? size_ : LongSize()}; }

    /// Bytes that a text takes in its chunk.
    static constexpr std::size_t RoomFor(std::size_t size) { return size < kLong ? size : sizeof(size) + size; }

    /// @endcond

private:
    static constexpr std::uint32_t kLong = 65536; ///< the size of a text from here on lies before it

    std::size_t LongSize() const;

    std::uint32_t size_; ///< fits into the space after the type
    const char* text_;
};

} // namespace JSON
