#pragma once

#include <cstdint>
#include <string>

namespace Setup {

/// Copies one file with its times and its read-only attribute, and makes sure that it arrived whole.
///
/// @param size  what the source holds, in bytes.
void StageFile(const std::string& source, std::uint64_t size, const std::string& destination);

} // namespace Setup
