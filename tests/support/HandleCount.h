#pragma once

#include <cstddef>

/// How many handles this process holds. GetProcessHandleCount does not serve: under Wine it always gives 0.
std::size_t HandleCount();
