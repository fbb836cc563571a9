#pragma once

#include "ServerData.h"

/// What the custom actions do. Each throws std::runtime_error with its reason when it fails.
namespace Orchard {

/// Writes port and site into the server's files, into the user's list of sites, and into the registry.
void Configure(const ServerData& data);

/// Reads the settings back, and refuses what the server could not start with.
void Check(const ServerData& data);

/// Takes back what Configure did to things that are not the package's own; Windows Installer takes back the rest.
/// Works wherever Configure stopped, and when it never ran.
void Restore(const ServerData& data);

/// Removes what Restore would have needed.
void ForgetBackup(const ServerData& data);

/// Removes the server's settings from the registry.
void Unconfigure();

} // namespace Orchard
