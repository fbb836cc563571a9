#pragma once

#include <fstream>
#include <istream>
#include <map>
#include <set>
#include <string>

namespace Setup {

/// What an installation consists of, as its target's own file remembers it:
///
///     # directory docs
///     2cf24dba5fb0a30e26e83b2ac5b9e29e1b161e5c1fa7425e73043362938b9824  docs/hello.txt
///
/// One line per file, with the SHA-256 digest of what was installed; "sha256sum --check" understands it. Directories
/// are those that the installation made; "." is the target itself. Paths are relative to the target, with '/' between
/// the names, in UTF-8.
class InstallList
{
public:
    static const std::string kFileName;

    InstallList() = default;

    /// @throws std::runtime_error  for a line of another form, and for a path that is not plainly inside the target
    ///         (absolute, with a drive, with ".." in it): somebody tampered with the list. A last line that was not
    ///         written to its end is ignored.
    explicit InstallList(std::istream& stream);

    /// The digest of an installed file; null for a file that was not installed.
    const std::string* FindFile(const std::string& path) const;
    bool HasDirectory(const std::string& path) const;
    std::size_t GetFileCount() const;

private:
    void AddLine(const std::string& line);

    std::map<std::string, std::string> digests_; // by path
    std::set<std::string> directories_;
};

/// Writes that file line by line, as the installation goes on: even one that was killed can be uninstalled.
class InstallListWriter
{
public:
    /// @throws std::runtime_error  when the file cannot be written, as the other members do.
    explicit InstallListWriter(const std::string& target);

    /// @param path  relative to the target, with '\' or '/' between the names; "." for the target itself.
    void AddDirectory(const std::string& path);
    void AddFile(const std::string& path, const std::string& sha256);

private:
    void WriteLine(const std::string& line);

    std::string file_;
    std::ofstream stream_;
};

/// SHA-256 digest of a file, 64 hexadecimal digits. @throws std::runtime_error when it cannot be read.
std::string DigestOfFile(const std::string& file);

} // namespace Setup
