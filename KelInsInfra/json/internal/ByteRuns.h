#pragma once

#include <bit>
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

/// Of the eight bytes, the lowest zero one has its highest bit set in the result; 0 if there is none.
constexpr std::uint64_t FirstZeroByte(std::uint64_t word)
{
    return (word - EachByte(1)) & ~word & EachByte(0x80);
}

/// Index of the byte in memory to which the lowest set bit belongs.
constexpr std::size_t ByteOfLowestBit(std::uint64_t word)
{
    static_assert(std::endian::native == std::endian::little);
    return static_cast<std::size_t>(std::countr_zero(word)) / 8;
}

/// Number of bytes before the first quote or backslash.
inline std::size_t PlainStringRun(std::string_view text)
{
    std::size_t i = 0;
    for (; i + 8 <= text.size(); i += 8) {
        const std::uint64_t word = EightBytes(text.data() + i);
        const std::uint64_t found = FirstZeroByte(word ^ EachByte('"')) | FirstZeroByte(word ^ EachByte('\\'));
        if (found != 0)
            return i + ByteOfLowestBit(found);
    }
    while (i < text.size() && text[i] != '"' && text[i] != '\\')
        ++i;
    return i;
}

/// Number of bytes before the first backslash.
inline std::size_t RunBeforeBackslash(std::string_view text)
{
    std::size_t i = 0;
    for (; i + 8 <= text.size(); i += 8) {
        const std::uint64_t found = FirstZeroByte(EightBytes(text.data() + i) ^ EachByte('\\'));
        if (found != 0)
            return i + ByteOfLowestBit(found);
    }
    while (i < text.size() && text[i] != '\\')
        ++i;
    return i;
}

/// Whether none of the eight bytes is a quote, a backslash or a control byte.
constexpr bool NeedNoEscape(std::uint64_t word)
{
    const std::uint64_t control = (word - EachByte(0x20)) & ~word & EachByte(0x80);
    return (control | FirstZeroByte(word ^ EachByte('"')) | FirstZeroByte(word ^ EachByte('\\'))) == 0;
}

constexpr bool IsWhiteSpace(char c)
{
    return c == ' ' || c == '\n' || c == '\t';
}

/// Number of blanks, tabs and line feeds at the beginning.
inline std::size_t WhiteSpaceRun(std::string_view text)
{
    std::size_t i = 0;
    while (i < text.size() && IsWhiteSpace(text[i])) {
        ++i;
        while (i + 8 <= text.size()) { // the rest of the line's indentation
            const std::uint64_t others = EightBytes(text.data() + i) ^ EachByte(' ');
            if (others != 0) {
                i += ByteOfLowestBit(others);
                break;
            }
            i += 8;
        }
    }
    return i;
}

} // namespace JSON
