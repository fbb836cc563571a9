#pragma once

#include <bit>
#include <cstdint>
#include <cstring>
#include <emmintrin.h>
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

inline std::uint32_t FourBytes(const char* bytes)
{
    std::uint32_t word = 0;
    std::memcpy(&word, bytes, sizeof(word));
    return word;
}

/// Of the eight bytes, the lowest zero one has its highest bit set in the result; 0 if there is none.
constexpr std::uint64_t FirstZeroByte(std::uint64_t word)
{
    return (word - EachByte(1)) & ~word & EachByte(0x80);
}

/// Whether none of the eight bytes is a quote, a backslash or a control byte.
constexpr bool NeedNoEscape(std::uint64_t word)
{
    const std::uint64_t control = (word - EachByte(0x20)) & ~word & EachByte(0x80);
    return (control | FirstZeroByte(word ^ EachByte('"')) | FirstZeroByte(word ^ EachByte('\\'))) == 0;
}

inline __m128i SixteenBytes(const char* bytes)
{
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
}

/// A bit for each of the bytes that is the given one, the lowest for the first byte.
inline unsigned Equal(__m128i bytes, char byte)
{
    return static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(bytes, _mm_set1_epi8(byte))));
}

/// Copies a text, most often a short one, without a call.
inline void CopyBytes(char* to, std::string_view text)
{
    const char* const from = text.data();
    const std::size_t size = text.size();
    if (size >= 16) {
        for (std::size_t i = 0; i + 16 < size; i += 16)
            std::memcpy(to + i, from + i, 16);
        std::memcpy(to + size - 16, from + size - 16, 16); // overlaps with what is there already
    } else if (size >= 8) {
        std::memcpy(to, from, 8);
        std::memcpy(to + size - 8, from + size - 8, 8);
    } else if (size >= 4) {
        std::memcpy(to, from, 4);
        std::memcpy(to + size - 4, from + size - 4, 4);
    } else {
        for (std::size_t i = 0; i < size; ++i)
            to[i] = from[i];
    }
}

/// The first backslash, or the end.
inline const char* FindBackslash(const char* begin, const char* end)
{
    for (; end - begin >= 16; begin += 16) {
        if (const unsigned found = Equal(SixteenBytes(begin), '\\'); found != 0)
            return begin + std::countr_zero(found);
    }
    while (begin != end && *begin != '\\')
        ++begin;
    return begin;
}

constexpr std::size_t kReadBeyond = 16; ///< memory that must be there after what these look at

/// The first quote or backslash, or the end.
inline char* FindQuoteOrBackslash(char* begin, char* end)
{
    for (; begin < end; begin += 16) {
        const __m128i bytes = SixteenBytes(begin);
        if (const unsigned found = Equal(bytes, '"') | Equal(bytes, '\\'); found != 0) {
            begin += std::countr_zero(found);
            break;
        }
    }
    return begin < end ? begin : end;
}

/// The first byte that is no digit; there must be one.
inline char* SkipDigits(char* next)
{
    const __m128i beforeZero = _mm_set1_epi8('0' - 1);
    const __m128i afterNine = _mm_set1_epi8('9' + 1);
    for (;; next += 16) {
        const __m128i bytes = SixteenBytes(next);
        const __m128i digits = _mm_and_si128(_mm_cmpgt_epi8(bytes, beforeZero), _mm_cmplt_epi8(bytes, afterNine));
        if (const unsigned others = static_cast<unsigned>(_mm_movemask_epi8(digits)) ^ 0xFFFF; others != 0)
            return next + std::countr_zero(others);
    }
}

constexpr bool IsWhiteSpace(char c)
{
    return c == ' ' || c == '\n' || c == '\t';
}

/// The first byte that is no blank, tab or line feed; there must be one.
inline char* FindNoWhiteSpace(char* next)
{
    while (IsWhiteSpace(*next)) {
        ++next; // then the rest of the line's indentation
        unsigned others = 0;
        while ((others = Equal(SixteenBytes(next), ' ') ^ 0xFFFF) == 0)
            next += 16;
        next += std::countr_zero(others);
    }
    return next;
}

} // namespace JSON
