#include <KelInsInfra/json/internal/Builder.h>
#include <KelInsInfra/json/internal/TakeApart.h>
#include <algorithm>
#include <span>

namespace JSON {

Builder::Builder() : pool_(Pool::kFirstChunk)
{
    values_.reserve(64);
}

void Builder::OpenArray()
{
    Open(MakeContainer<Array>(pool_));
}

void Builder::OpenObject()
{
    Open(MakeContainer<Object>(pool_));
}

/// A long array takes what was gathered of it already, so that the memory for gathering stays small.
void Builder::MakeMoreRoom()
{
    constexpr std::size_t kLong = 1024;
    const Frame& frame = frames_[0];
    const std::span values = std::span(values_).subspan(frame.firstValue);
    if (values.size() < kLong || !frame.container->IsArray()) {
        values_.reserve(2 * values_.size());
        return;
    }
    static_cast<Array*>(frame.container)->Append(values);
    values_.resize(frame.firstValue);
}

void Builder::Open(std::shared_ptr<Value> container)
{
    Value* const opened = container.get();
    if (frames_.empty()) {
        root_ = std::move(container);
    } else {
        MakeRoom();
        values_.push_back(std::move(container));
    }
    frames_.push({opened, values_.size(), 0});
}

void Builder::Close()
{
    const Frame frame = frames_[0];
    const std::span values = std::span(values_).subspan(frame.firstValue);
    const bool shallow = frame.levels < kShallow;
    if (frame.container->IsArray())
        static_cast<Array*>(frame.container)->Complete(pool_, values, shallow);
    else if (!values.empty())
        static_cast<Object*>(frame.container)->Fill(pool_, keys_, values, shallow);
    values_.resize(frame.firstValue);
    frames_.pop();
    if (!frames_.empty())
        frames_[0].levels = std::max(frames_[0].levels, frame.levels + 1);
}

} // namespace JSON
