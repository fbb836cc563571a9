#pragma once

#include <KelInsInfra/json/Value.h>
#include <string_view>

namespace JSON {

/// A number, a string, true, false or null. The text of a number is kept as it was written, never converted.
class Item : public Value
{
public:
    /// For the library itself: Driver's factories make items.
    /// @param text  not copied: lies in memory that goes when the item goes.
    Item(Type type, std::string_view text) : Value(type), text_(text) {}

    std::shared_ptr<Value> Clone() const override;
    void Write(std::ostream& out) const override;
    void WriteIndented(std::ostream& out, std::int32_t level) const override;

    std::string_view Text() const { return text_; } ///< for the library itself: the text as it is kept

private:
    const std::string_view text_;
};

} // namespace JSON
