#pragma once

#include <KelInsInfra/json/Value.h>

namespace JSON {

/// Whether releasing the pointer would destroy a container.
inline bool IsLastOwnerOfContainer(const std::shared_ptr<Value>& value) noexcept
{
    if (!value || !(value->IsArray() || value->IsObject()) || value.use_count() != 1)
        return false;
    std::shared_ptr<Value>(value).reset(); // use_count alone does not order us after the owners that let go before
    return true;
}

/// Releases a container of which this is the last owner, and all below it, in constant stack and without allocating.
void TakeApart(std::shared_ptr<Value> container) noexcept;

} // namespace JSON
