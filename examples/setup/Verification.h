#pragma once

#include "Manifest.h"
#include "Payload.h"

namespace Setup {

/// Compares a payload with its manifest: each file there, unchanged, and no other one.
///
/// @throws std::runtime_error  for the first file that is missing, damaged or not in the manifest.
void VerifyPayload(const Payload& payload, const Manifest& manifest);

} // namespace Setup
