#pragma once

#include <KelInsInfra/hash/SHA256.h>
#include <bit>

namespace KelInsHash {

/// The compression function of SHA-256, three times. All run over `count` consecutive blocks of 64 bytes, of any
/// alignment, and update the chaining words H0 to H7.
struct Sha256Engines
{
    using Words = std::array<std::uint32_t, 8>;
    using Engine = void (*)(Words& chaining, const unsigned char* blocks, std::uint64_t count);

    static const std::array<std::uint32_t, 64> kRoundConstants; // K, aligned for the SHA extensions

    static void Portable(Words& chaining, const unsigned char* blocks, std::uint64_t count);

    /// The portable code compiled for processors that rotate into another register and name three vector registers at
    /// once, a fifth fewer instructions: most of those since 2013 that have no SHA extensions. Only where HaveBmi2().
    static void Bmi2(Words& chaining, const unsigned char* blocks, std::uint64_t count);
    static bool HaveBmi2();

    /// Only where HaveShaExtensions().
    static void ShaExtensions(Words& chaining, const unsigned char* blocks, std::uint64_t count);
    static bool HaveShaExtensions();

    static Engine Fastest(bool haveShaExtensions, bool haveBmi2);

    /// Number for its big-endian bytes, and the other way round.
    template <typename Number>
    static Number BigEndian(Number value)
    {
        return std::endian::native == std::endian::little ? SHA256::EndianSwap(value) : value;
    }

    static std::uint32_t RightRotate(std::uint32_t value, int count) { return SHA256::RightRotate(value, count); }
};

inline std::uint32_t SHA256::EndianSwap(std::uint32_t value)
{
    return value >> 24 | (value >> 8 & 0xFF00) | (value << 8 & 0xFF0000) | value << 24;
}

inline std::uint64_t SHA256::EndianSwap(std::uint64_t value)
{
    const std::uint64_t low = EndianSwap(static_cast<std::uint32_t>(value));
    return low << 32 | EndianSwap(static_cast<std::uint32_t>(value >> 32));
}

inline std::uint32_t SHA256::RightRotate(std::uint32_t value, int count)
{
    return std::rotr(value, count); // defined for every count, unlike a pair of shifts
}

} // namespace KelInsHash
