#pragma once

#include <KelInsInfra/json/internal/Builder.h>
#include <KelInsInfra/json/internal/Make.h>
#include <KelInsInfra/json/internal/Scanner.h>

namespace JSON {

/// What the parser's actions do: the driver's building protocol, on a document that is new. Refusals are not reported,
/// as the parser goes on regardless.
class Parsing
{
public:
    /// @param nextKey  the driver's: what is pending before the parse, and after it.
    explicit Parsing(std::string& nextKey) : nextKey_(nextKey) {}

    void SetNextObjectKey(const Scanner::Text& escaped)
    {
        nextKey_.assign(escaped.bytes);
        keyHasEscapes_ = escaped.hasEscapes;
    }

    void AddItem(Type type, std::string_view text = {})
    {
        if (builder_.IsOpen() && MakeKey())
            builder_.AddItem(MakeItem(builder_.Memory(), type, text));
    }

    void AddString(const Scanner::Text& escaped)
    {
        if (!escaped.hasEscapes)
            AddItem(escaped.bytes.empty() ? Type::Null : Type::String, escaped.bytes);
        else if (builder_.IsOpen() && MakeKey())
            builder_.AddItem(MakeUnescapedString(builder_.Memory(), escaped.bytes));
    }

    void AddArray()
    {
        if (!builder_.IsOpen() || MakeKey())
            builder_.OpenArray();
    }

    void AddObject()
    {
        if (!builder_.IsOpen() || MakeKey())
            builder_.OpenObject();
    }

    void CloseCurrentValue()
    {
        if (builder_.IsOpen())
            builder_.Close();
    }

    std::shared_ptr<Value> TakeRoot() { return builder_.TakeRoot(); }

private:
    /// Whether a value can go to the current container. In an object it takes the pending key.
    bool MakeKey()
    {
        if (!builder_.InObject())
            return true;
        if (nextKey_.empty())
            return false;
        if (keyHasEscapes_)
            UnescapeInPlace(nextKey_);
        builder_.Key(std::move(nextKey_));
        nextKey_.clear();
        return true;
    }

    std::string& nextKey_;
    bool keyHasEscapes_ = true;
    Builder builder_;
};

} // namespace JSON
