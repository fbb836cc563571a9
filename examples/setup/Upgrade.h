#pragma once

#include "Log.h"
#include "Package.h"
#include <string>

namespace Setup {

/// Replaces the server of an installation by the newer one of a payload. All other files stay as they are.
///
/// @param payload, target  absolute paths.
/// @param options          of the package; those that are not given stay what they were.
/// @throws std::runtime_error  with a text for the user.
void Upgrade(const std::string& payload, const std::string& target, const Properties& options, Log& log);

} // namespace Setup
