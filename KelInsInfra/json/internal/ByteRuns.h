#pragma once

#include <cstdint>
#include <cstring>
#include <string_view>

namespace JSON {

constexpr std::uint64_t EachByte(unsigned char byte)
{
    return 0x0101010101010101U * byte;
}

inline std::uint64_t EightBytes(const char* bytes)
{
    std::uint64_t word = 0;
    std::memcpy(&word, bytes, sizeof(word));
    return word;
}

/// Whether one of the eight bytes is zero.
constexpr bool HasZeroByte(std::uint64_t word)
{
    return ((word - EachByte(1)) & ~word & EachByte(0x80)) != 0;
}

/// Number of bytes before the first quote or backslash.
inline std::size_t PlainStringRun(std::string_view text)
{
    std::size_t i = 0;
    for (; i + 8 <= text.size(); i += 8) {
        const std::uint64_t word = EightBytes(text.data() + i);
        if (HasZeroByte(word ^ EachByte('"')) || HasZeroByte(word ^ EachByte('\\')))
            break;
    }
    while (i < text.size() && text[i] != '"' && text[i] != '\\')
        ++i;
    return i;
}

/// Number of blanks, tabs and line feeds at the beginning.
inline std::size_t WhiteSpaceRun(std::string_view text)
{
    std::size_t i = 0;
    for (;;) {
        while (i + 8 <= text.size() && EightBytes(text.data() + i) == EachByte(' '))
            i += 8;
        const std::size_t begin = i;
        while (i < text.size() && i < begin + 8 && (text[i] == ' ' || text[i] == '\t' || text[i] == '\n'))
            ++i;
        if (i < begin + 8)
            return i;
    }
}

} // namespace JSON
