#pragma once

#include <KelInsInfra/Export.h>
#include <string>

/// Escaping for Java properties files, byte by byte on UTF-8 text. Unicode escapes (\uXXXX) are neither made nor
/// decoded: bytes outside ASCII pass through. Nothing here throws, except std::bad_alloc.
namespace KelInsJavaProperties {

/// Escapes a key or value for writing: backslash, tab, line feed, form feed, carriage return, '!', '#', ':', '=', and
/// blanks.
///
/// @param text         UTF-8, or any bytes.
/// @param escapeSpace  true for keys: every blank; false for values: only a leading blank.
KELINS_API std::string saveConvert(const std::string& text, bool escapeSpace);

/// Removes the escapes from a text that was read. A backslash before any other character than f, n, r, t stands for
/// that character alone ("\u0041" gives "u0041"). A backslash at the very end gives a zero byte (0x00) at the end of
/// the result: the format's own conversion reads the terminator there, and callers rely on the length.
KELINS_API std::string loadConvert(const std::string& text);

} // namespace KelInsJavaProperties
