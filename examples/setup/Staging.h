#pragma once

#include <string>

namespace Setup {

/// Copies one file with its times and its read-only attribute, and makes sure that it arrived whole.
void StageFile(const std::string& source, const std::string& destination);

} // namespace Setup
