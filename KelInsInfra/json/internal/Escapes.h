#pragma once

#include <string_view>

namespace JSON {

/// The letter that stands for a byte after a backslash in the compact form, 0 where the byte is not escaped.
char EscapeLetter(char byte);

/// Writes the text with its escapes resolved and returns the end of it.
/// @param out  room for the whole text; may be the text itself.
char* Unescape(std::string_view text, char* out);

} // namespace JSON
