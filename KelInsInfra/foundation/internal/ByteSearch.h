#pragma once

#include <bit>
#include <emmintrin.h>

// 16 bytes at a time, without a call: the C runtime's memchr may take many times as long.

namespace KelInsString {

/// The first of the given bytes in a range, or its end.
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

} // namespace KelInsString
