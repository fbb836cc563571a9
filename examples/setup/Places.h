#pragma once

#include <string>

namespace Setup {

/// Whether two paths lead to the same existing file or directory, in whatever spelling and through links, too.
bool IsSame(const std::string& path, const std::string& other);

/// Whether a path is that directory or stands somewhere below it.
bool IsInside(const std::string& path, const std::string& directory);

} // namespace Setup
