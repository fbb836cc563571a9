#pragma once

#include "Log.h"
#include "Package.h"
#include <string>

namespace Setup {

/// Copies a payload to its target, configures it there, installs its package and registers it. Everything that can be
/// checked is checked before anything is changed; what fails after that is taken back.
///
/// @param payload, target  absolute paths.
/// @param options          of the package, as the user gave them.
/// @throws std::runtime_error  with a text for the user: what is wrong, what to do, what is left.
void Install(const std::string& payload, const std::string& target, const Properties& options, Log& log);

} // namespace Setup
