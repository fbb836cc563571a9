#pragma once

#include <KelInsInfra/json/Value.h>
#include <memory>
#include <string>

namespace Setup {

/// @throws std::runtime_error  when the file cannot be read or is not JSON. Nothing is written to standard output.
std::shared_ptr<JSON::Value> ReadJsonFile(const std::string& file);

} // namespace Setup
