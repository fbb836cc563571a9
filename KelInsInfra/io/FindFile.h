#pragma once

#include <KelInsInfra/Export.h>
#include <KelInsInfra/io/BitMask.h>
#include <KelInsInfra/io/KelInsIO.h>
#include <memory>
#include <string>

namespace KelInsIO {

/// A forward-only cursor over the entries of one directory, without "." and "..", in the system's order.
///
/// @code
/// for (KelInsIO::FindFile entry(directory, KelInsIO::Type::File); !entry.End(); entry.Next())
///     Use(entry.GetPath());
/// @endcode
///
/// A directory that is missing, unreadable or not a directory is at its end at once, and an error on the way ends the
/// search: neither is reported. The search handle stays open until destruction. A moved-from search is fit only to be
/// assigned or destroyed.
class FindFile
{
public:
    /// @param directory  UTF-8 path, normalised as by Path.
    /// @param filter     the types wanted; an entry is delivered when it shares a bit with it.
    /// @throws std::runtime_error  "FindFirstFile - Path is empty\n" when the normalised path is empty.
    KELINS_API FindFile(const std::string& directory, BitMask<Type> filter);
    KELINS_API ~FindFile();
    KELINS_API FindFile(FindFile&& other) noexcept;            ///< takes the search over
    KELINS_API FindFile& operator=(FindFile&& other) noexcept; ///< ends its own search, takes the other's over
    FindFile(const FindFile&) = delete;
    FindFile& operator=(const FindFile&) = delete;

    /// Whether there is no current entry any more. The accessors then give the values of the last entry read.
    KELINS_API bool End() const;

    /// Goes on to the next wanted entry, or to the end.
    KELINS_API void Next();

    KELINS_API std::string GetName() const; ///< name of the current entry
    KELINS_API std::string GetPath() const; ///< normalised directory, '\', name

    /// Directory or File, with ReparsePoint beside it for links, junctions and other reparse points.
    KELINS_API BitMask<Type> GetType() const;
    KELINS_API bool IsDirectory() const; ///< whether GetType has Directory
    KELINS_API bool IsFile() const;      ///< whether GetType has File

    /// Whether a directory holds no entry. A missing or unreadable directory counts as empty.
    /// @throws std::runtime_error  "FindFirstFile - Path is empty\n" when the normalised path is empty.
    KELINS_API static bool IsDirectoryEmpty(const std::string& directory);

private:
    struct State;
    std::unique_ptr<State> state_;
};

} // namespace KelInsIO
