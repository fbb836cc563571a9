#pragma once

#include <filesystem>
#include <string>

/// A fresh directory under the system's place for temporary files, removed with all in it (read-only files too).
class TempDirectory
{
public:
    TempDirectory();
    ~TempDirectory();
    TempDirectory(const TempDirectory&) = delete;
    TempDirectory& operator=(const TempDirectory&) = delete;

    /// UTF-8 path of the directory, with the system's own separators.
    [[nodiscard]] std::string Path() const;

    /// UTF-8 path of a name inside; separators in the name are the caller's.
    [[nodiscard]] std::string operator/(const std::string& name) const;

private:
    std::filesystem::path path_;
};
