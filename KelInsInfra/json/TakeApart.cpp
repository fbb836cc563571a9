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

} // namespace

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

} // namespace JSON
