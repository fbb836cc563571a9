#pragma once

#include <fstream>
#include <string>

namespace KelInsIO {

/// Opens as GetOutputFileStream does, but only where nothing of that name is yet: no file, directory or link, not even
/// one that leads to nothing. The stream is in the failed state otherwise.
std::ofstream CreateFileStream(const std::string& path);

} // namespace KelInsIO
