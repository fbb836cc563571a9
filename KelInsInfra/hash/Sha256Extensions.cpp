#include <KelInsInfra/hash/internal/Sha256Engines.h>

#if defined(__x86_64__)
#include <cpuid.h>
#include <immintrin.h>

namespace KelInsHash {
namespace {

[[gnu::target("sha,sse4.1"), gnu::always_inline]] inline __m128i Load(const void* bytes)
{
    return _mm_loadu_si128(static_cast<const __m128i*>(bytes));
}

/// Rounds t to t + 3.
[[gnu::target("sha,sse4.1"), gnu::always_inline]] inline void FourRounds(__m128i& abef, __m128i& cdgh, __m128i words,
                                                                         std::size_t t)
{
    const __m128i input = _mm_add_epi32(words, Load(&Sha256Engines::kRoundConstants[t]));
    cdgh = _mm_sha256rnds2_epu32(cdgh, abef, input);
    abef = _mm_sha256rnds2_epu32(abef, cdgh, _mm_shuffle_epi32(input, 0x0E)); // its upper two words
}

/// Message words t to t + 3 from the sixteen before them: w0 holds words t - 16 to t - 13, and so on.
[[gnu::target("sha,sse4.1"), gnu::always_inline]] inline __m128i NextWords(__m128i w0, __m128i w1, __m128i w2,
                                                                           __m128i w3)
{
    const __m128i words7 = _mm_alignr_epi8(w3, w2, 4); // words t - 7 to t - 4
    return _mm_sha256msg2_epu32(_mm_add_epi32(_mm_sha256msg1_epu32(w0, w1), words7), w3);
}

/// One block. The instructions want the chaining words as (A, B, E, F) and (C, D, G, H), first one uppermost.
[[gnu::target("sha,sse4.1"), gnu::always_inline]] inline void Block(__m128i& abef, __m128i& cdgh,
                                                                    const unsigned char* block)
{
    const __m128i bigEndian = _mm_set_epi64x(0x0c0d0e0f08090a0b, 0x0405060700010203);
    __m128i w0 = _mm_shuffle_epi8(Load(block), bigEndian);
    __m128i w1 = _mm_shuffle_epi8(Load(block + 16), bigEndian);
    __m128i w2 = _mm_shuffle_epi8(Load(block + 32), bigEndian);
    __m128i w3 = _mm_shuffle_epi8(Load(block + 48), bigEndian);
    const __m128i abefBefore = abef;
    const __m128i cdghBefore = cdgh;
    FourRounds(abef, cdgh, w0, 0);
    FourRounds(abef, cdgh, w1, 4);
    FourRounds(abef, cdgh, w2, 8);
    FourRounds(abef, cdgh, w3, 12);
#pragma GCC unroll 3
    for (std::size_t t = 16; t < 64; t += 16) {
        w0 = NextWords(w0, w1, w2, w3);
        FourRounds(abef, cdgh, w0, t);
        w1 = NextWords(w1, w2, w3, w0);
        FourRounds(abef, cdgh, w1, t + 4);
        w2 = NextWords(w2, w3, w0, w1);
        FourRounds(abef, cdgh, w2, t + 8);
        w3 = NextWords(w3, w0, w1, w2);
        FourRounds(abef, cdgh, w3, t + 12);
    }
    abef = _mm_add_epi32(abef, abefBefore);
    cdgh = _mm_add_epi32(cdgh, cdghBefore);
}

} // namespace

[[gnu::target("sha,sse4.1")]] void Sha256Engines::ShaExtensions(Words& chaining, const unsigned char* blocks,
                                                                std::uint64_t count)
{
    const __m128i cdab = _mm_shuffle_epi32(Load(chaining.data()), 0xB1);
    const __m128i efgh = _mm_shuffle_epi32(Load(&chaining[4]), 0x1B);
    __m128i abef = _mm_alignr_epi8(cdab, efgh, 8);
    __m128i cdgh = _mm_blend_epi16(efgh, cdab, 0xF0);

    for (; count > 0; --count, blocks += SHA256::_cChunkSize)
        Block(abef, cdgh, blocks);

    const __m128i feba = _mm_shuffle_epi32(abef, 0x1B);
    const __m128i dchg = _mm_shuffle_epi32(cdgh, 0xB1);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(chaining.data()), _mm_blend_epi16(feba, dchg, 0xF0));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(&chaining[4]), _mm_alignr_epi8(dchg, feba, 8));
}

bool Sha256Engines::HaveShaExtensions()
{
    unsigned eax = 0;
    unsigned ebx = 0;
    unsigned ecx = 0;
    unsigned edx = 0;
    constexpr unsigned kNeeded = bit_SSSE3 | bit_SSE4_1; // byte shuffles and blends
    return __get_cpuid(1, &eax, &ebx, &ecx, &edx) != 0 && (ecx & kNeeded) == kNeeded &&
           __get_cpuid_count(7, 0, &eax, &ebx, &ecx, &edx) != 0 && (ebx & bit_SHA) != 0;
}

} // namespace KelInsHash

#else // another processor: the portable engine serves

namespace KelInsHash {

void Sha256Engines::ShaExtensions(Words& chaining, const unsigned char* blocks, std::uint64_t count)
{
    Portable(chaining, blocks, count);
}

bool Sha256Engines::HaveShaExtensions()
{
    return false;
}

} // namespace KelInsHash

#endif
