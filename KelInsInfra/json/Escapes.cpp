#include <KelInsInfra/json/internal/ByteRuns.h>
#include <KelInsInfra/json/internal/Escapes.h>
#include <cstring>

namespace JSON {
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
