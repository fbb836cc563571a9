#pragma once

#include "Log.h"

namespace Setup {

/// Logs what helps to understand a failure on somebody else's machine.
void LogSystemFacts(Log& log);

/// @throws std::runtime_error  when this process may not change what belongs to all users.
void ExpectAdministrator();

} // namespace Setup
