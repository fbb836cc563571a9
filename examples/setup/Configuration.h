#pragma once

#include <string>
#include <vector>

namespace Setup {

/// Whether a file of the payload is adapted to the place where it is installed.
///
/// @param path  relative to the payload, with '\' between the names.
bool IsConfigured(const std::string& path);

/// The files that every payload of this product holds.
const std::vector<std::string>& RequiredFiles();

/// Adapts one such file, which already stands in the target.
///
/// @throws std::runtime_error  when it is malformed or cannot be written.
void Configure(const std::string& target, const std::string& path);

} // namespace Setup
