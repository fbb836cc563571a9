#include <KelInsInfra/json/internal/Clone.h>
#include <KelInsInfra/json/internal/Make.h>
#include <KelInsInfra/json/internal/Member.h>

namespace JSON {
namespace {

/// A container that is being copied.
struct Frame
{
    const Value* source;
    std::shared_ptr<Value> copy;
    std::size_t next = 0; ///< index of the child to copy next
};

const Value& ChildAt(const Value& container, std::size_t index)
{
    if (container.IsArray())
        return *static_cast<const Array&>(container).Elements()[index];
    return *static_cast<const Object&>(container).Order()[index]->second;
}

std::shared_ptr<Value> MakeEmpty(Pool& pool, Type type)
{
    if (type == Type::Array)
        return MakeContainer<Array>(pool);
    return MakeContainer<Object>(pool);
}

/// Adds the copy of the child that comes next. Keys are unescaped once more by that: kept for callers that rely on it.
void Attach(Pool& pool, Frame& frame, std::shared_ptr<Value> child)
{
    const std::size_t index = frame.next++;
    if (frame.copy->IsArray()) {
        static_cast<Array&>(*frame.copy).Append(std::move(child));
        return;
    }
    const std::string& key = static_cast<const Object&>(*frame.source).Order()[index]->first;
    static_cast<Object&>(*frame.copy).InsertUnsettled(pool, key, std::move(child));
}

} // namespace

std::shared_ptr<Value> CloneTree(const Value& container)
{
    Pool pool(Pool::kFirstChunk);
    std::vector<Frame> frames;
    frames.push_back({&container, MakeEmpty(pool, container.GetType())});
    for (;;) {
        Frame& frame = frames.back();
        if (frame.next < frame.source->GetSize()) {
            const Value& child = ChildAt(*frame.source, frame.next);
            if (child.IsArray() || child.IsObject())
                frames.push_back({&child, MakeEmpty(pool, child.GetType())});
            else
                Attach(pool, frame, MakeItem(pool, child.GetType(), static_cast<const Item&>(child).Text()));
            continue;
        }
        std::shared_ptr<Value> copy = std::move(frame.copy);
        if (copy->IsObject())
            static_cast<Object&>(*copy).Settle();
        frames.pop_back();
        if (frames.empty())
            return copy;
        Attach(pool, frames.back(), std::move(copy));
    }
}

} // namespace JSON
