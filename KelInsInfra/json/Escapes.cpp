#include <KelInsInfra/json/internal/ByteRuns.h>
#include <KelInsInfra/json/internal/Escapes.h>
#include <cstring>

namespace JSON {
namespace {

/// What the byte after a backslash stands for, 0 where the two are no escape.
char EscapedByte(char letter)
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

} // namespace

char* Unescape(std::string_view text, char* out)
{
    const char* next = text.data();
    const char* const end = next + text.size();
    while (next != end) {
        const char* const plainEnd = FindBackslash(next, end);
        const auto plain = static_cast<std::size_t>(plainEnd - next);
        std::memmove(out, next, plain); // may be done in place
        out += plain;
        if (end - plainEnd < 2) // a backslash at the very end is dropped
            break;
        const char letter = plainEnd[1];
        const char byte = EscapedByte(letter);
        if (byte == '\0')
            *out++ = '\\';
        *out++ = byte == '\0' ? letter : byte;
        next = plainEnd + 2;
    }
    return out;
}

void UnescapeInPlace(std::string& text)
{
    const char* const end = text.data() + text.size();
    if (FindBackslash(text.data(), end) != end)
        text.resize(static_cast<std::size_t>(Unescape(text, text.data()) - text.data()));
}

} // namespace JSON
