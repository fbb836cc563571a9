#include <KelInsInfra/foundation/KelInsString.h>
#include <KelInsInfra/foundation/internal/SystemLibrary.h>
#include <KelInsInfra/registry/KelInsMSI.h>
#include <algorithm>
#include <array>
#include <atomic>
#include <msi.h>

namespace KelInsMSI {
namespace {

constexpr DWORD kMaxListings = 99;
constexpr DWORD kVersionUnits = 64;

/// msi.dll, once it is wanted; it stays loaded. Null and the last error when it cannot be had.
HMODULE InstallerLibrary()
{
    static std::atomic<HMODULE> library; // two first calls at once both load it, which is harmless
    if (library == nullptr)
        library = LoadSystemLibrary(L"msi.dll");
    return library;
}

struct Answer
{
    UINT status; ///< of Windows Installer, or the code of the failure to reach it
    bool reached;

    bool Is(UINT expected) const { return reached && status == expected; }

    /// What the answer is told apart by: a failure to reach Windows Installer is like none of its own.
    UINT Known() const { return reached ? status : ERROR_SUCCESS; }
};

/// Calls a function of msi.dll.
template <typename Function, typename... Arguments>
Answer CallInstaller(const char* name, Arguments... arguments)
{
    const auto function = FindEntry<Function*>(InstallerLibrary(), name);
    if (function == nullptr)
        return {::GetLastError(), false};
    return {function(arguments...), true};
}

Version ListingFailure(const Answer& answer, const std::string& upgradeCode)
{
    const auto code = static_cast<std::int32_t>(answer.status);
    switch (answer.Known()) {
    case ERROR_BAD_CONFIGURATION:
        return {"The configuration data is corrupt",
                R"(Invalid value in HKEY_CLASSES_ROOT\Installer\UpgradeCodes\)" + UUIDtoRegistryKey(upgradeCode), code};
    case ERROR_INVALID_PARAMETER:
        return {"An invalid parameter was passed to the function", "Invalid Upgrade Code: " + upgradeCode, code};
    default:
        return {"MsiEnumRelatedProducts failed", "Unknown error for Upgrade Code: " + upgradeCode, code};
    }
}

/// @param value  what the failed call left of the version.
Version ProductFailure(const Answer& answer, const std::string& productCode, const std::string& value)
{
    const auto code = static_cast<std::int32_t>(answer.status);
    switch (answer.Known()) {
    case ERROR_UNKNOWN_PRODUCT:
        return {"The product is unadvertised or uninstalled",
                R"(Unknown key HKEY_CLASSES_ROOT\Installer\Products\)" + UUIDtoRegistryKey(productCode), code};
    case ERROR_UNKNOWN_PROPERTY:
        return {"The property is unrecognized",
                R"(Invalid data in HKEY_LOCAL_MACHINE\SOFTWARE\Microsoft\Windows\CurrentVersion\Installer\)"
                R"(UserData\S-1-5-18\Products\)" +
                    UUIDtoRegistryKey(productCode),
                code};
    default: // the value, not the product code: it tells what the call had found
        return {"MsiGetProductInfo failed", "Unknown error for Product Code: " + value, code};
    }
}

Version ReadVersion(const wchar_t* productCode)
{
    std::array<wchar_t, kVersionUnits + 1> value{}; // one unit is never written: a NUL whatever the call leaves
    DWORD unitCount = kVersionUnits;
    const Answer answer = CallInstaller<decltype(::MsiGetProductInfoW)>(
        "MsiGetProductInfoW", productCode, INSTALLPROPERTY_VERSIONSTRING, value.data(), &unitCount);
    if (answer.Is(ERROR_SUCCESS))
        return KelInsString::Narrow(value.data());
    return ProductFailure(answer, KelInsString::Narrow(productCode), KelInsString::Narrow(value.data()));
}

} // namespace

std::vector<Version> GetVersion(const std::string& upgradeCode)
{
    const std::wstring wideUpgradeCode = KelInsString::Widen(upgradeCode);
    std::vector<Version> versions;
    for (DWORD index = 0; index < kMaxListings; ++index) {
        std::array<wchar_t, MAX_GUID_CHARS + 1> productCode{};
        const Answer answer = CallInstaller<decltype(::MsiEnumRelatedProductsW)>(
            "MsiEnumRelatedProductsW", wideUpgradeCode.c_str(), DWORD{0}, index, productCode.data());
        if (answer.Is(ERROR_NO_MORE_ITEMS))
            break;
        versions.push_back(answer.Is(ERROR_SUCCESS) ? ReadVersion(productCode.data())
                                                    : ListingFailure(answer, upgradeCode));
        if (answer.Is(ERROR_INVALID_PARAMETER))
            break;
    }
    return versions;
}

bool HasFoundVersion(const std::vector<Version>& versions)
{
    return std::any_of(versions.begin(), versions.end(), [](const Version& version) { return version.errorCode == 0; });
}

} // namespace KelInsMSI
