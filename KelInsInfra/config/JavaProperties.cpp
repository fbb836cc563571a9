#include <KelInsInfra/config/KelInsJavaProperties.h>

namespace KelInsJavaProperties {
namespace {

/// The letter that stands for a byte after a backslash, the byte itself where it is only marked, 0 where it is not
/// escaped.
char EscapeLetter(char c)
{
    switch (c) {
    case '\t':
        return 't';
    case '\n':
        return 'n';
    case '\f':
        return 'f';
    case '\r':
        return 'r';
    case '\\':
    case '!':
    case '#':
    case ':':
    case '=':
        return c;
    default:
        return '\0';
    }
}

char UnescapedByte(char letter)
{
    switch (letter) {
    case 'f':
        return '\f';
    case 'n':
        return '\n';
    case 'r':
        return '\r';
    case 't':
        return '\t';
    default:
        return letter;
    }
}

} // namespace

std::string saveConvert(const std::string& text, bool escapeSpace)
{
    std::string result;
    result.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c == ' ') {
            if (i == 0 || escapeSpace) // a reader strips leading blanks of a value, and ends a key at a blank
                result += '\\';
            result += ' ';
        } else if (const char letter = EscapeLetter(c); letter != '\0') {
            result += '\\';
            result += letter;
        } else {
            result += c;
        }
    }
    return result;
}

std::string loadConvert(const std::string& text)
{
    std::string result;
    result.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\\') {
            ++i;
            result += UnescapedByte(text.c_str()[i]); // a final backslash takes the terminator: a zero byte, kept
        } else {
            result += text[i];
        }
    }
    return result;
}

} // namespace KelInsJavaProperties
