// Both transpositions against what is said of their results: lengths, characters in their places, and each other.

#include <KelInsInfra/registry/KelInsMSI.h>
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

namespace {

/// Where the digits of a key stand in a GUID without braces and dashes.
constexpr std::size_t kPlaces[] = {7,  6,  5,  4,  3,  2,  1,  0,  11, 10, 9,  8,  15, 14, 13, 12,
                                   17, 16, 19, 18, 21, 20, 23, 22, 25, 24, 27, 26, 29, 28, 31, 30};

void Require(bool holds)
{
    if (!holds)
        std::abort();
}

void CheckPacking(const std::string& uuid)
{
    std::string digits = uuid;
    std::erase(digits, '-');
    const std::string key = KelInsMSI::UUIDtoRegistryKey(uuid);
    if (digits.size() != 34) {
        Require(key.empty());
        return;
    }
    Require(key.size() == 32);
    for (std::size_t i = 0; i < key.size(); ++i)
        Require(key[i] == digits[1 + kPlaces[i]]);
}

void CheckUnpacking(const std::string& key)
{
    const std::string uuid = KelInsMSI::RegistryKeyToUUID(key);
    if (key.size() != 32) {
        Require(uuid == "{}");
        return;
    }
    Require(uuid.size() == 38 && uuid.front() == '{' && uuid.back() == '}');
    for (const std::size_t dash : {9U, 14U, 19U, 24U})
        Require(uuid[dash] == '-');
    if (key.find('-') == std::string::npos)
        Require(KelInsMSI::UUIDtoRegistryKey(uuid) == key);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text(data, data + size);
    CheckPacking(text);
    CheckUnpacking(text);
    std::string filled = text; // most texts have the wrong length
    filled.resize(32, '0');
    CheckUnpacking(filled);
    CheckPacking(KelInsMSI::RegistryKeyToUUID(filled));
    return 0;
}
