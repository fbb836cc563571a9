#include <KelInsInfra/json/Array.h>
#include <KelInsInfra/json/Object.h>
#include <KelInsInfra/json/internal/TakeApart.h>

namespace JSON {
namespace {

std::shared_ptr<Value>* LastChild(Value& container) noexcept
{
    return container.IsArray() ? static_cast<Array&>(container).LastChild()
                               : static_cast<Object&>(container).LastChild();
}

void DropLastChild(Value& container) noexcept
{
    if (container.IsArray())
        static_cast<Array&>(container).DropLastChild();
    else
        static_cast<Object&>(container).DropLastChild();
}

/// Whether releasing the pointer would destroy a container.
bool IsLastOwnerOfContainer(const std::shared_ptr<Value>& value) noexcept
{
    if (!value || !(value->IsArray() || value->IsObject()) || value.use_count() != 1)
        return false;
    std::shared_ptr<Value>(value).reset(); // use_count alone does not order us after the owners that let go before
    return true;
}

/// Releases a container of which this is the last owner.
void TakeApart(std::shared_ptr<Value> container) noexcept
{
    std::shared_ptr<Value> parent; // each container on the way up lies in the last place of the one taken apart in it
    for (;;) {
        std::shared_ptr<Value>* const last = LastChild(*container);
        if (last == nullptr) {
            if (!parent)
                return;
            container = std::move(parent);
            parent = std::move(*LastChild(*container));
            DropLastChild(*container);
        } else if (IsLastOwnerOfContainer(*last)) {
            std::shared_ptr<Value> child = std::move(*last);
            *last = std::move(parent);
            parent = std::move(container);
            container = std::move(child);
        } else {
            DropLastChild(*container);
        }
    }
}

} // namespace

void DestroyChildren(Value& container) noexcept
{
    while (std::shared_ptr<Value>* const last = LastChild(container)) {
        if (IsLastOwnerOfContainer(*last))
            TakeApart(std::move(*last));
        DropLastChild(container);
    }
}

} // namespace JSON
