#pragma once

#include "Log.h"
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace Setup {

/// Properties of a package that are given on the command line: name and value.
using Properties = std::vector<std::pair<std::string, std::string>>;

/// The command line that has Windows Installer install a package, without any window.
///
/// @param msiLog  what Windows Installer writes about it.
std::string InstallCommand(const std::string& package, const Properties& properties, const std::string& msiLog);

/// Installs a package; an older version of it is replaced where the package says so.
///
/// @throws std::runtime_error  with the system's words for the exit code. Windows Installer has then taken everything
///         back.
void InstallPackage(const std::string& package, const Properties& properties, Log& log);

/// Installs the package that holds the server, in the folder "server" of an installation.
void InstallServer(const std::string& package, const std::string& target, Properties options, Log& log);

/// Removes an installed package. One that is not installed (any more) is fine.
///
/// @throws std::runtime_error  with the system's words for the exit code.
void RemovePackage(const std::string& productCode, Log& log);

} // namespace Setup
