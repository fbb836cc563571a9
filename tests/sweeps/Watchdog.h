#pragma once

#include <string_view>

namespace Sweeps {

/// From now on the process ends, with a message that says in what, when it stays for a minute with one thing: a sweep
/// that hangs fails, and tells where.
void StartWatchdog();

/// What the sweep goes on to. Takes no block of the heap.
void NowDoing(std::string_view what);

} // namespace Sweeps
