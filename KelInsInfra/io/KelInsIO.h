#pragma once

#include <KelInsInfra/Export.h>
#include <KelInsInfra/io/BitMask.h>
#include <KelInsInfra/io/FileTime.h>
#include <KelInsInfra/io/Path.h>
#include <cstdint>
#include <fstream>
#include <ios>
#include <istream>
#include <string>

/// Files and directories under UTF-8 paths.
///
/// Paths are used as given (absolute, or relative to the current directory) unless a function says that it normalises
/// them. Failures are std::runtime_error with the text given at each function: <system text> stands for the system's
/// message (KelInsSys::GetLastErrorMessage), <C text> for the C runtime's (KelInsSys::GetErrnoMessage), "\n" for the
/// one line feed that ends these texts. Nothing is rolled back: a failed recursive operation leaves what it did so far.
///
/// Streams open names of any length. All else takes names of up to 259 characters, of directories that are searched up
/// to 257, of new directories up to 247; longer ones in a process that is long-path aware (manifest, and the machine's
/// LongPathsEnabled setting). GetFileSize, GetTime and Copy take no name with "\\?\" in front, nor does CreateDir of a
/// directory that exists: the C runtime refuses the '?'.
namespace KelInsIO {

/// What a directory entry is. ReparsePoint stands beside one of the other two.
enum class Type : std::uint32_t
{
    Directory = 1,
    File = 2,
    ReparsePoint = 4,
};

/// Both, as a set: Type::File | Type::Directory finds either.
constexpr BitMask<Type> operator|(Type a, Type b)
{
    return BitMask<Type>(a) | b;
}

/// @name Questions
/// @{

/// What stands at a path. A link or junction is not followed.
/// @throws "GetType - empty path\n"; "GetType - <path> - <system text>\n" when it is missing or cannot be asked.
KELINS_API BitMask<Type> GetType(const std::string& path);

/// Whether GetType has Directory.
/// @throws as GetType, so also for a missing path.
KELINS_API bool IsDirectory(const std::string& path);

/// Whether GetType has File.
/// @throws as GetType, so also for a missing path.
KELINS_API bool IsFile(const std::string& path);

/// Whether anything stands at a path. Never throws; the empty path does not exist.
KELINS_API bool Exists(const std::string& path);

/// Size of a file in bytes.
/// @throws "GetFileSize - <path> does not exist.\n"; "GetFileSize - <path> is not a file.\n";
///         "GetFileSize - Cannot stat <normalised path> - <C text>\n"; and as GetType.
KELINS_API std::uint64_t GetFileSize(const std::string& path);

/// Bytes that the calling user may still write on the drive or share of a path. 0 for a relative path and when the
/// system does not tell. Never throws.
KELINS_API std::uint64_t GetFreeSpaceOnDisk(const std::string& path);

/// Times of a file or directory.
/// @throws "GetTime - <path> - <C text>\n"
KELINS_API FileTime GetTime(const std::string& path);

/// Always 777 (decimal), whatever the path: for callers that were written for other systems.
KELINS_API std::int32_t GetChmod(const std::string& path);
/// @}

/// @name Attributes
/// @{

/// Sets access and modification time of a file, in seconds since 1970-01-01 UTC; the creation time stays. The C runtime
/// refuses directories and read-only files.
/// @throws "SetTime - <path> - <C text>\n"
KELINS_API void SetTime(const std::string& path, std::int64_t accessTime, std::int64_t modificationTime);

/// Does nothing: for callers that were written for other systems.
KELINS_API void Chmod(const std::string& path, std::int32_t mode);

/// Sets or clears the read-only attribute.
/// @return true only when the attribute was changed: false when it already was as wished, when the path is missing and
///         when the system refuses. Never throws.
KELINS_API bool SetReadOnly(const std::string& path, bool readOnly);
/// @}

/// @name Changes
/// @{

/// Creates a directory and the missing ones above it; the path is normalised first. An existing directory is success.
/// @throws "CreateDir - empty path\n"; "CreateDir - <normalised path> is not a directory.\n" when something else stands
///         there; "CreateDirectory - <normalised path> - <system text>\n"
KELINS_API void CreateDir(const std::string& path);

/// Copies a file, or a directory with all in it. An existing file is overwritten, missing directories above the
/// destination are created. Attributes and times are not copied. A link to a directory is followed: what stands in the
/// linked directory is copied. A directory must not be copied into itself: the copy may find itself and go on until the
/// names are too long for the system. A read error ends the file's copy like its end and is not reported; a directory
/// that cannot be listed is copied as an empty one. As the search in a directory normalises its path, one whose very
/// name stands in apostrophes or double quotes is named with the directory that holds it.
/// @throws "Copy - empty source path\n"; "Copy - empty destination path\n"; "Cannot stat <source> - <C text>\n";
///         "Cannot copy <source> to itself.\n" also through a hard link; "Cannot read <source> - <C text>\n";
///         "Cannot write into <destination> - <C text>\n"; and as GetType, CreateDir and FindFile.
KELINS_API void Copy(const std::string& source, const std::string& destination);

/// Deletes a file, or a directory with all in it. Of a link to a directory only the link is removed, never what stands
/// in its target. Read-only files are refused: they are not made writable first. A drive ("C:") stands for its root
/// directory with all in it. As Copy, it takes a name that stands in quotes only behind its directory.
///
/// A directory cannot be moved away while it is emptied, and one whose place a link has taken since it was listed is
/// not entered. What this cannot prevent is that somebody with the right to do so turns an empty directory into a link
/// just then. A directory that another process holds open to delete it is only removed if it is empty.
/// @throws "Delete - empty path\n"; "DeleteFile - <path> - <system text>\n";
///         "RemoveDirectory - <path> - <system text>\n"; and as GetType, so also for a missing path, and as FindFile.
KELINS_API void Delete(const std::string& path);

/// Deletes one file.
/// @throws "DeleteFile - <path> - <system text>\n". A read-only file is refused: it is not made writable first.
KELINS_API void DeleteFileW(const std::string& path);

/// Renames or moves a file or directory, also to another volume (files only). An existing destination is never
/// replaced.
/// @throws "Rename - empty source path\n"; "Rename - empty destination path\n";
///         "MoveFile - <source> to <destination> - <system text>\n"
KELINS_API void Rename(const std::string& source, const std::string& destination);

/// Removes every directory under and including a path that holds no files, deepest first. Links to directories are
/// followed: empty directories behind them are removed too.
/// @return whether the directory itself was removed; false for a path that is not a directory. Never throws.
KELINS_API bool RemoveEmptyDirectories(const std::string& path);
/// @}

/// @name Streams
/// Binary, of any path length (Path::GetFullPathNameW), opened so that others may read but not write the file
/// meanwhile, and not inherited by child processes. A failed open leaves the stream in the failed state: test it;
/// nothing is thrown.
/// @{

/// Opens a file for reading.
/// @param mode  added to in | binary, with the meaning that the standard gives the sum.
KELINS_API std::ifstream GetInputFileStream(const std::string& path, std::ios_base::openmode mode);
KELINS_API std::ifstream GetInputFileStream(const Path& path, std::ios_base::openmode mode);

/// Opens a file for writing.
/// @param mode  added to out | binary, with the meaning that the standard gives the sum; out alone truncates.
KELINS_API std::ofstream GetOutputFileStream(const std::string& path, std::ios_base::openmode mode);
KELINS_API std::ofstream GetOutputFileStream(const Path& path, std::ios_base::openmode mode);

/// Reads up to the next line feed, as std::getline does, and removes one carriage return from the end of the line.
KELINS_API std::istream& GetLine(std::istream& stream, std::string& line);
KELINS_API std::wistream& GetLine(std::wistream& stream, std::wstring& line);

/// Everything from the stream's current position to its end.
KELINS_API std::string InputStreamToString(std::istream& stream);
/// @}

/// Replaces every occurrence of a text in every line of a file; a text that spans a line end is never found.
///
/// The file is rewritten whole, even where nothing was replaced: with CR LF between the lines, and without a final line
/// end. The new content is first written to <fileName>_TmpRIL and then copied over the file; a failure during that
/// copy may leave the file partly written, and the whole new content in the temporary file. A read-only file is made
/// writable for the copy and read-only again afterwards; it stays writable when the copy fails, as it does where the
/// temporary name is too long for Copy. The whole file is held in memory.
///
/// @param fileName  UTF-8; '/' is taken as '\'.
/// @param from      empty: 0 is returned and the file is not touched.
/// @return how many occurrences were replaced.
/// @throws std::runtime_error, each with "\nReplaced: <from>\nReplacing: <to>" and no final line feed after it:
///         "KelInsIO::ReplaceInLines: Filename is empty"; "KelInsIO::ReplaceInLines: Failed to open <name>", the file's
///         or the temporary file's; "KelInsIO::ReplaceInLines: Failed to read <name>", nothing written;
///         "KelInsIO::ReplaceInLines: Failed to write <temporary name>", the file untouched;
///         "KelInsIO::ReplaceInLines: Failed to write <name>", the temporary file kept. And as Copy.
KELINS_API std::int32_t ReplaceInLines(const std::string& fileName, const std::string& from, const std::string& to);

} // namespace KelInsIO
