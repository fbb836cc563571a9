#include <KelInsInfra/hash/KelInsUUID.h>
#include <KelInsInfra/hash/internal/UuidText.h>
#include <chrono>

namespace KelInsUUID {
namespace {

std::uint32_t SeedFromClock()
{
    using Ticks = std::chrono::duration<std::int64_t, std::ratio<1, 10'000'000>>; // 100 nanoseconds
    const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
    return static_cast<std::uint32_t>(std::chrono::floor<Ticks>(sinceEpoch).count()); // the low 32 bits
}

} // namespace

std::mt19937& Generator()
{
    static std::mt19937 generator(SeedFromClock());
    return generator;
}

Values DrawValues(std::mt19937& generator)
{
    // Rejection sampling of 0 to 65,535 from 32-bit outputs would reject none: 2^32 is a multiple of 2^16, so the upper
    // half of an output takes each value for exactly 2^16 of the 2^32 outputs.
    Values values;
    for (std::uint16_t& value : values)
        value = static_cast<std::uint16_t>(generator() >> 16);
    return values;
}

std::string UuidText(Values values, bool upperCase)
{
    values[3] = static_cast<std::uint16_t>((values[3] & 0x0FFF) + 0x4000); // version 4
    values[4] = static_cast<std::uint16_t>((values[4] & 0x3FFF) + 0x8000); // variant 10 in binary
    const char* const digits = upperCase ? "0123456789ABCDEF" : "0123456789abcdef";
    std::string text(36, '-');
    char* position = text.data();
    for (std::size_t i = 0; i < values.size(); ++i) {
        for (int shift = 12; shift >= 0; shift -= 4)
            *position++ = digits[values[i] >> shift & 0xF];
        if (i >= 1 && i <= 4) // 8-4-4-4-12
            ++position;
    }
    return text;
}

std::string GetUUID(bool upperCase)
{
    return UuidText(DrawValues(Generator()), upperCase);
}

} // namespace KelInsUUID
