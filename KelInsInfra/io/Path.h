#pragma once

#include <KelInsInfra/Export.h>
#include <cstddef>
#include <cstdint>
#include <string>

namespace KelInsIO {

/// A Windows path in one canonical spelling, with the extent of its root.
///
/// Construction strips one pair of enclosing quotes, turns '/' into '\', collapses doubled separators (but for the
/// leading pair of a UNC path) and removes trailing ones, so that two spellings of one path compare equal. "." and ".."
/// stay. Text is UTF-8 throughout. A text that starts like a root but is none ("1:x", "\\server", "\\server\") becomes
/// the empty path. Nothing here throws, except std::bad_alloc.
class Path
{
public:
    KELINS_API static const char SepC;                ///< '\'
    KELINS_API static const char ConcatSepC;          ///< ';' between the entries of a path list
    KELINS_API static const char AltSepC;             ///< '/'
    KELINS_API static const char AltConcatSepC;       ///< ':' between the entries of a path list of other systems
    KELINS_API static const std::string Sep;          ///< SepC as a text, and so on
    KELINS_API static const std::string ConcatSep;    ///< ConcatSepC
    KELINS_API static const std::string AltSep;       ///< AltSepC
    KELINS_API static const std::string AltConcatSep; ///< AltConcatSepC

    /// The empty path: no text, no root.
    KELINS_API Path();

    /// Any spelling of a path: absolute ("C:\x", "\\server\share\x"), relative, or in double or single quotes.
    KELINS_API Path(std::string path); // implicit: wherever a path is wanted, its text will do

    KELINS_API Path(const Path& other);                ///< a copy
    KELINS_API Path& operator=(const Path& other);     ///< a copy
    KELINS_API Path(Path&& other) noexcept;            ///< other is then empty and fit only to be assigned or destroyed
    KELINS_API Path& operator=(Path&& other) noexcept; ///< likewise
    KELINS_API ~Path();

    /// The canonical text.
    KELINS_API const std::string& GetPath() const;
    KELINS_API bool IsEmpty() const; ///< whether the text is empty

    /// Whether the path has a root: a drive ("C:", even without a separator after it) or a UNC share.
    KELINS_API bool IsAbsolute() const;

    /// "C:" or "\\server\share"; empty for a relative path.
    KELINS_API std::string GetRoot() const;

    /// The text after the root and its separator; the whole text of a relative path; empty for a bare root. Behind a
    /// drive one character is taken for the separator, whatever it is: "C:xy" gives "y".
    KELINS_API std::string GetSubPath() const;

    /// The last component; empty for a bare root and for the empty path.
    KELINS_API std::string GetFileName() const;

    /// The path without its last component: "C:\a" gives "C:". Empty for a bare root and for a single component.
    KELINS_API Path GetParent() const;

    /// Makes this the empty path.
    KELINS_API void Clear();

    /// Exact comparison of the canonical texts, byte for byte: "C:\A" is not "c:\a".
    KELINS_API bool operator==(const Path& other) const;
    KELINS_API bool operator!=(const Path& other) const;        ///< the opposite
    KELINS_API bool operator==(const std::string& other) const; ///< other is compared as it is, not normalised
    KELINS_API bool operator!=(const std::string& other) const; ///< the opposite

    /// This, '\', other; normalised anew. An empty left side gives a relative path that begins with '\'.
    KELINS_API Path operator+(const Path& other) const;
    KELINS_API Path operator+(const std::string& other) const;

    /// Appends '\' and other in place. The root stays what it was, even when this was empty and other has a root.
    KELINS_API Path& operator+=(const Path& other);
    KELINS_API Path& operator+=(const std::string& other);

    /// The canonical spelling of a text, without looking for a root: quotes, separators, trailing separators.
    KELINS_API static std::string CleanPath(std::string text);

    /// A copy with every '/' as '\'.
    KELINS_API static std::string NormalizePathSeparator(const std::string& text);

    /// A copy with every '\' as '/'.
    KELINS_API static std::string Slashify(const std::string& text);

    /// A path list with its ':' separators as ';'. A ':' right after a single ASCII letter at the start of an entry is
    /// a drive's and stays: "C:\a:D:\b:x" gives "C:\a;D:\b;x".
    KELINS_API static std::string NormalizeConcatSeparator(const std::string& text);

    /// other where it is absolute, this where other is empty, else this + other.
    KELINS_API Path Resolve(const Path& other) const;

    /// other as seen from this path, which is taken as a directory: from "C:\a\b" to "C:\a\c\d" is "..\c\d".
    ///
    /// Empty for equal rooted paths, and when the two cannot be related: different roots (compared byte for byte, but
    /// for the root's last character), or only one of them rooted. Two relative paths are not searched for a common
    /// beginning: from "a\b" to "b" is "..\..\b".
    KELINS_API Path Relativize(const Path& other) const;

    /// The wide name under which files are opened, so that names beyond 260 characters work.
    ///
    /// A relative text is only widened ("C:x" and "C:" count as relative), and so is one that begins with "\\?". Any
    /// other is made absolute by the system and put into the extended-length form: "\\?\C:\x",
    /// "\\?\UNC\server\share\x".
    /// @param text  UTF-8.
    /// @return UTF-16; "\\?\" (or "\\?\UNC") alone when the system cannot make the path absolute.
    KELINS_API static std::wstring GetFullPathNameW(std::string text);

private:
    static constexpr std::int64_t kNoRoot = -1;
    static constexpr std::int64_t kUndetermined = -2;

    static std::int64_t FindRootEnd(const std::string& text);
    std::size_t SubPathBegin() const;
    void Append(const std::string& text);

    std::string path_;
    std::int64_t rootEnd_ = kNoRoot; ///< index of the root's last character
};

} // namespace KelInsIO
