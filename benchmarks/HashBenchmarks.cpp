// SHA-256 beside the machine's own, beside our portable engine and beside a loop written down from the standard; UUIDs
// beside the machine's own.

#include "HashPeers.h"
#include <KelInsInfra/hash/KelInsUUID.h>
#include <KelInsInfra/hash/internal/Sha256Engines.h>
#include <benchmark/benchmark.h>
#if defined(__x86_64__)
#include <immintrin.h>
#endif
#include <istream>
#include <streambuf>
#include <utility>
#include <vector>

namespace {

using KelInsHash::SHA256;
using KelInsHash::Sha256Engines;
using Words = Sha256Engines::Words;

std::uint32_t Rotr(std::uint32_t value, int count)
{
    return value >> count | value << (32 - count);
}

/// The compression function as the standard words it: expand to 64 words, then 64 rounds that move eight variables.
void StraightforwardLoop(Words& chaining, const unsigned char* blocks, std::uint64_t count)
{
    for (; count > 0; --count, blocks += 64) {
        std::uint32_t w[64];
        for (std::size_t t = 0; t < 16; ++t) {
            const unsigned char* p = blocks + 4 * t;
            w[t] = std::uint32_t{p[0]} << 24 | std::uint32_t{p[1]} << 16 | std::uint32_t{p[2]} << 8 | p[3];
        }
        for (std::size_t t = 16; t < 64; ++t) {
            const std::uint32_t s0 = Rotr(w[t - 15], 7) ^ Rotr(w[t - 15], 18) ^ w[t - 15] >> 3;
            const std::uint32_t s1 = Rotr(w[t - 2], 17) ^ Rotr(w[t - 2], 19) ^ w[t - 2] >> 10;
            w[t] = w[t - 16] + s0 + w[t - 7] + s1;
        }
        auto [a, b, c, d, e, f, g, h] = chaining;
        for (std::size_t t = 0; t < 64; ++t) {
            const std::uint32_t s1 = Rotr(e, 6) ^ Rotr(e, 11) ^ Rotr(e, 25);
            const std::uint32_t t1 = h + s1 + ((e & f) ^ (~e & g)) + Sha256Engines::kRoundConstants[t] + w[t];
            const std::uint32_t t2 = (Rotr(a, 2) ^ Rotr(a, 13) ^ Rotr(a, 22)) + ((a & b) ^ (a & c) ^ (b & c));
            h = g;
            g = f;
            f = e;
            e = d + t1;
            d = c;
            c = b;
            b = a;
            a = t1 + t2;
        }
        const Words after{a, b, c, d, e, f, g, h};
        for (std::size_t i = 0; i < after.size(); ++i)
            chaining[i] += after[i];
    }
}

#if defined(__x86_64__)
/// What no use of the SHA extensions can fall below: 32 instructions a block, each of which waits for the one before.
[[gnu::target("sha,sse4.1")]] void RoundsAlone(Words& chaining, const unsigned char*, std::uint64_t count)
{
    __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i*>(chaining.data()));
    __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i*>(&chaining[4]));
    const __m128i input = _mm_setzero_si128(); // known long before: only the state is waited for
    for (; count > 0; --count)
#pragma GCC unroll 16
        for (int i = 0; i < 16; ++i) {
            b = _mm_sha256rnds2_epu32(b, a, input);
            a = _mm_sha256rnds2_epu32(a, b, input);
        }
    _mm_storeu_si128(reinterpret_cast<__m128i*>(chaining.data()), a);
}
#endif

/// A stream over memory, as cheap as a stream can be.
class MemoryBuffer : public std::streambuf
{
public:
    MemoryBuffer(char* data, std::size_t length) { setg(data, data, data + length); }
};

std::string& Bytes()
{
    static std::string bytes(std::size_t{64} << 20, 'x');
    return bytes;
}

template <typename Work>
void Add(const std::string& name, std::uint64_t bytes, Work work)
{
    benchmark::RegisterBenchmark(name.c_str(), [work, bytes](benchmark::State& state) {
        for (auto _ : state)
            work();
        state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes));
    });
}

void AddDigest(const std::string& work, std::uint64_t length)
{
    const char* const data = Bytes().data();
    Add(work + "/KelInsInfra", length, [=] {
        SHA256 hash;
        hash.Add(data, length);
        benchmark::DoNotOptimize(hash.GetHash());
    });
    Add(work + "/" + HashPeers::kSha256, length, [=] {
        unsigned char digest[32];
        HashPeers::Digest(data, length, digest);
        benchmark::DoNotOptimize(HashPeers::Hex(digest));
    });
}

