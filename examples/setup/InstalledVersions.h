#pragma once

#include "Log.h"
#include "Manifest.h"
#include <string>

namespace Setup {

/// Less than, equal to or greater than 0, as the first version is older, the same or newer. Windows Installer, too,
/// compares the first three numbers only.
int CompareVersions(const std::string& a, const std::string& b);

/// @throws std::runtime_error  when the installed version is newer than that of the manifest, or the same.
void ExpectOlder(const std::string& installed, const Manifest& manifest);

/// Looks in Windows Installer's database for installed versions of the product. Entries that cannot be read are shown
/// to the user, with their place in the registry, and stand in nobody's way.
///
/// @throws std::runtime_error  when a newer version is installed, or the same.
void CheckInstalledVersions(const Manifest& manifest, Log& log);

} // namespace Setup
