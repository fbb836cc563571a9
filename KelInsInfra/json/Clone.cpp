#include <KelInsInfra/json/internal/Builder.h>
#include <KelInsInfra/json/internal/Clone.h>

namespace JSON {
namespace {

/// A container that is being copied.
struct Frame
{
    const Value* source;
    std::size_t next = 0; ///< index of the child to copy next
};

/// The child that comes next. Its key is unescaped once more: kept for callers that rely on it.
const Value& NextChild(Frame& frame, Builder& builder)
{
    const std::size_t index = frame.next++;
    if (frame.source->IsArray())
        return *static_cast<const Array&>(*frame.source).Elements()[index];
    const auto& [key, value] = *static_cast<const Object&>(*frame.source).At(index);
    builder.Keys().Push(key);
    builder.Keys().UnescapeLast();
    return *value;
}

/// Copies an item, or begins to copy a container.
void Begin(const Value& source, Builder& builder, std::vector<Frame>& frames)
{
    if (!source.IsArray() && !source.IsObject()) {
        builder.AddItem(source.GetType(), static_cast<const Item&>(source).Text(), false);
        return;
    }
    frames.push_back({&source});
    if (source.IsArray())
        builder.OpenArray();
    else
        builder.OpenObject();
}

} // namespace

std::shared_ptr<Value> CloneTree(const Value& container)
{
    Builder builder;
    std::vector<Frame> frames;
    Begin(container, builder, frames);
    while (!frames.empty()) {
        Frame& frame = frames.back();
        if (frame.next < frame.source->GetSize()) {
            Begin(NextChild(frame, builder), builder, frames);
            continue;
        }
        builder.Close();
        frames.pop_back();
    }
    return builder.TakeRoot();
}

} // namespace JSON
