#pragma once

#include "Log.h"
#include "Manifest.h"
#include "Package.h"
#include "Payload.h"
#include <string>

namespace Setup {

struct Checked
{
    Payload payload;
    Manifest manifest;
};

/// Checks a payload: its manifest, and each file by its digest.
/// @throws std::runtime_error  with a text for the user, as the others do.
Checked CheckPayload(const std::string& payload, const Properties& options, Log& log);

/// Makes all checks that can be made before an installation changes anything.
Checked CheckInstallation(const std::string& payload, const std::string& target, const Properties& options, Log& log);

} // namespace Setup
