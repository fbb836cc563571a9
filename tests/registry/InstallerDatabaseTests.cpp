// GetVersion beside real states of the installer database, sound and broken, made by plain registry writes.

#include "VersionEntries.h"

#include "tests/support/HandleCount.h"
#include "tests/support/RegistryRoot.h"
#include <KelInsInfra/registry/KelInsReg.h>
#include <gtest/gtest.h>

namespace {

using KelInsMSI::GetVersion;
using KelInsMSI::HasFoundVersion;
using KelInsMSI::Version;

constexpr const char* kUpgradeCode = "{C1234567-0000-0000-0000-5EED00000001}";

const std::wstring kInstaller = L"Software\\Microsoft\\Windows\\CurrentVersion\\Installer";
const std::wstring kUpgradeCodes = kInstaller + L"\\UpgradeCodes\\";
const std::wstring kProducts = L"Software\\Classes\\Installer\\Products\\";
const std::wstring kUserData = kInstaller + L"\\UserData\\S-1-5-18\\Products\\";

/// What is written is removed again.
class InstallerDatabase : public testing::Test
{
protected:
    static constexpr const wchar_t* kPear = L"7654321A000000000000000000000000";
    static constexpr const wchar_t* kApple = L"7654321B000000000000000000000000";

    void TearDown() override
    {
        for (const std::wstring& path : written_)
            ::RegDeleteTreeW(HKEY_LOCAL_MACHINE, path.c_str());
    }

    /// The value by which an upgrade code lists a product.
    void List(const std::wstring& name) { Write(kUpgradeCodes + Packed(), L"", name, L""); }

    void Advertise(const std::wstring& product) { Write(kProducts + product, L"", L"ProductName", L"Orchard"); }

    void AddProperty(const std::wstring& product, const std::wstring& name, const std::wstring& value)
    {
        Write(kUserData + product, L"\\InstallProperties", name, value);
    }

    void Install(const std::wstring& product, const std::wstring& version)
    {
        List(product);
        Advertise(product);
        AddProperty(product, L"DisplayVersion", version);
    }

    static std::wstring Packed()
    {
        const std::string packed = KelInsMSI::UUIDtoRegistryKey(kUpgradeCode);
        return {packed.begin(), packed.end()};
    }

private:
    void Write(const std::wstring& path, const std::wstring& below, const std::wstring& name, const std::wstring& text)
    {
        HKEY key = nullptr;
        ASSERT_EQ(::RegCreateKeyW(HKEY_LOCAL_MACHINE, (path + below).c_str(), &key), ERROR_SUCCESS);
        const KelInsReg::Key owner(key);
        WriteRaw(key, name, {REG_SZ, BytesOf(text + L'\0')});
        written_.push_back(path);
    }

    std::vector<std::wstring> written_;
};

TEST_F(InstallerDatabase, NothingInstalled)
{
    EXPECT_EQ(GetVersion(kUpgradeCode), Versions());
    EXPECT_FALSE(HasFoundVersion(GetVersion(kUpgradeCode)));
}

TEST_F(InstallerDatabase, OneProduct)
{
    Install(kPear, L"1.2.3");
    EXPECT_EQ(GetVersion(kUpgradeCode), Versions{Version("1.2.3")});
    EXPECT_TRUE(HasFoundVersion(GetVersion(kUpgradeCode)));
}

TEST_F(InstallerDatabase, TwoProductsInTheirOrder)
{
    Install(kPear, L"2.0.1");
    Install(kApple, L"1.9");
    EXPECT_EQ(GetVersion(kUpgradeCode), (Versions{Version("2.0.1"), Version("1.9")}));
}

TEST_F(InstallerDatabase, MoreThan99Products)
{
    for (int i = 0; i < 105; ++i)
        Install(L"7654321A" + std::wstring(21, L'0') + std::to_wstring(100 + i), L"1.0");
    EXPECT_EQ(GetVersion(kUpgradeCode), Versions(99, Version("1.0")));
}

TEST_F(InstallerDatabase, ProductsKeyMissing)
{
    List(kPear);
    EXPECT_EQ(GetVersion(kUpgradeCode),
              Versions{Version("The product is unadvertised or uninstalled",
                               R"(Unknown key HKEY_CLASSES_ROOT\Installer\Products\7654321A000000000000000000000000)",
                               1605)});
}

TEST_F(InstallerDatabase, InstallPropertiesMissing)
{
    List(kPear);
    Advertise(kPear);
    EXPECT_EQ(GetVersion(kUpgradeCode),
              Versions{Version("The property is unrecognized",
                               R"(Invalid data in HKEY_LOCAL_MACHINE\SOFTWARE\Microsoft\Windows\CurrentVersion\)"
                               R"(Installer\UserData\S-1-5-18\Products\7654321A000000000000000000000000)",
                               1608)});
}

TEST_F(InstallerDatabase, DisplayVersionMissing)
{
    List(kPear);
    Advertise(kPear);
    AddProperty(kPear, L"DisplayName", L"Orchard");
    EXPECT_EQ(GetVersion(kUpgradeCode), Versions{Version("")});
}

TEST_F(InstallerDatabase, DisplayVersionOf63CharactersFitsAnd64DoNot)
{
    Install(kPear, std::wstring(63, L'7'));
    Install(kApple, std::wstring(64, L'8'));
    EXPECT_EQ(GetVersion(kUpgradeCode),
              (Versions{Version(std::string(63, '7')),
                        Version("MsiGetProductInfo failed",
                                "Unknown error for Product Code: ", // Wine leaves nothing in the buffer
                                234)}));
}

TEST_F(InstallerDatabase, ListedNameIsNoProductCode)
{
    Install(kPear, L"1.2.3");
    List(L"garbage");
    const Versions versions = GetVersion(kUpgradeCode);
    ASSERT_EQ(versions.size(), 2U);
    EXPECT_EQ(versions[0], Version("1.2.3"));
    EXPECT_EQ(versions[1], Version("MsiGetProductInfo failed", "Unknown error for Product Code: ", 87));
}

TEST_F(InstallerDatabase, ListedNameOf40CharactersIsAFailureAndTheListingGoesOn)
{
    List(std::wstring(40, L'1'));
    Install(kPear, L"1.2.3");
    EXPECT_EQ(GetVersion(kUpgradeCode),
              (Versions{Version("MsiEnumRelatedProducts failed",
                                std::string("Unknown error for Upgrade Code: ") + kUpgradeCode, 234),
                        Version("1.2.3")}));
    EXPECT_TRUE(HasFoundVersion(GetVersion(kUpgradeCode)));
}

TEST_F(InstallerDatabase, UpgradeCodeIgnoresLetterCase)
{
    Install(kPear, L"1.2.3");
    EXPECT_EQ(GetVersion("{c1234567-0000-0000-0000-5eed00000001}"), Versions{Version("1.2.3")});
}

TEST_F(InstallerDatabase, ThousandQueriesLeaveNoHandle)
{
    Install(kPear, L"1.2.3");
    List(kApple);
    GetVersion(kUpgradeCode); // what the system opens once for good
    const std::size_t handles = HandleCount();
    for (int i = 0; i < 1000; ++i)
        GetVersion(kUpgradeCode);
    EXPECT_EQ(HandleCount(), handles);
}

} // namespace
