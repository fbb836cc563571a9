#include <KelInsInfra/hash/internal/Sha256Engines.h>
#include <algorithm>
#include <cstring>

namespace KelInsHash {
namespace {

constexpr std::uint64_t kBlockSize = SHA256::_cChunkSize;
constexpr std::uint64_t kLanes = 4;

/// The same message word of four consecutive blocks. Message words do not depend on the chaining words, so those of
/// four blocks are worked out side by side; only the rounds have to wait for each other.
using Lanes [[gnu::vector_size(16)]] = std::uint32_t;
using Schedule = std::array<Lanes, 64>;

template <int Count>
[[gnu::always_inline]] inline Lanes RightRotate(Lanes value)
{
    return value >> Count | value << (32 - Count);
}

[[gnu::always_inline]] inline std::uint32_t Rotr(std::uint32_t value, int count)
{
    return Sha256Engines::RightRotate(value, count);
}

std::uint32_t LoadWord(const unsigned char* bytes)
{
    std::uint32_t word;
    std::memcpy(&word, bytes, sizeof word);
    return Sha256Engines::BigEndian(word);
}

/// Message words of up to four blocks, the round constants added. Lanes without a block repeat the last one.
void Expand(Schedule& w, const unsigned char* blocks, std::uint64_t count)
{
    std::array<const unsigned char*, kLanes> block;
    for (std::uint64_t lane = 0; lane < kLanes; ++lane)
        block[lane] = blocks + std::min(lane, count - 1) * kBlockSize;
    for (std::size_t t = 0; t < 16; ++t)
        w[t] = Lanes{LoadWord(block[0] + 4 * t), LoadWord(block[1] + 4 * t), LoadWord(block[2] + 4 * t),
                     LoadWord(block[3] + 4 * t)};

    for (std::size_t t = 16; t < w.size(); ++t) {
        const Lanes w15 = w[t - 15];
        const Lanes w2 = w[t - 2];
        w[t] = w[t - 16] + (RightRotate<7>(w15) ^ RightRotate<18>(w15) ^ w15 >> 3) + w[t - 7] +
               (RightRotate<17>(w2) ^ RightRotate<19>(w2) ^ w2 >> 10);
        w[t - 16] += Sha256Engines::kRoundConstants[t - 16]; // its last use as a message word was just now
    }
    for (std::size_t t = w.size() - 16; t < w.size(); ++t)
        w[t] += Sha256Engines::kRoundConstants[t];
}

/// One round. Instead of moving eight words along, the caller names them in another order each time. Majority of a, b
/// and c is b, unless both others differ from it; a ^ b serves the next round as its b ^ c.
[[gnu::always_inline]] inline void Round(std::uint32_t a, std::uint32_t b, std::uint32_t& bXorC, std::uint32_t& d,
                                         std::uint32_t e, std::uint32_t f, std::uint32_t g, std::uint32_t& h,
                                         std::uint32_t input)
{
    h += input + (Rotr(e, 6) ^ Rotr(e, 11) ^ Rotr(e, 25)) + (g ^ (e & (f ^ g)));
    d += h;
    const std::uint32_t aXorB = a ^ b;
    h += (Rotr(a, 2) ^ Rotr(a, 13) ^ Rotr(a, 22)) + (b ^ (aXorB & bXorC));
    bXorC = aXorB;
}

void Rounds(Sha256Engines::Words& chaining, const Schedule& w, std::size_t lane)
{
    auto [a, b, c, d, e, f, g, h] = chaining;
    std::uint32_t x = b ^ c;
#pragma GCC unroll 1 // eight rounds, after which every word has its own name again, are enough of a body
    for (std::size_t t = 0; t < w.size(); t += 8) {
        Round(a, b, x, d, e, f, g, h, w[t][lane]);
        Round(h, a, x, c, d, e, f, g, w[t + 1][lane]);
        Round(g, h, x, b, c, d, e, f, w[t + 2][lane]);
        Round(f, g, x, a, b, c, d, e, w[t + 3][lane]);
        Round(e, f, x, h, a, b, c, d, w[t + 4][lane]);
        Round(d, e, x, g, h, a, b, c, w[t + 5][lane]);
        Round(c, d, x, f, g, h, a, b, w[t + 6][lane]);
        Round(b, c, x, e, f, g, h, a, w[t + 7][lane]);
    }
    const Sha256Engines::Words after{a, b, c, d, e, f, g, h};
    for (std::size_t i = 0; i < after.size(); ++i)
        chaining[i] += after[i];
}

} // namespace

alignas(16) constexpr std::array<std::uint32_t, 64> Sha256Engines::kRoundConstants = {
    0x428a2f98, 0x71374491, 0xb5c0fbcf, 0xe9b5dba5, 0x3956c25b, 0x59f111f1, 0x923f82a4, 0xab1c5ed5, //
    0xd807aa98, 0x12835b01, 0x243185be, 0x550c7dc3, 0x72be5d74, 0x80deb1fe, 0x9bdc06a7, 0xc19bf174, //
    0xe49b69c1, 0xefbe4786, 0x0fc19dc6, 0x240ca1cc, 0x2de92c6f, 0x4a7484aa, 0x5cb0a9dc, 0x76f988da, //
    0x983e5152, 0xa831c66d, 0xb00327c8, 0xbf597fc7, 0xc6e00bf3, 0xd5a79147, 0x06ca6351, 0x14292967, //
    0x27b70a85, 0x2e1b2138, 0x4d2c6dfc, 0x53380d13, 0x650a7354, 0x766a0abb, 0x81c2c92e, 0x92722c85, //
    0xa2bfe8a1, 0xa81a664b, 0xc24b8b70, 0xc76c51a3, 0xd192e819, 0xd6990624, 0xf40e3585, 0x106aa070, //
    0x19a4c116, 0x1e376c08, 0x2748774c, 0x34b0bcb5, 0x391c0cb3, 0x4ed8aa4a, 0x5b9cca4f, 0x682e6ff3, //
    0x748f82ee, 0x78a5636f, 0x84c87814, 0x8cc70208, 0x90befffa, 0xa4506ceb, 0xbef9a3f7, 0xc67178f2, //
};

void Sha256Engines::Portable(Words& chaining, const unsigned char* blocks, std::uint64_t count)
{
    Schedule schedule;
    while (count > 0) {
        const std::uint64_t taken = std::min(count, kLanes);
        Expand(schedule, blocks, taken);
        for (std::size_t lane = 0; lane < taken; ++lane)
            Rounds(chaining, schedule, lane);
        blocks += taken * kBlockSize;
        count -= taken;
    }
}

} // namespace KelInsHash
