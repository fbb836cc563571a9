// Listing the names below a key, and asking for the installed versions of a product line, beside the raw calls.

#include "tests/support/RegistryRoot.h"
#include <KelInsInfra/registry/KelInsMSI.h>
#include <KelInsInfra/registry/KelInsReg.h>
#include <array>
#include <benchmark/benchmark.h>
#include <msi.h>

namespace {

constexpr DWORD kNames = 200;
constexpr const char* kUpgradeCode = "{C1234567-0000-0000-0000-5EED00000002}";
constexpr const wchar_t* kWideUpgradeCode = L"{C1234567-0000-0000-0000-5EED00000002}";

/// A key with 200 values, and a product in the database of Windows Installer.
class Stored
{
public:
    Stored()
    {
        for (DWORD i = 0; i < kNames; ++i)
            WriteRaw(root_.Handle(), L"some value name " + std::to_wstring(i), {REG_DWORD, std::string(4, '\0')});
        const std::wstring installer = LR"(Software\Microsoft\Windows\CurrentVersion\Installer\)";
        const std::string packed = KelInsMSI::UUIDtoRegistryKey(kUpgradeCode);
        Write(installer + LR"(UpgradeCodes\)" + std::wstring(packed.begin(), packed.end()), kProduct, L"");
        Write(LR"(Software\Classes\Installer\Products\)" + std::wstring(kProduct), L"ProductName", L"Orchard");
        Write(installer + LR"(UserData\S-1-5-18\Products\)" + kProduct + LR"(\InstallProperties)", L"DisplayVersion",
              L"1.2.3");
    }

    ~Stored()
    {
        for (const std::wstring& path : written_)
            ::RegDeleteTreeW(HKEY_LOCAL_MACHINE, path.c_str());
    }

    Stored(const Stored&) = delete;
    Stored& operator=(const Stored&) = delete;

    [[nodiscard]] const KelInsReg::Key& Open() const { return key_; }

private:
    static constexpr const wchar_t* kProduct = L"7654321A000000000000000000000002";

    void Write(const std::wstring& path, const wchar_t* name, const std::wstring& text)
    {
        ::RegSetKeyValueW(HKEY_LOCAL_MACHINE, path.c_str(), name, REG_SZ, text.c_str(),
                          static_cast<DWORD>(2 * text.size() + 2));
        written_.push_back(path);
    }

    RegistryRoot root_;
    KelInsReg::Key key_ =
        KelInsReg::OpenKey(KelInsReg::RootKey::CurrentUser, root_.Path(), KelInsReg::AccessRights::ReadOnly,
                           KelInsReg::RegistryView::DoNotForceRegView);
    std::vector<std::wstring> written_;
};

const Stored& TheStored()
{
    static const Stored stored;
    return stored;
}

std::string Utf8(const wchar_t* text, DWORD units)
{
    std::array<char, 1024> buffer; // filled below
    const int bytes = ::WideCharToMultiByte(CP_UTF8, 0, text, static_cast<int>(units), buffer.data(),
                                            static_cast<int>(buffer.size()), nullptr, nullptr);
    return {buffer.data(), static_cast<std::size_t>(bytes)};
}

std::vector<std::string> ListRaw(HKEY key)
{
    std::vector<std::string> names;
    std::array<wchar_t, 256> name; // filled below
    DWORD units = 256;
    for (DWORD i = 0; ::RegEnumValueW(key, i, name.data(), &units, nullptr, nullptr, nullptr, nullptr) == 0; ++i) {
        names.push_back(Utf8(name.data(), units));
        units = 256;
    }
    return names;
}

std::vector<std::string> VersionsRaw()
{
    std::vector<std::string> versions;
    std::array<wchar_t, 39> product; // filled below
    for (DWORD i = 0; ::MsiEnumRelatedProductsW(kWideUpgradeCode, 0, i, product.data()) == ERROR_SUCCESS; ++i) {
        std::array<wchar_t, 64> version; // filled below
        DWORD units = 64;
        if (::MsiGetProductInfoW(product.data(), L"VersionString", version.data(), &units) == ERROR_SUCCESS)
            versions.push_back(Utf8(version.data(), units));
    }
    return versions;
}

template <typename Call>
void Register(const char* name, std::size_t expected, const Call& call)
{
    benchmark::RegisterBenchmark(name, [call, expected](benchmark::State& state) {
        for (auto _ : state)
            if (call() != expected)
                state.SkipWithError("another number of entries");
    });
}

const bool kRegistered = [] {
    Register("registry listing of 200 values/KelInsInfra", kNames, [] {
        std::vector<std::string> names;
        KelInsReg::GetValues(TheStored().Open(), names);
        return names.size();
    });
    Register("registry listing of 200 values/raw calls", kNames,
             [] { return ListRaw(TheStored().Open().GetKey()).size(); });
    Register("GetVersion/KelInsInfra", 1, [] {
        TheStored();
        return KelInsMSI::GetVersion(kUpgradeCode).size();
    });
    Register("GetVersion/raw calls", 1, [] {
        TheStored();
        return VersionsRaw().size();
    });
    return true;
}();

} // namespace
