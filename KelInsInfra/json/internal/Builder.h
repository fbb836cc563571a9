#pragma once

#include <KelInsInfra/json/internal/InlineStack.h>
#include <KelInsInfra/json/internal/KeyStack.h>
#include <KelInsInfra/json/internal/Make.h>
#include <cstddef>

namespace JSON {

/// Builds a document from its beginning to its end. What a container holds is gathered here until it is closed, so that
/// it is allocated once, in its final size; but an array of a thousand elements and more grows.
class Builder
{
public:
    Builder();

    /// Whether there is a container to put things into, and whether that is an object.
    bool IsOpen() const { return !frames_.empty(); }

    bool InObject() const { return frames_[0].container->IsObject(); }

    /// On top of these comes the key of the next value, unescaped: in an object only, where each value needs one.
    KeyStack& Keys() { return keys_; }

    /// @param hasEscapes  of the text, to be resolved.
    void AddItem(Type type, std::string_view text, bool hasEscapes)
    {
        MakeRoom();
        values_.push_back(MakeItem(pool_, type, text, hasEscapes));
    }

    /// Adds an empty container to the current one and makes it the current one; the root, in place of an older one,
    /// where none is open.
    void OpenArray();
    void OpenObject();

    void Close();

    std::shared_ptr<Value> TakeRoot() { return std::move(root_); }

private:
    /// An open container: its values are the ones from there on. An object has as many keys, the last ones.
    struct Frame
    {
        Value* container;
        std::size_t firstValue;
        unsigned levels; ///< of containers below this one
    };

    void MakeRoom()
    {
        if (values_.size() == values_.capacity())
            MakeMoreRoom();
    }

    void MakeMoreRoom();
    void Open(std::shared_ptr<Value> container);

    Pool pool_;
    std::shared_ptr<Value> root_;
    InlineStack<Frame, 16> frames_;
    std::vector<std::shared_ptr<Value>> values_;
    KeyStack keys_;
};

} // namespace JSON
