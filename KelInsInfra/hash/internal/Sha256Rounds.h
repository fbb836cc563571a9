#pragma once

#include <KelInsInfra/hash/internal/Sha256Engines.h>
#include <bit>
#include <cstring>

/// The compression function in C++ alone. All of it is inlined into the engine that calls Compress, and so compiled for
/// the processors of that engine.
namespace KelInsHash::Sha256Rounds {

static_assert(std::endian::native == std::endian::little, "lanes and halves are counted from the lowest byte");

/// Four message words; their halves; two doubled ones.
using Four [[gnu::vector_size(16)]] = std::uint32_t;
using Eight [[gnu::vector_size(16)]] = std::uint16_t;
using Two [[gnu::vector_size(16)]] = std::uint64_t;

[[gnu::always_inline]] inline std::uint32_t Rotr(std::uint32_t value, int count)
{
    return Sha256Engines::RightRotate(value, count);
}

template <int Count>
[[gnu::always_inline]] inline Four Rotr(Four value)
{
    return value >> Count | value << (32 - Count);
}

/// sigma1 of two words x and y, given as x, x, y, y. A doubled word need not be rotated: a shift of all 64 bits brings
/// the same into its lower half. The upper halves are of no use.
[[gnu::always_inline]] inline Four Sigma1(Four words)
{
    const Two doubled = reinterpret_cast<Two>(words);
    return reinterpret_cast<Four>(doubled >> 17 ^ doubled >> 19) ^ words >> 10;
}

/// The four words after the first of eight. In doubled words, because four words taken from two vectors at once would
/// be taken one by one.
[[gnu::always_inline]] inline Four After1(Four first, Four second)
{
    const Two middle = __builtin_shufflevector(reinterpret_cast<Two>(first), reinterpret_cast<Two>(second), 1, 2);
    return reinterpret_cast<Four>(reinterpret_cast<Two>(first) >> 32 | middle << 32);
}

/// Message words t to t + 3 from the sixteen before them: w0 holds words t - 16 to t - 13, and so on.
[[gnu::always_inline]] inline Four NextWords(Four w0, Four w1, Four w2, Four w3)
{
    const Four none{};
    const Four words15 = After1(w0, w1);
    const Four words7 = After1(w2, w3);
    Four words = w0 + words7 + (Rotr<7>(words15) ^ Rotr<18>(words15) ^ words15 >> 3);
    words += __builtin_shufflevector(Sigma1(__builtin_shufflevector(w3, w3, 2, 2, 3, 3)), none, 0, 2, 4, 6);
    words += __builtin_shufflevector(none, Sigma1(__builtin_shufflevector(words, words, 0, 0, 1, 1)), 0, 2, 4, 6);
    return words;
}

[[gnu::always_inline]] inline Four LoadWords(const unsigned char* bytes)
{
    Eight halves;
    std::memcpy(&halves, bytes, sizeof halves);
    return Rotr<16>(reinterpret_cast<Four>(halves >> 8 | halves << 8));
}

/// One round. Instead of moving eight words along, the caller names them in another order each time. Majority of a, b
/// and c is b, unless both others differ from it; a ^ b serves the next round as its b ^ c.
[[gnu::always_inline]] inline void Round(std::uint32_t a, std::uint32_t b, std::uint32_t& bXorC, std::uint32_t& d,
                                         std::uint32_t e, std::uint32_t f, std::uint32_t g, std::uint32_t& h,
                                         std::uint32_t input)
{
    h += input; // one after the other, the latest operand last, though compilers may change it
    h += g ^ (e & (f ^ g));
    h += Rotr(e, 6) ^ Rotr(e, 11) ^ Rotr(e, 25);
    d += h;
    const std::uint32_t aXorB = a ^ b;
    h += b ^ (aXorB & bXorC);
    h += Rotr(a, 2) ^ Rotr(a, 13) ^ Rotr(a, 22);
    bXorC = aXorB;
}

/// The state between rounds, and the inputs of the next sixteen: message words with their round constants added.
struct Rounds
{
    std::uint32_t a, b, c, d, e, f, g, h, bXorC;
    std::array<std::uint32_t, 16> inputs;

    [[gnu::always_inline]] void SetInputs(std::size_t place, Four words, std::size_t t)
    {
        Four constants;
        std::memcpy(&constants, &Sha256Engines::kRoundConstants[t], sizeof constants);
        words += constants;
        std::memcpy(&inputs[place], &words, sizeof words);
    }

    [[gnu::always_inline]] void FourRounds(std::size_t place)
    {
        Round(a, b, bXorC, d, e, f, g, h, inputs[place]);
        Round(h, a, bXorC, c, d, e, f, g, inputs[place + 1]);
        Round(g, h, bXorC, b, c, d, e, f, inputs[place + 2]);
        Round(f, g, bXorC, a, b, c, d, e, inputs[place + 3]);
    }

    /// The four that follow FourRounds, after which every word has its own name again.
    [[gnu::always_inline]] void NextFourRounds(std::size_t place)
    {
        Round(e, f, bXorC, h, a, b, c, d, inputs[place]);
        Round(d, e, bXorC, g, h, a, b, c, inputs[place + 1]);
        Round(c, d, bXorC, f, g, h, a, b, inputs[place + 2]);
        Round(b, c, bXorC, e, f, g, h, a, inputs[place + 3]);
    }
};

/// One block. The words of four rounds are worked out side by side, in vector registers, while the rounds wait for each
/// other.
[[gnu::always_inline]] inline void Block(Sha256Engines::Words& chaining, const unsigned char* block)
{
    const auto [a, b, c, d, e, f, g, h] = chaining;
    Rounds rounds{a, b, c, d, e, f, g, h, b ^ c, {}};
    Four w0 = LoadWords(block);
    Four w1 = LoadWords(block + 16);
    Four w2 = LoadWords(block + 32);
    Four w3 = LoadWords(block + 48);
    rounds.SetInputs(0, w0, 0);
    rounds.SetInputs(4, w1, 4);
    rounds.SetInputs(8, w2, 8);
    rounds.SetInputs(12, w3, 12);
#pragma GCC unroll 1 // sixteen rounds are enough of a body
    for (std::size_t t = 16; t < 64; t += 16) {
        rounds.FourRounds(0);
        rounds.SetInputs(0, w0 = NextWords(w0, w1, w2, w3), t);
        rounds.NextFourRounds(4);
        rounds.SetInputs(4, w1 = NextWords(w1, w2, w3, w0), t + 4);
        rounds.FourRounds(8);
        rounds.SetInputs(8, w2 = NextWords(w2, w3, w0, w1), t + 8);
        rounds.NextFourRounds(12);
        rounds.SetInputs(12, w3 = NextWords(w3, w0, w1, w2), t + 12);
    }
    rounds.FourRounds(0);
    rounds.NextFourRounds(4);
    rounds.FourRounds(8);
    rounds.NextFourRounds(12);
    const Sha256Engines::Words after{rounds.a, rounds.b, rounds.c, rounds.d, rounds.e, rounds.f, rounds.g, rounds.h};
    for (std::size_t i = 0; i < after.size(); ++i)
        chaining[i] += after[i];
}

[[gnu::always_inline]] inline void Compress(Sha256Engines::Words& chaining, const unsigned char* blocks,
                                            std::uint64_t count)
{
    for (; count > 0; --count, blocks += SHA256::_cChunkSize)
        Block(chaining, blocks);
}

} // namespace KelInsHash::Sha256Rounds
