#pragma once

#include <KelInsInfra/json/internal/Builder.h>
#include <KelInsInfra/json/internal/Escapes.h>
#include <KelInsInfra/json/internal/Scanner.h>

namespace JSON {

/// What the parser's actions do: the driver's building protocol, on a document that is new. Refusals are not reported,
/// as the parser goes on regardless.
class Parsing
{
public:
    /// @param nextKey  the driver's: what is pending before the parse, and after it.
    explicit Parsing(std::string& nextKey) : nextKey_(nextKey) {}

    ~Parsing()
    {
        try {
            PutKeyBack();
        } catch (const std::bad_alloc&) { // which ends the parse already: the key is lost with it
        }
    }

    Parsing(const Parsing&) = delete;
    Parsing& operator=(const Parsing&) = delete;

    void SetNextObjectKey(const Scanner::Text& escaped)
    {
        if (keyIsInPlace_)
            builder_.Keys().DropLast();
        nextKey_.clear();
        keyIsInPlace_ = false; // in case memory runs out
        builder_.Keys().Push(escaped.bytes);
        keyIsInPlace_ = true;
        keyHasEscapes_ = escaped.hasEscapes;
    }

    void AddItem(Type type, std::string_view text = {}, bool hasEscapes = false)
    {
        if (builder_.IsOpen() && MakeKey())
            builder_.AddItem(type, text, hasEscapes);
    }

    /// An empty one becomes null: kept for readers that know no empty strings.
    void AddString(const Scanner::Text& escaped)
    {
        AddItem(escaped.bytes.empty() ? Type::Null : Type::String, escaped.bytes, escaped.hasEscapes);
    }

    void AddArray()
    {
        if (MakeKey())
            builder_.OpenArray();
    }

    void AddObject()
    {
        if (MakeKey())
            builder_.OpenObject();
    }

    void CloseCurrentValue()
    {
        PutKeyBack();
        if (builder_.IsOpen())
            builder_.Close();
    }

    std::shared_ptr<Value> TakeRoot() { return builder_.TakeRoot(); }

private:
    /// Whether a container can go to where the next value goes. In an object it takes the pending key.
    bool MakeKey()
    {
        if (!builder_.IsOpen() || !builder_.InObject()) {
            PutKeyBack();
            return true;
        }
        if (!keyIsInPlace_)
            PutKeyInPlace();
        keyIsInPlace_ = builder_.Keys().Last().empty(); // refused then, and pending still
        if (keyHasEscapes_)
            builder_.Keys().UnescapeLast();
        return !keyIsInPlace_;
    }

    [[gnu::noinline]] void PutKeyInPlace() // seldom needed: inlined, MakeKey itself is too long for that
    {
        builder_.Keys().Push(nextKey_);
        nextKey_.clear();
        keyHasEscapes_ = true;
    }

    /// A pending key lies with the builder, where most are soon needed; it is in the way of what is done otherwise.
    void PutKeyBack()
    {
        if (!keyIsInPlace_)
            return;
        nextKey_ = builder_.Keys().Last();
        builder_.Keys().DropLast();
        keyIsInPlace_ = false;
    }

    std::string& nextKey_;
    bool keyIsInPlace_ = false;
    bool keyHasEscapes_ = false;
    Builder builder_;
};

} // namespace JSON
