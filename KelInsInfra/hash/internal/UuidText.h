#pragma once

#include <array>
#include <cstdint>
#include <random>
#include <string>

namespace KelInsUUID {

using Values = std::array<std::uint16_t, 8>; // the eight groups of four digits, from left to right

/// The process's generator; the first call seeds it, on whatever thread. Its use is not guarded.
std::mt19937& Generator();

/// Eight values, each uniform over 0 to 65,535.
Values DrawValues(std::mt19937& generator);

/// Text of the values, with the bits of version and variant fixed.
std::string UuidText(Values values, bool upperCase);

} // namespace KelInsUUID
