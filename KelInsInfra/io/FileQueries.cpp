#include <KelInsInfra/foundation/KelInsString.h>
#include <KelInsInfra/foundation/internal/KelInsException.h>
#include <KelInsInfra/foundation/internal/UniqueHandle.h>
#include <KelInsInfra/io/KelInsIO.h>
#include <KelInsInfra/io/internal/FileRecord.h>
#include <KelInsInfra/io/internal/TypeOfAttributes.h>
#include <io.h>

namespace KelInsIO {
namespace {

/// The attributes as the directory lists them: readable even while another process keeps the file from being opened.
/// INVALID_FILE_ATTRIBUTES and the last error on failure.
DWORD ReadListedAttributes(const std::wstring& path)
{
    WIN32_FIND_DATAW record;
    const UniqueFindHandle search(::FindFirstFileW(path.c_str(), &record));
    return search ? record.dwFileAttributes : INVALID_FILE_ATTRIBUTES;
}

/// INVALID_FILE_ATTRIBUTES and the last error on failure.
DWORD ReadAttributes(const std::wstring& path)
{
    const DWORD attributes = ::GetFileAttributesW(path.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES && ::GetLastError() == ERROR_SHARING_VIOLATION)
        return ReadListedAttributes(path);
    return attributes;
}

} // namespace

BitMask<Type> GetType(const std::string& path)
{
    if (path.empty())
        throw KelInsException("GetType - empty path");
    const std::wstring widePath = KelInsString::Widen(path);
    const DWORD attributes = ReadAttributes(widePath);
    if (attributes == INVALID_FILE_ATTRIBUTES) {
        const DWORD error = ::GetLastError();
        throw KelInsException("GetType - " + path, error);
    }
    return TypeOfAttributes(attributes);
}

bool IsDirectory(const std::string& path)
{
    return GetType(path).Has(Type::Directory);
}

bool IsFile(const std::string& path)
{
    return GetType(path).Has(Type::File);
}

bool Exists(const std::string& path)
{
    constexpr int existenceOnly = 0;
    return !path.empty() && ::_waccess_s(KelInsString::Widen(path).c_str(), existenceOnly) == 0;
}

std::uint64_t GetFileSize(const std::string& path)
{
    if (!Exists(path))
        throw KelInsException("GetFileSize - " + path + " does not exist.");
    if (!IsFile(path))
        throw KelInsException("GetFileSize - " + path + " is not a file.");
    const Path normalized(path);
    FileRecord record;
    if (const int error = ReadFileRecord(normalized.GetPath(), record))
        throw KelInsExceptionErrno("GetFileSize - Cannot stat " + normalized.GetPath(), error);
    return static_cast<std::uint64_t>(record.st_size);
}

std::uint64_t GetFreeSpaceOnDisk(const std::string& path)
{
    std::string root = Path(path).GetRoot();
    if (root.starts_with(R"(\\)")) // a share is only known to the system with a separator behind it
        root += Path::SepC;
    const std::wstring wideRoot = KelInsString::Widen(root);
    ULARGE_INTEGER available;
    return ::GetDiskFreeSpaceExW(wideRoot.c_str(), &available, nullptr, nullptr) ? available.QuadPart : 0;
}

FileTime GetTime(const std::string& path)
{
    FileRecord record;
    if (const int error = ReadFileRecord(path, record))
        throw KelInsExceptionErrno("GetTime - " + path, error);
    return {record.st_atime, record.st_mtime, record.st_ctime}; // on Windows st_ctime is the creation time
}

std::int32_t GetChmod(const std::string&)
{
    return 777; // decimal: kept for callers that compare with it
}

} // namespace KelInsIO
