#pragma once

#include <KelInsInfra/json/Value.h>

namespace JSON {

/// Whether releasing the pointer would destroy a container.
bool IsLastOwnerOfContainer(const std::shared_ptr<Value>& value) noexcept;

/// Releases a container of which this is the last owner, and all below it, in constant stack and without allocating.
void TakeApart(std::shared_ptr<Value> container) noexcept;

} // namespace JSON
