#pragma once

#include <KelInsInfra/json/Value.h>

namespace JSON {

/// A deep copy of a container, made without recursion.
std::shared_ptr<Value> CloneTree(const Value& container);

} // namespace JSON
