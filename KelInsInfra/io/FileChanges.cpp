#include <KelInsInfra/foundation/KelInsString.h>
#include <KelInsInfra/foundation/internal/KelInsException.h>
#include <KelInsInfra/foundation/internal/WindowsApi.h>
#include <KelInsInfra/io/KelInsIO.h>
#include <KelInsInfra/io/internal/FileRecord.h>
#include <sys/utime.h>
#include <vector>

namespace KelInsIO {
namespace {

/// Looks at what stands at a normalised path. A bare root ("C:", a share) may be known to the C runtime only with a
/// separator after it.
bool ReadEntry(const Path& path, FileRecord& record)
{
    if (ReadFileRecord(path.GetPath(), record) == 0)
        return true;
    const bool bareRoot = path.IsAbsolute() && path.GetSubPath().empty();
    return bareRoot && ReadFileRecord(path.GetPath() + Path::SepC, record) == 0;
}

/// A missing directory and those above it that are missing too, deepest first.
std::vector<Path> WithMissingAbove(const Path& directory)
{
    std::vector<Path> missing = {directory};
    FileRecord ignored;
    for (Path above = directory.GetParent(); !above.IsEmpty() && !ReadEntry(above, ignored); above = above.GetParent())
        missing.push_back(above);
    return missing;
}

/// 0, or the system's code.
DWORD CreateOneDirectory(const Path& path)
{
    if (path.GetFileName() == ".") // stands for the directory above, which was created just before
        return 0;
    const std::wstring widePath = KelInsString::Widen(path.GetPath());
    return ::CreateDirectoryW(widePath.c_str(), nullptr) ? 0 : ::GetLastError();
}

} // namespace

void SetTime(const std::string& path, std::int64_t accessTime, std::int64_t modificationTime)
{
    const std::wstring widePath = KelInsString::Widen(path);
    __utimbuf64 times = {accessTime, modificationTime};
    if (::_wutime64(widePath.c_str(), &times) == 0)
        return;
    const int error = errno;
    throw KelInsExceptionErrno("SetTime - " + path, error);
}

void Chmod(const std::string&, std::int32_t) {}

bool SetReadOnly(const std::string& path, bool readOnly)
{
    const std::wstring widePath = KelInsString::Widen(path);
    const DWORD attributes = ::GetFileAttributesW(widePath.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES)
        return false;
    const bool isReadOnly = (attributes & FILE_ATTRIBUTE_READONLY) != 0;
    return isReadOnly != readOnly && ::SetFileAttributesW(widePath.c_str(), attributes ^ FILE_ATTRIBUTE_READONLY);
}

void CreateDir(const std::string& path)
{
    const Path directory(path);
    if (directory.IsEmpty())
        throw KelInsException("CreateDir - empty path");
    FileRecord record;
    if (ReadEntry(directory, record)) {
        if ((record.st_mode & _S_IFMT) != _S_IFDIR)
            throw KelInsException("CreateDir - " + directory.GetPath() + " is not a directory.");
        return;
    }
    DWORD error = 0;
    std::vector<Path> missing = WithMissingAbove(directory);
    for (; !missing.empty(); missing.pop_back()) // highest first; the last one, the directory itself, decides
        error = CreateOneDirectory(missing.back());
    if (error != 0)
        throw KelInsException("CreateDirectory - " + directory.GetPath(), error);
}

void Rename(const std::string& source, const std::string& destination)
{
    if (source.empty())
        throw KelInsException("Rename - empty source path");
    if (destination.empty())
        throw KelInsException("Rename - empty destination path");
    const std::wstring wideSource = KelInsString::Widen(source);
    const std::wstring wideDestination = KelInsString::Widen(destination);
    if (::MoveFileExW(wideSource.c_str(), wideDestination.c_str(), MOVEFILE_COPY_ALLOWED))
        return;
    const DWORD error = ::GetLastError();
    throw KelInsException("MoveFile - " + source + " to " + destination, error);
}

} // namespace KelInsIO
