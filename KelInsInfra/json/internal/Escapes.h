#pragma once

#include <array>
#include <string>
#include <string_view>

namespace JSON {

constexpr std::array<char, 256> MakeEscapeLetters()
{
    std::array<char, 256> letters{};
    letters['"'] = '"';
    letters['\\'] = '\\';
    letters['\b'] = 'b';
    letters['\f'] = 'f';
    letters['\n'] = 'n';
    letters['\r'] = 'r';
    letters['\t'] = 't';
    return letters;
}

inline constexpr std::array<char, 256> kEscapeLetters = MakeEscapeLetters();

/// The letter that stands for a byte after a backslash in the compact form, 0 where the byte is not escaped.
inline char EscapeLetter(char byte)
{
    return kEscapeLetters[static_cast<unsigned char>(byte)];
}

/// What the byte after a backslash stands for, 0 where the two are no escape.
inline char EscapedByte(char letter)
{
    switch (letter) {
    case '"':
    case '\\':
    case '/':
        return letter;
    case 'b':
        return '\b';
    case 'f':
        return '\f';
    case 'n':
        return '\n';
    case 'r':
        return '\r';
    case 't':
        return '\t';
    default:
        return '\0';
    }
}

/// Writes the text with its escapes resolved and returns the end of it.
/// @param out  room for the whole text; may be the text itself.
char* Unescape(std::string_view text, char* out);

void UnescapeInPlace(std::string& text);

} // namespace JSON
