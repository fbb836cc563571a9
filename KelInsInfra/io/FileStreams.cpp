#include <KelInsInfra/foundation/internal/UniqueHandle.h>
#include <KelInsInfra/io/KelInsIO.h>
#include <KelInsInfra/io/internal/NewFile.h>
#include <ext/stdio_filebuf.h>
#include <fcntl.h>
#include <io.h>
#include <optional>
#include <share.h>
#include <sys/stat.h>
#include <utility>

// The standard library knows no share mode, so the file is opened by the C runtime and the descriptor handed over.

namespace KelInsIO {
namespace {

using Mode = std::ios_base::openmode;

constexpr Mode kIn = std::ios_base::in;
constexpr Mode kOut = std::ios_base::out;
constexpr Mode kTrunc = std::ios_base::trunc;
constexpr Mode kApp = std::ios_base::app;

constexpr std::size_t kBufferSize = 32768; // the library's own is 512 bytes: 128 times the system calls

struct ModeFlags
{
    Mode mode;
    int flags;
};

/// The combinations that the standard allows ([filebuf.members]), with the flags of the C runtime that mean the same.
constexpr ModeFlags kModeFlags[] = {
    {kOut, _O_WRONLY | _O_CREAT | _O_TRUNC},
    {kOut | kTrunc, _O_WRONLY | _O_CREAT | _O_TRUNC},
    {kOut | kApp, _O_WRONLY | _O_CREAT | _O_APPEND},
    {kIn, _O_RDONLY},
    {kIn | kOut, _O_RDWR},
    {kIn | kOut | kTrunc, _O_RDWR | _O_CREAT | _O_TRUNC},
    {kIn | kOut | kApp, _O_RDWR | _O_CREAT | _O_APPEND},
    {kIn | kApp, _O_RDWR | _O_CREAT | _O_APPEND},
};

std::optional<int> OpenFlags(Mode mode)
{
    const Mode access = mode & ~(std::ios_base::ate | std::ios_base::binary);
    for (const ModeFlags& entry : kModeFlags)
        if (entry.mode == access)
            return entry.flags | _O_BINARY | _O_NOINHERIT;
    return {};
}

/// Whether the system would see another name than this one: the part before the NUL.
bool HoldsNul(const std::string& path)
{
    return path.find('\0') != std::string::npos;
}

/// -1 when the file cannot be opened so.
int OpenDescriptor(const std::string& path, Mode mode)
{
    const std::optional<int> flags = OpenFlags(mode);
    if (!flags || HoldsNul(path))
        return -1;
    int descriptor = -1;
    ::_wsopen_s(&descriptor, Path::GetFullPathNameW(path).c_str(), *flags, _SH_DENYWR, _S_IREAD | _S_IWRITE);
    return descriptor;
}

/// -1 when something of that name is there. Not by the C runtime, which would follow a link that leads to nothing and
/// create what it names.
int CreateDescriptor(const std::string& path)
{
    if (HoldsNul(path))
        return -1;
    UniqueFileHandle file(::CreateFileW(Path::GetFullPathNameW(path).c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr,
                                        CREATE_NEW, FILE_ATTRIBUTE_NORMAL | FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
    if (!file)
        return -1;
    const int descriptor = ::_open_osfhandle(reinterpret_cast<std::intptr_t>(file.Get()), _O_BINARY | _O_NOINHERIT);
    if (descriptor != -1)
        static_cast<void>(file.Release()); // the descriptor closes it
    return descriptor;
}

/// Hands the descriptor, which may be -1, over to the buffer. False when that fails; both are closed then.
bool Attach(std::filebuf& target, int descriptor, Mode mode)
{
    if (descriptor == -1)
        return false;
    __gnu_cxx::stdio_filebuf<char> buffer(descriptor, mode, kBufferSize); // closes it, also when this throws
    if (!buffer.is_open()) {
        ::_close(descriptor);
        return false;
    }
    const bool atEnd = (mode & std::ios_base::ate) != 0;
    if (atEnd && buffer.pubseekoff(0, std::ios_base::end, mode) == std::filebuf::pos_type(-1))
        return false;
    target = std::move(static_cast<std::filebuf&>(buffer));
    return true;
}

bool Open(std::filebuf& target, const Path& path, Mode mode)
{
    return Attach(target, OpenDescriptor(path.GetPath(), mode), mode);
}

} // namespace

std::ifstream GetInputFileStream(const Path& path, std::ios_base::openmode mode)
{
    std::ifstream stream;
    if (!Open(*stream.rdbuf(), path, mode | std::ios_base::in | std::ios_base::binary))
        stream.setstate(std::ios_base::failbit);
    return stream;
}

std::ofstream GetOutputFileStream(const Path& path, std::ios_base::openmode mode)
{
    std::ofstream stream;
    if (!Open(*stream.rdbuf(), path, mode | std::ios_base::out | std::ios_base::binary))
        stream.setstate(std::ios_base::failbit);
    return stream;
}

std::ofstream CreateFileStream(const std::string& path)
{
    std::ofstream stream;
    if (!Attach(*stream.rdbuf(), CreateDescriptor(Path(path).GetPath()), std::ios_base::out | std::ios_base::binary))
        stream.setstate(std::ios_base::failbit);
    return stream;
}

std::ifstream GetInputFileStream(const std::string& path, std::ios_base::openmode mode)
{
    return GetInputFileStream(Path(path), mode);
}

std::ofstream GetOutputFileStream(const std::string& path, std::ios_base::openmode mode)
{
    return GetOutputFileStream(Path(path), mode);
}

} // namespace KelInsIO
