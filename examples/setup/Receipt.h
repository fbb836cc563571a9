#pragma once

#include "Manifest.h"
#include "Package.h"
#include <optional>
#include <string>

namespace Setup {

/// The file in the target that says, to support staff, to tools and to a later upgrade, what stands there: one object
/// in JSON with product, version, id (new each time), user, target, number of files, and the options of the package.
struct Receipt
{
    static const std::string kFileName;

    std::string product;
    Properties options;
};

/// @throws std::runtime_error  when it cannot be written.
void WriteReceipt(const std::string& target, const Manifest& manifest, const Properties& options);

/// None when there is no such file.
/// @throws std::runtime_error  when it cannot be understood.
std::optional<Receipt> ReadReceipt(const std::string& target);

} // namespace Setup
