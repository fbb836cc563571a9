#pragma once

#include <string>

namespace Setup {

/// Copies a payload to its target and configures it there. Everything that can be checked is checked before anything is
/// changed; what fails after that is taken back.
///
/// @param payload, target  absolute paths.
/// @throws std::runtime_error  with a text for the user: what is wrong, what to do, what is left.
void Install(const std::string& payload, const std::string& target);

} // namespace Setup
