#include <KelInsInfra/foundation/KelInsString.h>
#include <KelInsInfra/foundation/internal/KelInsException.h>
#include <KelInsInfra/registry/internal/RegistryAccess.h>
#include <array>

namespace KelInsReg {
namespace {

constexpr DWORD kNameUnits = 256; // with the terminating NUL

/// @param readName  (index, buffer, &unitCount): one of the system's calls that list names.
template <typename ReadName>
std::uint64_t ListNames(const std::string& operation, std::vector<std::string>& names, const ReadName& readName)
{
    names.clear();
    std::array<wchar_t, kNameUnits> name; // filled by each call
    for (DWORD index = 0;; ++index) {
        DWORD unitCount = kNameUnits;
        const LSTATUS status = readName(index, name.data(), &unitCount);
        if (status == ERROR_NO_MORE_ITEMS)
            return names.size();
        if (status != ERROR_SUCCESS) {
            names.clear();
            Fail(operation + " - ", status);
        }
        names.push_back(KelInsString::Narrow(name.data()));
    }
}

std::uint64_t ListSubkeys(HKEY parent, std::vector<std::string>& names)
{
    return ListNames("GetSubkeys", names, [parent](DWORD index, wchar_t* name, DWORD* unitCount) {
        return ::RegEnumKeyExW(parent, index, name, unitCount, nullptr, nullptr, nullptr, nullptr);
    });
}

std::uint64_t ListValues(HKEY parent, std::vector<std::string>& names)
{
    return ListNames("GetValues", names, [parent](DWORD index, wchar_t* name, DWORD* unitCount) {
        return ::RegEnumValueW(parent, index, name, unitCount, nullptr, nullptr, nullptr, nullptr);
    });
}

} // namespace

std::uint64_t GetSubkeys(const Key& parent, std::vector<std::string>& names)
{
    return ListSubkeys(HandleOf(parent), names);
}

std::uint64_t GetSubkeys(RootKey parent, std::vector<std::string>& names)
{
    return ListSubkeys(HandleOf(parent), names);
}

std::uint64_t GetValues(const Key& parent, std::vector<std::string>& names)
{
    return ListValues(HandleOf(parent), names);
}

std::uint64_t GetValues(RootKey parent, std::vector<std::string>& names)
{
    return ListValues(HandleOf(parent), names);
}

} // namespace KelInsReg
