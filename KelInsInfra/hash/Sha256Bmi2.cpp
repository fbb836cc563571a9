#include <KelInsInfra/hash/internal/Sha256Rounds.h>

namespace KelInsHash {

#if defined(__x86_64__)

[[gnu::target("avx,bmi2")]] void Sha256Engines::Bmi2(Words& chaining, const unsigned char* blocks, std::uint64_t count)
{
    Sha256Rounds::Compress(chaining, blocks, count);
}

bool Sha256Engines::HaveBmi2()
{
    // AVX: only where the system saves its registers.
    return __builtin_cpu_supports("avx") && __builtin_cpu_supports("bmi2");
}

#else // another processor: the portable engine serves

void Sha256Engines::Bmi2(Words& chaining, const unsigned char* blocks, std::uint64_t count)
{
    Portable(chaining, blocks, count);
}

bool Sha256Engines::HaveBmi2()
{
    return false;
}

#endif

} // namespace KelInsHash
