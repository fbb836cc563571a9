#pragma once

#include <functional>

/// Runs a function to its end on a thread with a stack of 256 KiB. It must not throw.
void RunOnSmallStack(const std::function<void()>& function);
