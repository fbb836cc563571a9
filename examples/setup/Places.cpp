#include "Places.h"

#include <KelInsInfra/foundation/KelInsString.h>
#include <KelInsInfra/io/Path.h>
#include <filesystem>

namespace Setup {
namespace {

namespace fs = std::filesystem;
using KelInsIO::Path;

/// "C:" alone would be the current directory on that drive.
fs::path ToStandardPath(const std::string& path)
{
    return KelInsString::Widen(Path(path).GetSubPath().empty() ? path + Path::Sep : path);
}

} // namespace

bool IsSame(const std::string& path, const std::string& other)
{
    std::error_code ignored; // what cannot be asked is not the same
    return fs::equivalent(ToStandardPath(path), ToStandardPath(other), ignored);
}

bool IsInside(const std::string& path, const std::string& directory)
{
    std::error_code ignored;
    const fs::path outer = ToStandardPath(directory);
    fs::path inner = ToStandardPath(path);
    for (; inner.has_relative_path(); inner = inner.parent_path())
        if (fs::equivalent(inner, outer, ignored))
            return true;
    return fs::equivalent(inner, outer, ignored);
}

} // namespace Setup
