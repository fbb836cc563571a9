#pragma once

#include <string>
#include <string_view>
#include <vector>

// Real files for tests, made and read without the library. Paths and names are UTF-8.

void MakeFile(const std::string& path, std::string_view content = "x");

/// Also of a directory above it that is missing.
void MakeDirectories(const std::string& path);

/// A directory with all in it, read-only files too; what cannot be removed stays.
void RemoveTree(const std::string& directory);

/// @throws std::runtime_error  when the file cannot be read.
std::string FileContent(const std::string& path);

/// Likewise, but "(no file)" when it cannot be read.
std::string FileContentIfAny(const std::string& path);

bool IsReadOnly(const std::string& path);

/// Everything below a directory, sorted: "a/", "a/b.txt", "c.txt". Directories end in '/'; links are not followed.
std::vector<std::string> TreeNames(const std::string& directory);

/// A directory under a path of more than 400 characters, removed with all in it: the standard library cannot.
class LongDirectory
{
public:
    /// @param parent  where its first part is made.
    explicit LongDirectory(const std::string& parent);
    ~LongDirectory();
    LongDirectory(const LongDirectory&) = delete;
    LongDirectory& operator=(const LongDirectory&) = delete;

    [[nodiscard]] const std::string& Path() const { return path_; }

private:
    std::string top_;
    std::string path_;
};

/// A link to a directory: a symbolic link of Windows or, under Wine, which makes none, of the system below it.
class DirectoryLink
{
public:
    /// @throws std::runtime_error  when the system makes no link.
    DirectoryLink(const std::string& link, const std::string& target);
    ~DirectoryLink();
    DirectoryLink(const DirectoryLink&) = delete;
    DirectoryLink& operator=(const DirectoryLink&) = delete;

private:
    std::wstring link_;
};

/// Makes a file read-only and, so that it can be removed, writable again.
class ReadOnlyGuard
{
public:
    explicit ReadOnlyGuard(const std::string& path);
    ~ReadOnlyGuard();
    ReadOnlyGuard(const ReadOnlyGuard&) = delete;
    ReadOnlyGuard& operator=(const ReadOnlyGuard&) = delete;

private:
    std::wstring path_;
};
