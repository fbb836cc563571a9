#pragma once

#include <KelInsInfra/Export.h>
#include <cstdint>
#include <stdexcept>
#include <string>

/// Reading and writing single keys of text configuration files: INI files with [sections], and shell files in which
/// each assignment is followed by a line that exports the name.
///
/// A file is a sequence of lines; there is no comment syntax, no quoting, no continuation and no trimming. A section
/// header is a line whose first visible character is '[' and whose last is ']' with a name between them; blanks and
/// tabs outside the brackets do not matter, those inside belong to the name. A key line is any other line with a '=' in
/// it: key and value are what stands before and after the first '=', taken as they are ("A = 1" has the key "A ").
/// Names and keys are compared byte for byte. A byte-order mark is not recognised: it belongs to the first line.
namespace KelInsIniFile {

/// The key does not exist in the section.
class KeyNotFoundException : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// How Write combines the new value with that of an existing key. Any other number behaves as Replace.
enum class Where : std::int32_t
{
    Replace = 0, ///< the new value alone
    Append = 1,  ///< the old value, then the new one
    Prepend = 2, ///< the new value, then the old one
};

/// Value of the first matching key line.
///
/// @param fileName  UTF-8 path.
/// @param section   UTF-8; empty: the lines before the first section header. A section that occurs several times is
///                  searched in all its places.
/// @param key       UTF-8, not empty.
/// @return the value as it stands in the file, possibly empty.
/// @throws std::runtime_error    "Filename is empty"; "Key is empty"; "Failed to open <fileName>"
/// @throws KeyNotFoundException  "The key <key> was not found in section <section> in file <fileName>"
///         None of these texts ends in a line feed.
KELINS_API std::string ReadValueOfKey(const std::string& fileName, const std::string& section, const std::string& key);

/// Sets one key, creating the file, its directory, the section and the key as needed.
///
/// The first matching key line in the first section of that name is changed; a new key goes to the end of that section
/// (right before the next header), a new section to the end of the file. All other lines stay byte for byte, but every
/// line end of the file becomes CR LF. The new content is first written to <fileName>_TmpIniW and then copied over the
/// file; a failure during that copy may leave the file partly written, and the whole new content in the temporary
/// file. A read-only file is made writable for the copy and read-only again afterwards; it stays writable when the copy
/// fails, as it does where the temporary name is too long for KelInsIO::Copy. The whole file is held in memory.
///
/// @param fileName     UTF-8 path. A new file needs a directory in its name: a bare name that does not exist yet is
///                     refused ("CreateDir - empty path\n").
/// @param section      UTF-8; empty: the lines before the first header. Ignored with shellExport.
/// @param key          UTF-8, not empty.
/// @param value        UTF-8, written as it is.
/// @param where        how an existing value and the new one are combined; a new key gets the new value alone.
/// @param separator    put between the two values of Append and Prepend where both are non-empty and it does not stand
///                     there already.
/// @param shellExport  the file is a shell script: brackets mean nothing, and "<key>=<value>" is followed by
///                     "export <key>".
/// @throws std::runtime_error, none of these with a final line feed:
///         "Filename is empty"; "Key is empty"; "Failed to open <fileName>";
///         "<fileName>: bad format: missing \"export <key>\" at the end." or
///         "<fileName>: bad format: missing \"export <key>\" after line\n<line>" when a shell file lacks the export
///         line after the matching line; "Failed to read <fileName>": up to here nothing is written;
///         "Failed to open <fileName>_TmpIniW"; "Failed to write <fileName>_TmpIniW": the file is untouched;
///         "Failed to write <fileName>": the temporary file is kept. And as KelInsIO::CreateDir and KelInsIO::Copy.
KELINS_API void Write(const std::string& fileName, const std::string& section, const std::string& key,
                      const std::string& value, Where where, char separator, bool shellExport);

} // namespace KelInsIniFile
