#pragma once

#include <bit>
#include <cstddef>
#include <cstring>
#include <emmintrin.h>
#include <string_view>

// Work on a few bytes without a call: the C runtime's memchr and memcpy may take many times as long.

namespace KelInsString {

/// The first of the given bytes in a range, or its end; 16 bytes at a time.
template <typename... Chars>
const char* FindByte(const char* begin, const char* end, Chars... wanted)
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

/// Copies a text; at most 16 bytes at a time.
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

} // namespace KelInsString
