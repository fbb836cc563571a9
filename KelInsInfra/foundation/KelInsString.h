#pragma once

#include <KelInsInfra/Export.h>
#include <cstdint>
#include <string>
#include <vector>

/// Conversion between UTF-8 and UTF-16, and small editing, splitting and number helpers.
///
/// Narrow strings hold UTF-8, wide strings UTF-16. Nothing here throws, except std::bad_alloc.
namespace KelInsString {

/// UTF-16 to UTF-8.
///
/// Converts up to the first NUL: both overloads stop at a NUL inside the text.
/// @return UTF-8; empty for null, for empty text, for text of more than INT_MAX units and when the system cannot
///         convert. Unpaired surrogates become what the system makes of them (U+FFFD).
KELINS_API std::string Narrow(const std::wstring& text);
KELINS_API std::string Narrow(const wchar_t* text);

/// UTF-8 to UTF-16.
///
/// Converts up to the first NUL: both overloads stop at a NUL inside the text.
/// @return UTF-16; empty for null, for empty text, for text of more than INT_MAX bytes and when the system cannot
///         convert. Invalid UTF-8 becomes what the system makes of it (U+FFFD).
KELINS_API std::wstring Widen(const std::string& text);
KELINS_API std::wstring Widen(const char* text);

/// Erases every occurrence of a character.
///
/// @param text  edited in place.
/// @return how many characters were erased.
KELINS_API std::int32_t RemoveAll(std::string& text, char c);

/// Replaces every occurrence of a text, from left to right; what was put in is not searched again.
///
/// @param text   edited in place.
/// @param from   text to find; empty: nothing is replaced.
/// @param to     replacement; may be empty.
/// @param start  byte index at which the search begins; beyond the end: nothing is replaced.
/// @return how many occurrences were replaced.
KELINS_API std::int32_t ReplaceAll(std::string& text, const std::string& from, const std::string& to,
                                   std::uint64_t start = 0);

/// Replaces every occurrence of a character at index start or later.
///
/// @return how many characters were replaced; 0 when start is at or beyond the end.
KELINS_API std::int32_t ReplaceAll(std::string& text, char from, char to, std::uint64_t start = 0);

/// Cuts a text at each delimiter.
///
/// @param delimiter  an empty delimiter text is never found: the whole text is the only piece.
/// @param keepEmpty  whether empty pieces are kept: "a,,b," gives a, "", b, "" with it, and a, b without.
/// @return the pieces in order, without delimiters; none for an empty text, whatever the flag.
KELINS_API std::vector<std::string> Split(const std::string& text, const std::string& delimiter, bool keepEmpty);
KELINS_API std::vector<std::string> Split(const std::string& text, char delimiter, bool keepEmpty);

/// Decimal text of a number with exactly that many digits after the decimal point: 3.14159 with 2 gives "3.14".
///
/// Formatted by a standard stream in fixed notation, hence with the decimal point and grouping of the host's global
/// locale. A negative count of decimals is handled as the stream handles a negative precision.
KELINS_API std::string ToFixedPrecision(double value, std::int32_t decimals);

/// Decimal text to integer. Leading white space and a sign are accepted, what follows the digits is ignored.
///
/// @return the number; defaultValue for empty text, text without digits and numbers outside the 32-bit range.
KELINS_API std::int32_t ToInt(const std::string& text, std::int32_t defaultValue);

/// Decimal text to unsigned integer, as scanf's "%zu" reads it: leading white space and a sign are accepted (a minus
/// sign wraps around), what follows the digits is ignored. A number that is too large gives the largest one.
///
/// @return the number; defaultValue for empty text and text without digits.
KELINS_API std::uint64_t ToSize_t(const std::string& text, std::uint64_t defaultValue);

} // namespace KelInsString
