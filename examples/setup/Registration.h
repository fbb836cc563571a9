#pragma once

#include "Manifest.h"
#include <optional>
#include <string>

namespace Setup {

/// What the list of installed programs knows about an installation, in both registry views: 32-bit programs look there,
/// too.
struct Registration
{
    std::string version;
    std::string target;
    std::string productCode; // of the package
};

/// The registration of a product; none when it is not installed.
/// @throws std::runtime_error  when it cannot be read.
std::optional<Registration> FindRegistration(const std::string& product);

/// Adds a product to the list of installed programs, or updates its entry.
/// @throws std::runtime_error
void Register(const Manifest& manifest, const std::string& target);

/// Takes a product off the list. What is not there is fine.
/// @throws std::runtime_error
void Unregister(const std::string& product);

} // namespace Setup
