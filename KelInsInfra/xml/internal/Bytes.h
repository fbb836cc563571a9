#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <emmintrin.h>
#include <string_view>

namespace XML {

inline constexpr std::string_view kWhitespace = " \r\n\t";

constexpr bool IsWhitespace(char c)
{
    return c == ' ' || c == '\n' || c == '\t' || c == '\r';
}

inline bool IsBlank(std::string_view text)
{
    return std::all_of(text.begin(), text.end(), IsWhitespace);
}

/// The first of the given bytes in a range, or its end; 16 bytes at a time.
template <char... wanted>
const char* FindAny(const char* begin, const char* end)
{
    for (; end - begin >= 16; begin += 16) {
        const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(begin));
        __m128i found = _mm_setzero_si128();
        ((found = _mm_or_si128(found, _mm_cmpeq_epi8(block, _mm_set1_epi8(wanted)))), ...);
        if (const auto mask = static_cast<unsigned>(_mm_movemask_epi8(found)); mask != 0)
            return begin + std::countr_zero(mask);
    }
    while (begin != end && ((*begin != wanted) && ...))
        ++begin;
    return begin;
}

} // namespace XML
