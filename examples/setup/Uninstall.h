#pragma once

#include "Log.h"
#include <string>

namespace Setup {

/// Removes what was installed in a directory, its package and its registration, and the directories that get empty by
/// it. Files that were added or changed since the installation stay; files that are gone already do not matter.
///
/// @param target  absolute path.
/// @throws std::runtime_error  with a text for the user, when nothing is installed there, when the list of installed
///         files was tampered with (then nothing is removed), and when a file could not be removed.
void Uninstall(const std::string& target, Log& log);

} // namespace Setup
