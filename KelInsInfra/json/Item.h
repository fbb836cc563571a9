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
    /// @param chunk  in which the item is being made, with room for the text behind it.
    /// @param hasEscapes  of the text, to be resolved.
    Item(Type type, Chunk& chunk, std::string_view text, bool hasEscapes);

    std::shared_ptr<Value> Clone() const override;
    void Write(std::ostream& out) const override;
    void WriteIndented(std::ostream& out, std::int32_t level) const override;

    /// For the library itself: the text as it is kept.
    std::string_view Text() const { return {reinterpret_cast<const char*>(this) + textOffset_, textSize_}; }

private:
    std::uint32_t textOffset_; ///< in place of a pointer: it fits into the space after the type
    std::size_t textSize_;
};

} // namespace JSON