void AddEngine(const std::string& name, std::uint64_t length, Sha256Engines::Engine engine)
{
    const auto* data = reinterpret_cast<const unsigned char*>(Bytes().data());
    Add(name, length, [=] {
        Words words{};
        engine(words, data, length / 64);
        benchmark::DoNotOptimize(words);
    });
}

void AddEngines(const std::string& work, const std::string& peer, Sha256Engines::Engine engine,
                Sha256Engines::Engine peerEngine)
{
    using Length = std::pair<std::uint64_t, const char*>;
    for (const auto& [length, label] : {Length{65536, ", 64 KiB/"}, Length{64, ", 64 bytes/"}}) {
        AddEngine(work + label + "KelInsInfra", length, engine);
        AddEngine(work + label + peer, length, peerEngine);
    }
}

void AddShortMessage()
{
    const std::string work = "SHA-256, GetHash of 64 bytes";
    const std::string message(64, 'x');
    Add(work + "/KelInsInfra", 64, [=] { benchmark::DoNotOptimize(SHA256::GetHash(message)); });
    Add(work + "/" + HashPeers::kSha256, 64, [=] { benchmark::DoNotOptimize(HashPeers::DigestText(message)); });
}

void AddStream()
{
    constexpr std::uint64_t kLength = std::uint64_t{16} << 20;
    const std::string work = "SHA-256, stream of 16 MiB";
    Add(work + "/KelInsInfra", kLength, [] {
        MemoryBuffer buffer(Bytes().data(), kLength);
        std::istream stream(&buffer);
        SHA256 hash;
        hash.Add(stream);
        benchmark::DoNotOptimize(hash.GetHash());
    });
    Add(work + "/" + HashPeers::kSha256 + " from memory", kLength, [] {
        unsigned char digest[32];
        HashPeers::Digest(Bytes().data(), kLength, digest);
        benchmark::DoNotOptimize(digest);
    });
}

/// 65 times 64 MiB of zeros: counts of bytes and bits beyond 32 bits. Checked, not compared.
void OverFourGigabytes(benchmark::State& state)
{
    const std::string zeros(std::size_t{64} << 20, '\0');
    for (auto _ : state) {
        SHA256 hash;
        for (int i = 0; i < 65; ++i)
            hash.Add(zeros);
        if (hash.GetHash() != "f8c6a4d9640d5154fd53d271e811269c35a3c6853ab8a72426acd23a280f965d")
            state.SkipWithError("wrong digest");
    }
    state.SetBytesProcessed(state.iterations() * 65 * static_cast<std::int64_t>(zeros.size()));
}

const bool kRegistered = [] {
    AddShortMessage();
    AddDigest("SHA-256, 1 KiB", 1024);
    AddDigest("SHA-256, 64 KiB", 65536);
    AddDigest("SHA-256, 1 MiB", std::uint64_t{1} << 20);
    AddDigest("SHA-256, 64 MiB", std::uint64_t{64} << 20);
    AddStream();
    AddEngines("SHA-256 portable engine", "straightforward loop", &Sha256Engines::Portable, &StraightforwardLoop);
    if (Sha256Engines::HaveBmi2())
        AddEngines("SHA-256 engine with BMI2", "straightforward loop", &Sha256Engines::Bmi2, &StraightforwardLoop);
    if (Sha256Engines::HaveShaExtensions()) {
        AddEngine("SHA-256 engine with SHA extensions, 64 KiB/KelInsInfra", 65536, &Sha256Engines::ShaExtensions);
        AddEngine("SHA-256 engine with SHA extensions, 64 KiB/portable engine", 65536, &Sha256Engines::Portable);
#if defined(__x86_64__)
        AddEngine("SHA-256 engine with SHA extensions, 64 KiB/its round instructions alone", 65536, &RoundsAlone);
#endif
    }
    Add("UUID text/KelInsInfra", 0, [] { benchmark::DoNotOptimize(KelInsUUID::GetUUID(false)); });
    Add(std::string("UUID text/") + HashPeers::kUuid, 0, [] { benchmark::DoNotOptimize(HashPeers::Uuid()); });
    benchmark::RegisterBenchmark("SHA-256, 4.06 GiB in pieces of 64 MiB, checked/KelInsInfra", OverFourGigabytes)
        ->Iterations(1)
        ->Unit(benchmark::kSecond);
    return true;
}();

} // namespace
