#pragma once

#include <cstddef>
#include <map>
#include <string>

// What an operation leaves behind, seen without the library.

namespace Sweeps {

/// Everything below a directory and below a key of HKEY_CURRENT_USER: "file\name" to its content, after "R" or "-" for
/// read-only or not; "dir\name" to nothing; "key\name" to nothing; "value\name" to type and bytes.
using Traces = std::map<std::string, std::string>;

Traces TracesOf(const std::string& directory, const std::string& key);

/// Blocks in use on the heaps of the process and of the C runtime.
std::size_t BlocksInUse();

} // namespace Sweeps
