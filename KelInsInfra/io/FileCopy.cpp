#include <KelInsInfra/foundation/KelInsString.h>
#include <KelInsInfra/foundation/internal/KelInsException.h>
#include <KelInsInfra/foundation/internal/UniqueHandle.h>
#include <KelInsInfra/io/FindFile.h>
#include <KelInsInfra/io/KelInsIO.h>
#include <KelInsInfra/io/internal/FileRecord.h>
#include <fcntl.h>
#include <io.h>
#include <memory>
#include <share.h>
#include <vector>

namespace KelInsIO {
namespace {

using UniqueDescriptor = UniqueHandle<int, ::_close, -1>;

constexpr unsigned kBlockSize = 65536;

UniqueFileHandle OpenToIdentify(const std::string& path)
{
    const std::wstring widePath = KelInsString::Widen(path);
    return UniqueFileHandle(::CreateFileW(widePath.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                          OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
}

HANDLE HandleOf(const UniqueDescriptor& file)
{
    // NOLINTNEXTLINE(performance-no-int-to-ptr): the C runtime gives a handle as an integer
    return reinterpret_cast<HANDLE>(::_get_osfhandle(file.Get()));
}

/// False when it can be told quickly that these are two files: asking for identities takes the system longer.
bool MayBeSameFile(HANDLE a, HANDLE b)
{
    FILETIME first;
    FILETIME second;
    return !::GetFileTime(a, &first, nullptr, nullptr) || !::GetFileTime(b, &second, nullptr, nullptr) ||
           ::CompareFileTime(&first, &second) == 0;
}

/// The source's handle, when it is open, saves its opening here. Both files are open at once: the system promises an
/// index to stay the same only while the file is open.
bool AreSameFile(const std::string& source, const UniqueDescriptor& openSource, const std::string& destination)
{
    const UniqueFileHandle b = OpenToIdentify(destination);
    if (!b) // mostly because there is none yet
        return false;
    const UniqueFileHandle opened = openSource ? UniqueFileHandle() : OpenToIdentify(source);
    auto* const a = openSource ? HandleOf(openSource) : opened.Get();
    BY_HANDLE_FILE_INFORMATION first;
    BY_HANDLE_FILE_INFORMATION second;
    return a != INVALID_HANDLE_VALUE && MayBeSameFile(a, b.Get()) && ::GetFileInformationByHandle(a, &first) &&
           ::GetFileInformationByHandle(b.Get(), &second) &&
           first.dwVolumeSerialNumber == second.dwVolumeSerialNumber && first.nFileIndexHigh == second.nFileIndexHigh &&
           first.nFileIndexLow == second.nFileIndexLow;
}

/// Opens a file that others may read, but not write meanwhile, and that child processes do not inherit.
/// @return 0, or the errno value of the failure; the descriptor then stays as it was.
int Open(const std::string& path, int flags, UniqueDescriptor& opened)
{
    const std::wstring widePath = KelInsString::Widen(path);
    int descriptor = -1;
    const int error =
        ::_wsopen_s(&descriptor, widePath.c_str(), flags | _O_BINARY | _O_NOINHERIT, _SH_DENYWR, _S_IREAD | _S_IWRITE);
    if (error == 0)
        opened = UniqueDescriptor(descriptor);
    return error;
}

void CopyContent(const UniqueDescriptor& input, const std::string& destination)
{
    UniqueDescriptor output;
    if (const int error = Open(destination, _O_WRONLY | _O_CREAT | _O_TRUNC, output))
        throw KelInsExceptionErrno("Cannot write into " + destination, error);
    const auto block = std::make_unique_for_overwrite<char[]>(kBlockSize);
    for (;;) {
        const int count = ::_read(input.Get(), block.get(), kBlockSize);
        if (count <= 0) // an error ends the copy like the end of the file
            return;
        if (::_write(output.Get(), block.get(), static_cast<unsigned>(count)) < 0) {
            const int error = errno;
            throw KelInsExceptionErrno("Cannot write into " + destination, error);
        }
    }
}

void CopyOneFile(const std::string& source, const std::string& destination)
{
    const Path parent = Path(destination).GetParent();
    if (!parent.IsEmpty())
        CreateDir(parent.GetPath());
    FileRecord record;
    if (const int error = ReadFileRecord(source, record))
        throw KelInsExceptionErrno("Cannot stat " + source, error);
    UniqueDescriptor input;
    const int error = Open(source, _O_RDONLY, input);
    if (AreSameFile(source, input, destination))
        throw KelInsException("Cannot copy " + source + " to itself.");
    if (error != 0)
        throw KelInsExceptionErrno("Cannot read " + source, error);
    CopyContent(input, destination);
}

/// A directory on the way down. The way is kept in a vector, so that depth costs memory and not the caller's stack.
struct OpenDirectory
{
    OpenDirectory(const std::string& source, std::string target)
        : search(source, Type::Directory | Type::File), destination(std::move(target))
    {
        if (search.End()) // empty: there is no file whose copying would create it
            CreateDir(destination);
    }

    FindFile search;
    std::string destination;
};

void CopyTree(const std::string& source, const std::string& destination)
{
    std::vector<OpenDirectory> way;
    way.emplace_back(source, destination);
    while (!way.empty()) {
        FindFile& search = way.back().search;
        if (search.End()) {
            way.pop_back();
            continue;
        }
        const bool isDirectory = search.IsDirectory();
        const std::string entry = search.GetPath();
        const std::string target = way.back().destination + Path::SepC + search.GetName();
        search.Next();
        if (isDirectory)
            way.emplace_back(entry, target);
        else
            CopyOneFile(entry, target);
    }
}

} // namespace

void Copy(const std::string& source, const std::string& destination)
{
    if (source.empty())
        throw KelInsException("Copy - empty source path");
    if (destination.empty())
        throw KelInsException("Copy - empty destination path");
    if (IsDirectory(source))
        CopyTree(source, destination);
    else
        CopyOneFile(source, destination);
}

} // namespace KelInsIO
