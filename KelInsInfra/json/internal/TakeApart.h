#pragma once

#include <KelInsInfra/json/Value.h>

namespace JSON {

/// Levels of containers that may be destroyed by recursion, each of them taking a few calls' room of the stack.
inline constexpr unsigned kShallow = 64;

/// Destroys what a container holds, and all below it, in constant stack and without allocating.
void DestroyChildren(Value& container) noexcept;

} // namespace JSON
