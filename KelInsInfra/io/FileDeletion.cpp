#include <KelInsInfra/foundation/KelInsString.h>
#include <KelInsInfra/foundation/internal/KelInsException.h>
#include <KelInsInfra/foundation/internal/WindowsApi.h>
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

void DeleteTree(const std::string& root)
{
    std::vector<OpenDirectory> way;
    way.emplace_back(root);
    while (!way.empty()) {
        FindFile& search = way.back().search;
        if (search.End()) {
            const std::string emptied = std::move(way.back().path);
            way.pop_back(); // ends the search: it would keep the directory from being removed
            RemoveOneDirectory(emptied);
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
            way.emplace_back(entry);
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
        return IsDirectory(path) && RemoveEmptyBranches(path);
    } catch (const std::exception&) {
        return false;
    }
}

} // namespace KelInsIO
