#include <KelInsInfra/foundation/KelInsString.h>
#include <KelInsInfra/foundation/internal/KelInsException.h>
#include <KelInsInfra/foundation/internal/UniqueHandle.h>
#include <KelInsInfra/io/FindFile.h>
#include <KelInsInfra/io/KelInsIO.h>
#include <exception>
#include <utility>
#include <vector>

namespace KelInsIO {
namespace {

void RemoveOneDirectory(const std::string& path)
{
    const std::wstring widePath = KelInsString::Widen(path);
    if (::RemoveDirectoryW(widePath.c_str()))
        return;
    const DWORD error = ::GetLastError();
    throw KelInsException("RemoveDirectory - " + path, error);
}

/// A directory on the way down. The way is kept in a vector, so that depth costs memory and not the caller's stack.
struct OpenDirectory
{
    explicit OpenDirectory(std::string directory)
        : path(std::move(directory)), search(path, Type::Directory | Type::File)
    {}

    std::string path;
    FindFile search;
    bool remains = false; ///< something in it was not removed
};

/// Keeps a directory from being moved away while it is emptied: a link put in its place would lead out of the tree. The
/// access is one for which the system heeds that deleting is not shared.
/// @return nothing where that cannot be had, and for a link, which may have come since the directory was listed.
UniqueFileHandle PinDirectory(const std::string& path)
{
    const std::wstring widePath = KelInsString::Widen(path);
    UniqueFileHandle pin(::CreateFileW(widePath.c_str(), FILE_LIST_DIRECTORY, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                       nullptr, OPEN_EXISTING,
                                       FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
    if (pin && (::GetFileAttributesW(widePath.c_str()) & FILE_ATTRIBUTE_REPARSE_POINT) != 0) // a failure has all bits
        pin.Reset();
    return pin;
}

/// The directories on the way down that are being emptied.
class Descent
{
public:
    [[nodiscard]] bool IsEmpty() const { return way_.empty(); }

    [[nodiscard]] FindFile& Search() { return way_.back().directory.search; }

    /// What cannot be entered safely is removed as it is: a link alone, a directory if it is empty.
    void Enter(const std::string& path)
    {
        UniqueFileHandle pin = PinDirectory(path);
        if (pin)
            way_.push_back({std::move(pin), OpenDirectory(path)});
        else
            RemoveOneDirectory(path);
    }

    void RemoveEmptied()
    {
        const std::string emptied = std::move(way_.back().directory.path);
        way_.pop_back(); // ends pin and search: they would keep the directory from being removed
        RemoveOneDirectory(emptied);
    }

private:
    struct Level
    {
        UniqueFileHandle pin;
        OpenDirectory directory;
    };

    std::vector<Level> way_;
};

void DeleteTree(const std::string& root)
{
    Descent descent;
    descent.Enter(root);
    while (!descent.IsEmpty()) {
        FindFile& search = descent.Search();
        if (search.End()) {
            descent.RemoveEmptied();
            continue;
        }
        const std::string entry = search.GetPath();
        const BitMask<Type> type = search.GetType();
        search.Next();
        if (!type.Has(Type::Directory))
            DeleteFileW(entry);
        else if (type.Has(Type::ReparsePoint))
            RemoveOneDirectory(entry); // the link alone
        else
            descent.Enter(entry);
    }
}

bool TryDelete(const std::string& path)
{
    try {
        Delete(path);
        return true;
    } catch (const std::exception&) {
        return false;
    }
}

bool RemoveEmptyBranches(const std::string& root)
{
    std::vector<OpenDirectory> way;
    way.emplace_back(root);
    for (;;) {
        OpenDirectory& directory = way.back();
        if (directory.search.End()) {
            const bool remains = directory.remains;
            const std::string path = std::move(directory.path);
            way.pop_back();
            const bool removed = !remains && TryDelete(path);
            if (way.empty())
                return removed;
            way.back().remains |= !removed;
            continue;
        }
        const bool isFile = directory.search.IsFile();
        const std::string entry = directory.search.GetPath();
        directory.search.Next();
        if (isFile)
            directory.remains = true;
        else
            way.emplace_back(entry);
    }
}

} // namespace

void DeleteFileW(const std::string& path)
{
    const std::wstring widePath = KelInsString::Widen(path);
    if (::DeleteFileW(widePath.c_str()))
        return;
    const DWORD error = ::GetLastError();
    throw KelInsException("DeleteFile - " + path, error);
}

void Delete(const std::string& path)
{
    if (path.empty())
        throw KelInsException("Delete - empty path");
    const BitMask<Type> type = GetType(path);
    if (!type.Has(Type::Directory))
        DeleteFileW(path);
    else if (type.Has(Type::ReparsePoint))
        RemoveOneDirectory(path);
    else
        DeleteTree(path);
}

bool RemoveEmptyDirectories(const std::string& path)
{
    try {
        const std::string searched = Path(path).GetPath(); // as the search has it
        return IsDirectory(searched) && RemoveEmptyBranches(path);
    } catch (const std::exception&) {
        return false;
    }
}

} // namespace KelInsIO
