#include <KelInsInfra/foundation/KelInsString.h>
#include <KelInsInfra/registry/KelInsMSI.h>
#include <algorithm>
#include <array>

namespace KelInsMSI {
namespace {

constexpr std::size_t kDigits = 32;
constexpr std::array kGroupLengths = {8, 4, 4, 2, 2, 2, 2, 2, 2, 2, 2}; // three fields, then eight bytes
constexpr std::array<std::size_t, 4> kDashesFromLast = {20, 16, 12, 8};

/// Its own inverse.
std::string ReverseEachGroup(std::string digits)
{
    auto begin = digits.begin();
    for (const int length : kGroupLengths) {
        std::reverse(begin, begin + length);
        begin += length;
    }
    return digits;
}

} // namespace

std::string UUIDtoRegistryKey(const std::string& uuid)
{
    std::string enclosed = uuid;
    KelInsString::RemoveAll(enclosed, '-');
    if (enclosed.size() != kDigits + 2)
        return {};
    return ReverseEachGroup(enclosed.substr(1, kDigits));
}

std::string RegistryKeyToUUID(const std::string& key)
{
    if (key.size() != kDigits)
        return "{}";
    std::string uuid = ReverseEachGroup(key);
    for (const std::size_t position : kDashesFromLast)
        uuid.insert(position, 1, '-');
    return "{" + uuid + "}";
}

} // namespace KelInsMSI
