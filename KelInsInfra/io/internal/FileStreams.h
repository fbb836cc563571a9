#pragma once

#include <fstream>
#include <string>

namespace KelInsIO {

/// As GetOutputFileStream, for a file that nothing before it must outlive: what lies under the name is removed first,
/// as it may be a link that somebody planted; nothing is written through it. Should it resist, it is opened as any file
/// is.
std::ofstream ReplaceByNewFile(const std::string& name);

} // namespace KelInsIO
