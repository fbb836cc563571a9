#pragma once

#include <string>

namespace Setup {

/// Sets one property of a Java properties file (UTF-8); everything else in it stays as it is. A new property goes to
/// the end. Line ends become CR LF.
///
/// @throws std::runtime_error  when the file cannot be read or written.
void SetProperty(const std::string& file, const std::string& key, const std::string& value);

} // namespace Setup
