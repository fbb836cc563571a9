#include <KelInsInfra/json/internal/ByteRuns.h>
#include <KelInsInfra/json/internal/KeyedHash.h>
#include <bit>
#include <chrono>
#include <random>

namespace JSON {
namespace {

struct Key
{
    std::uint64_t first;
    std::uint64_t second;
};

/// The system's random numbers; where there are none, what the clock and the address space layout give.
Key MakeKey() noexcept
{
    const auto clock = static_cast<std::uint64_t>(std::chrono::steady_clock::now().time_since_epoch().count());
    int local = 0;
    Key key{clock * 0x9E3779B97F4A7C15U, reinterpret_cast<std::uintptr_t>(&local)};
    try {
        std::random_device device;
        const auto next = [&device] { return std::uint64_t{device()} << 32 | device(); };
        key.first ^= next();
        key.second ^= next();
    } catch (const std::exception&) { // a weaker key is better than no document
    }
    return key;
}

struct State
{
    std::uint64_t v0, v1, v2, v3;

    void Round()
    {
        v0 += v1;
        v2 += v3;
        v1 = std::rotl(v1, 13) ^ v0;
        v3 = std::rotl(v3, 16) ^ v2;
        v0 = std::rotl(v0, 32);
        v2 += v1;
        v0 += v3;
        v1 = std::rotl(v1, 17) ^ v2;
        v3 = std::rotl(v3, 21) ^ v0;
        v2 = std::rotl(v2, 32);
    }

    void Mix(std::uint64_t word)
    {
        v3 ^= word;
        Round();
        v0 ^= word;
    }
};

/// The last bytes of a text, up to seven, as the lowest ones of a word.
std::uint64_t LastBytes(std::string_view bytes)
{
    const std::size_t count = bytes.size();
    const char* const begin = bytes.data();
    const auto byte = [begin](std::size_t i) { return std::uint64_t{static_cast<unsigned char>(begin[i])} << (8 * i); };
    if (count < 4)
        return count == 0 ? 0 : byte(0) | byte(count / 2) | byte(count - 1);
    const std::uint64_t low = FourBytes(begin);
    return low | std::uint64_t{FourBytes(begin + count - 4)} << (8 * (count - 4));
}

} // namespace

std::uint64_t KeyedHash(std::string_view text)
{
    static const Key key = MakeKey();
    return SipHash13(key.first, key.second, text);
}

std::uint64_t SipHash13(std::uint64_t key0, std::uint64_t key1, std::string_view text)
{
    State state{key0 ^ 0x736F6D6570736575U, key1 ^ 0x646F72616E646F6DU, key0 ^ 0x6C7967656E657261U,
                key1 ^ 0x7465646279746573U};
    const std::uint64_t length = text.size();
    for (; text.size() >= 8; text.remove_prefix(8))
        state.Mix(EightBytes(text.data()));
    state.Mix(LastBytes(text) | length << 56);
    state.v2 ^= 0xFF;
    for (int i = 0; i < 3; ++i)
        state.Round();
    return state.v0 ^ state.v1 ^ state.v2 ^ state.v3;
}

} // namespace JSON
