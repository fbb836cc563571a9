#pragma once

#include <KelInsInfra/foundation/KelInsString.h>
#include <cerrno>
#include <string>
#include <sys/stat.h>

namespace KelInsIO {

using FileRecord = struct _stat64;

/// Asks the C runtime about a file or directory.
/// @param path  UTF-8, used as given.
/// @return 0, or the errno value of the failure; the record then says nothing.
inline int ReadFileRecord(const std::string& path, FileRecord& record)
{
    const std::wstring widePath = KelInsString::Widen(path);
    return ::_wstat64(widePath.c_str(), &record) == 0 ? 0 : errno;
}

} // namespace KelInsIO
