#include <KelInsInfra/foundation/KelInsString.h>
#include <KelInsInfra/foundation/internal/UniqueHandle.h>
#include <KelInsInfra/io/KelInsIO.h>
#include <KelInsInfra/io/internal/NewFile.h>
#include <KelInsInfra/io/internal/RewriteFile.h>
#include <algorithm>
#include <optional>
#include <stdexcept>

namespace KelInsIO {
namespace {

constexpr std::size_t kBlockSize = 65536;
constexpr std::size_t kRoomForALine = 4096; // an edited content that grows by it need not be copied

[[noreturn]] void Fail(const MessageFrame& frame, const std::string& text)
{
    throw std::runtime_error(frame.before + text + frame.after);
}

/// Removes what an earlier, interrupted rewriting left. It may also be a link that somebody planted: never write
/// through it, nor create what it names. What cannot be removed, such as a directory, makes the creation fail again.
void RemoveLeftover(const std::string& temporaryName)
{
    ::DeleteFileW(Path::GetFullPathNameW(Path(temporaryName).GetPath()).c_str());
}

void WriteWhole(const std::string& temporaryName, const std::string& content, const MessageFrame& frame)
{
    std::ofstream stream = CreateFileStream(temporaryName);
    if (!stream.good()) {
        RemoveLeftover(temporaryName);
        stream = CreateFileStream(temporaryName);
    }
    if (!stream.good())
        Fail(frame, "Failed to open " + temporaryName);
    for (std::size_t written = 0; written < content.size(); written += kBlockSize)
        stream.write(content.data() + written,
                     static_cast<std::streamsize>(std::min(kBlockSize, content.size() - written)));
    stream.close();
    if (!stream.good())
        Fail(frame, "Failed to write " + temporaryName);
}

std::uint64_t Join(DWORD high, DWORD low)
{
    return std::uint64_t{high} << 32U | low;
}

/// Of a link, its directory tells the size of the link: then the file itself is asked, which takes longer.
bool HasSize(const std::string& name, std::size_t size)
{
    const std::wstring wideName = KelInsString::Widen(name);
    WIN32_FILE_ATTRIBUTE_DATA record;
    if (!::GetFileAttributesExW(wideName.c_str(), GetFileExInfoStandard, &record))
        return false;
    if ((record.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0)
        return Join(record.nFileSizeHigh, record.nFileSizeLow) == size;
    const UniqueFileHandle file(::CreateFileW(wideName.c_str(), FILE_READ_ATTRIBUTES,
                                              FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                              OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    LARGE_INTEGER actual;
    return file && ::GetFileSizeEx(file.Get(), &actual) && static_cast<std::uint64_t>(actual.QuadPart) == size;
}

void DeleteIgnoringFailure(const std::string& name)
{
    try {
        Delete(name);
    } catch (const std::exception&) {
        // the file itself is written: a temporary file that stays does no harm
    }
}

/// 0 where it cannot be told.
/// @return nothing when the file does not stand at its beginning afterwards: what is read then is not its content.
std::optional<std::size_t> SizeOf(std::streambuf& file)
{
    const std::streamoff end = file.pubseekoff(0, std::ios_base::end);
    if (file.pubseekoff(0, std::ios_base::beg) != std::streambuf::pos_type(0))
        return {};
    return end > 0 ? static_cast<std::size_t>(end) : 0;
}

} // namespace

std::string ReadForRewriting(std::istream& file, const std::string& name, const MessageFrame& frame)
{
    if (!file.good())
        Fail(frame, "Failed to open " + name);
    const std::optional<std::size_t> size = SizeOf(*file.rdbuf());
    if (!size)
        Fail(frame, "Failed to read " + name);
    std::string content;
    content.reserve(*size + kRoomForALine);
    std::size_t filled = 0;
    while (file.good()) {
        // One byte more than there is: the end is met without growing.
        const std::size_t wanted = filled <= *size ? std::min(kBlockSize, *size + 1 - filled) : kBlockSize;
        content.resize(filled + wanted); // block by block: its bytes are still in the cache when it is read
        file.read(content.data() + filled, static_cast<std::streamsize>(wanted));
        filled += static_cast<std::size_t>(file.gcount());
    }
    content.resize(filled);
    if (file.bad())
        Fail(frame, "Failed to read " + name);
    return content;
}

void RewriteFile(const std::string& name, const std::string& temporaryName, const std::string& content,
                 const MessageFrame& frame)
{
    WriteWhole(temporaryName, content, frame);
    const bool wasReadOnly = SetReadOnly(name, false);
    Copy(temporaryName, name);
    if (!HasSize(name, content.size())) // the copy does not notice a short write or a read error
        Fail(frame, "Failed to write " + name);
    DeleteIgnoringFailure(temporaryName);
    if (wasReadOnly)
        SetReadOnly(name, true);
}

} // namespace KelInsIO
