// What GetVersion makes of each status of Windows Installer, the two functions of msi.dll being replaced.

#include "VersionEntries.h"

#include "tests/support/HandleCount.h"
#include "tests/support/ImportHook.h"
#include <cwchar>
#include <gtest/gtest.h>
#include <map>

namespace {

using KelInsMSI::GetVersion;
using KelInsMSI::HasFoundVersion;
using KelInsMSI::Version;

constexpr const char* kUpgradeCode = "{C1234567-89AB-CDEF-0123-456789ABCDEF}";
constexpr const char* kPackedUpgradeCode = "7654321CBA98FEDC1032547698BADCFE";
constexpr const wchar_t* kPear = L"{A1234567-89AB-CDEF-0123-456789ABCDEF}";
constexpr const char* kPackedPear = "7654321ABA98FEDC1032547698BADCFE";
constexpr const wchar_t* kApple = L"{B1234567-89AB-CDEF-0123-456789ABCDEF}";

struct Listing
{
    UINT status;
    std::wstring productCode;
};

struct Information
{
    UINT status;
    std::wstring value; ///< what is in the buffer afterwards
};

/// Stands for Windows Installer. One at a time.
class FakeInstaller
{
public:
    FakeInstaller() { current_ = this; }

    ~FakeInstaller() { current_ = nullptr; }

    FakeInstaller(const FakeInstaller&) = delete;
    FakeInstaller& operator=(const FakeInstaller&) = delete;

    std::vector<Listing> listings; ///< by index; beyond them the last one again
    std::map<std::wstring, Information> products;
    std::string missing;                      ///< a function that msi.dll lacks
    std::vector<DWORD> indexes;               ///< those asked for
    std::vector<std::wstring> upgradeCodes;   ///< likewise
    std::vector<std::wstring> askedProducts;  ///< likewise
    std::vector<DWORD> lengths;               ///< likewise
    std::vector<std::wstring> bufferContents; ///< of the version buffer, before each call

private:
    static UINT EnumRelatedProducts(LPCWSTR upgradeCode, DWORD reserved, DWORD index, LPWSTR product)
    {
        EXPECT_EQ(reserved, 0U);
        current_->upgradeCodes.emplace_back(upgradeCode);
        current_->indexes.push_back(index);
        const auto& listings = current_->listings;
        const Listing& listing = index < listings.size() ? listings[index] : listings.back();
        std::wcscpy(product, listing.productCode.c_str());
        return listing.status;
    }

    static UINT GetProductInfo(LPCWSTR product, LPCWSTR property, LPWSTR value, DWORD* length)
    {
        EXPECT_STREQ(property, L"VersionString");
        current_->askedProducts.emplace_back(product);
        current_->bufferContents.emplace_back(value);
        current_->lengths.push_back(*length);
        const Information& information = current_->products.at(product);
        std::wmemcpy(value, information.value.data(), information.value.size());
        *length = static_cast<DWORD>(information.value.size());
        return information.status;
    }

    template <typename Function>
    static FARPROC Address(Function* function)
    {
        return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(function));
    }

    FARPROC Find(HMODULE module, LPCSTR name) const
    {
        if (name == missing) {
            ::SetLastError(ERROR_PROC_NOT_FOUND);
            return nullptr;
        }
        if (std::string(name) == "MsiEnumRelatedProductsW")
            return Address(&EnumRelatedProducts);
        if (std::string(name) == "MsiGetProductInfoW")
            return Address(&GetProductInfo);
        return lookup_.CallOriginal(module, name);
    }

    static inline FakeInstaller* current_ = nullptr;
    ImportHook<FARPROC(HMODULE, LPCSTR)> lookup_{"GetProcAddress",
                                                 [this](HMODULE module, LPCSTR name) { return Find(module, name); }};
};

class InstallerStatus : public testing::Test
{
protected:
    Versions Ask() const { return GetVersion(kUpgradeCode); }

    FakeInstaller installer_;
};

// Statuses of the listing

TEST_F(InstallerStatus, NoProductAtAll)
{
    installer_.listings = {{ERROR_NO_MORE_ITEMS, L""}};
    EXPECT_EQ(Ask(), Versions());
    EXPECT_FALSE(HasFoundVersion(Ask()));
}

TEST_F(InstallerStatus, TwoProductsInTheirOrder)
{
    installer_.listings = {{0, kPear}, {0, kApple}, {ERROR_NO_MORE_ITEMS, L""}};
    installer_.products = {{kPear, {0, L"2.0.1"}}, {kApple, {0, L"1.9"}}};
    EXPECT_EQ(Ask(), (Versions{Version("2.0.1"), Version("1.9")}));
    EXPECT_EQ(installer_.indexes, (std::vector<DWORD>{0, 1, 2}));
    EXPECT_EQ(installer_.upgradeCodes, std::vector<std::wstring>(3, L"{C1234567-89AB-CDEF-0123-456789ABCDEF}"));
    EXPECT_EQ(installer_.askedProducts, (std::vector<std::wstring>{kPear, kApple}));
    EXPECT_TRUE(HasFoundVersion(Ask()));
}

TEST_F(InstallerStatus, CorruptConfigurationIsAnEntryAndTheListingGoesOn)
{
    installer_.listings = {{ERROR_BAD_CONFIGURATION, kApple}, {0, kPear}, {ERROR_NO_MORE_ITEMS, L""}};
    installer_.products = {{kPear, {0, L"2.0.1"}}};
    const Version corrupt(
        "The configuration data is corrupt",
        std::string(R"(Invalid value in HKEY_CLASSES_ROOT\Installer\UpgradeCodes\)") + kPackedUpgradeCode, 1610);
    EXPECT_EQ(Ask(), (Versions{corrupt, Version("2.0.1")}));
    EXPECT_EQ(installer_.askedProducts, std::vector<std::wstring>{kPear}); // no version of what is not listed
}

TEST_F(InstallerStatus, InvalidParameterIsAnEntryAndEndsTheListing)
{
    installer_.listings = {{ERROR_INVALID_PARAMETER, L""}, {0, kPear}};
    installer_.products = {{kPear, {0, L"2.0.1"}}};
    const auto invalid = [](const std::string& upgradeCode) {
        return Version("An invalid parameter was passed to the function", "Invalid Upgrade Code: " + upgradeCode, 87);
    };
    EXPECT_EQ(Ask(), Versions{invalid(kUpgradeCode)});
    EXPECT_EQ(installer_.indexes, std::vector<DWORD>{0});
    for (const std::string malformed : {"", "pear", "{not a guid}", "\xC3\xA4"}) // unchanged, whatever it is
        EXPECT_EQ(GetVersion(malformed), Versions{invalid(malformed)});
    EXPECT_FALSE(HasFoundVersion(Ask()));
}

TEST_F(InstallerStatus, InvalidParameterAfterAProductKeepsTheProduct)
{
    installer_.listings = {{0, kPear}, {ERROR_INVALID_PARAMETER, L""}};
    installer_.products = {{kPear, {0, L"2.0.1"}}};
    const Version invalid("An invalid parameter was passed to the function",
                          std::string("Invalid Upgrade Code: ") + kUpgradeCode, 87);
    EXPECT_EQ(Ask(), (Versions{Version("2.0.1"), invalid}));
}

TEST_F(InstallerStatus, OtherStatusesOfTheListingAreEntriesAndItGoesOn)
{
    for (const UINT status : {5U, 234U, 1601U, 1605U, 1608U, 0x80070005U}) {
        installer_.listings = {{status, L""}, {0, kPear}, {ERROR_NO_MORE_ITEMS, L""}};
        installer_.products = {{kPear, {0, L"2.0.1"}}};
        const Version failed("MsiEnumRelatedProducts failed",
                             std::string("Unknown error for Upgrade Code: ") + kUpgradeCode,
                             static_cast<std::int32_t>(status));
        EXPECT_EQ(Ask(), (Versions{failed, Version("2.0.1")})) << status;
    }
}

TEST_F(InstallerStatus, FailureAtEveryIndexEndsAfter99)
{
    for (const UINT status : {5U, 1610U}) {
        installer_.listings = {{status, L""}};
        installer_.indexes.clear();
        const Versions versions = Ask();
        EXPECT_EQ(versions.size(), 99U);
        EXPECT_EQ(versions, Versions(99, versions.front()));
        EXPECT_EQ(versions.front().errorCode, static_cast<std::int32_t>(status));
        ASSERT_EQ(installer_.indexes.size(), 99U);
        EXPECT_EQ(installer_.indexes.back(), 98U);
        EXPECT_FALSE(HasFoundVersion(versions));
    }
}

TEST_F(InstallerStatus, ProductsBeyondThe99thAreNotListed)
{
    installer_.listings = {{0, kPear}};
    installer_.products = {{kPear, {0, L"2.0.1"}}};
    EXPECT_EQ(Ask(), Versions(99, Version("2.0.1")));
    EXPECT_EQ(installer_.indexes.back(), 98U);
}

TEST_F(InstallerStatus, MalformedUpgradeCodeHasNoPackedForm)
{
    installer_.listings = {{ERROR_BAD_CONFIGURATION, L""}, {ERROR_NO_MORE_ITEMS, L""}};
    EXPECT_EQ(GetVersion("pear"),
              Versions{Version("The configuration data is corrupt",
                               R"(Invalid value in HKEY_CLASSES_ROOT\Installer\UpgradeCodes\)", 1610)});
}

// Statuses of a product

TEST_F(InstallerStatus, VanishedProductNamesItsPackedCode)
{
    installer_.listings = {{0, kPear}, {ERROR_NO_MORE_ITEMS, L""}};
    installer_.products = {{kPear, {ERROR_UNKNOWN_PRODUCT, L"left over"}}};
    EXPECT_EQ(Ask(), Versions{Version("The product is unadvertised or uninstalled",
                                      std::string(R"(Unknown key HKEY_CLASSES_ROOT\Installer\Products\)") + kPackedPear,
                                      1605)});
}

TEST_F(InstallerStatus, UnknownPropertyNamesTheUserData)
{
    installer_.listings = {{0, kPear}, {ERROR_NO_MORE_ITEMS, L""}};
    installer_.products = {{kPear, {ERROR_UNKNOWN_PROPERTY, L"left over"}}};
    const std::string place =
        R"(Invalid data in HKEY_LOCAL_MACHINE\SOFTWARE\Microsoft\Windows\CurrentVersion\Installer)"
        R"(\UserData\S-1-5-18\Products\)";
    EXPECT_EQ(Ask(), Versions{Version("The property is unrecognized", place + kPackedPear, 1608)});
}

TEST_F(InstallerStatus, OtherStatusesOfAProductShowWhatTheCallLeft)
{
    for (const UINT status : {87U, 234U, 259U, 1610U, 5U})
        for (const std::wstring left : {L"", L"1.2.3", L"half a vers"}) {
            installer_.listings = {{0, kPear}, {ERROR_NO_MORE_ITEMS, L""}};
            installer_.products = {{kPear, {status, left}}};
            const Version failed("MsiGetProductInfo failed",
                                 "Unknown error for Product Code: " + std::string(left.begin(), left.end()),
                                 static_cast<std::int32_t>(status));
            EXPECT_EQ(Ask(), Versions{failed}) << status;
        }
}

TEST_F(InstallerStatus, BufferIsClearedAndItsLengthSetBeforeEachCall)
{
    installer_.listings = {{0, kPear}, {0, kApple}, {ERROR_NO_MORE_ITEMS, L""}};
    installer_.products = {{kPear, {0, L"2.0.1"}}, {kApple, {ERROR_ACCESS_DENIED, L""}}};
    const Version failed("MsiGetProductInfo failed", "Unknown error for Product Code: ", 5);
    EXPECT_EQ(Ask(), (Versions{Version("2.0.1"), failed})); // not the version read before
    EXPECT_EQ(installer_.bufferContents, std::vector<std::wstring>(2));
    EXPECT_EQ(installer_.lengths, std::vector<DWORD>(2, 64));
}

TEST_F(InstallerStatus, BufferLeftWithoutItsTerminatorIsReadToItsEnd)
{
    installer_.listings = {{0, kPear}, {ERROR_NO_MORE_ITEMS, L""}};
    installer_.products = {{kPear, {ERROR_MORE_DATA, std::wstring(64, L'7')}}};
    EXPECT_EQ(Ask(), Versions{Version("MsiGetProductInfo failed",
                                      "Unknown error for Product Code: " + std::string(64, '7'), 234)});
}

TEST_F(InstallerStatus, VersionsAreUtf8AndMayBeEmpty)
{
    installer_.listings = {{0, kPear}, {0, kApple}, {ERROR_NO_MORE_ITEMS, L""}};
    installer_.products = {{kPear, {0, L"2.0 \u00C4\u20AC"}}, {kApple, {0, L""}}};
    EXPECT_EQ(Ask(), (Versions{Version("2.0 \xC3\x84\xE2\x82\xAC"), Version("")}));
}

TEST_F(InstallerStatus, MixOfProductAndFailureHasFoundAVersion)
{
    installer_.listings = {{0, kPear}, {0, kApple}, {ERROR_NO_MORE_ITEMS, L""}};
    installer_.products = {{kPear, {ERROR_UNKNOWN_PRODUCT, L""}}, {kApple, {0, L"1.9"}}};
    const Versions versions = Ask();
    ASSERT_EQ(versions.size(), 2U);
    EXPECT_EQ(versions[1], Version("1.9"));
    EXPECT_TRUE(HasFoundVersion(versions));
}

// msi.dll itself. Its loading happens once, hence a process for each of these.

TEST(InstallerLibraryIsolated, IsLoadedOnFirstUseFromTheSystemDirectoryOnce)
{
    EXPECT_EQ(::GetModuleHandleW(L"msi.dll"), nullptr);
    ImportHook<HMODULE(LPCWSTR, HANDLE, DWORD)> loading("LoadLibraryExW");
    GetVersion(kUpgradeCode);
    GetVersion(kUpgradeCode);
    ASSERT_EQ(loading.Calls().size(), 1U);
    EXPECT_EQ(loading.Calls()[0],
              (decltype(loading)::Call(L"msi.dll", nullptr, static_cast<DWORD>(LOAD_LIBRARY_SEARCH_SYSTEM32))));
    EXPECT_NE(::GetModuleHandleW(L"msi.dll"), nullptr);
}

TEST(InstallerLibraryIsolated, FailureToLoadIsTheStatusOfEachListingAndTriedAgain)
{
    ImportHook<HMODULE(LPCWSTR, HANDLE, DWORD)> loading("LoadLibraryExW");
    loading.FailFrom(1, nullptr, LastError(ERROR_MOD_NOT_FOUND));
    const Version failed("MsiEnumRelatedProducts failed",
                         std::string("Unknown error for Upgrade Code: ") + kUpgradeCode, ERROR_MOD_NOT_FOUND);
    EXPECT_EQ(GetVersion(kUpgradeCode), Versions(99, failed));
    EXPECT_EQ(loading.Calls().size(), 99U);
}

TEST(InstallerLibraryIsolated, FailureToLoadIsNeverTakenForAnAnswer)
{
    for (const DWORD code : {DWORD{ERROR_INVALID_PARAMETER}, DWORD{ERROR_NO_MORE_ITEMS}, DWORD{ERROR_UNKNOWN_PRODUCT},
                             DWORD{ERROR_UNKNOWN_PROPERTY}, DWORD{ERROR_BAD_CONFIGURATION}}) {
        ImportHook<HMODULE(LPCWSTR, HANDLE, DWORD)> loading("LoadLibraryExW");
        loading.FailFrom(1, nullptr, LastError(code));
        const Version failed("MsiEnumRelatedProducts failed",
                             std::string("Unknown error for Upgrade Code: ") + kUpgradeCode,
                             static_cast<std::int32_t>(code));
        EXPECT_TRUE(GetVersion(kUpgradeCode) == Versions(99, failed)) << code;
    }
}

TEST(InstallerLibraryIsolated, ServesAfterAFailureToLoad)
{
    ImportHook<HMODULE(LPCWSTR, HANDLE, DWORD)> loading("LoadLibraryExW");
    loading.FailCall(1, nullptr, LastError(ERROR_NOT_ENOUGH_MEMORY));
    EXPECT_EQ(GetVersion(kUpgradeCode), Versions{Version("MsiEnumRelatedProducts failed",
                                                         std::string("Unknown error for Upgrade Code: ") + kUpgradeCode,
                                                         ERROR_NOT_ENOUGH_MEMORY)});
    EXPECT_EQ(GetVersion(kUpgradeCode), Versions());
}

TEST(InstallerLibrary, MissingFunctionIsTheStatusOfEachListing)
{
    ImportHook<FARPROC(HMODULE, LPCSTR)> lookup("GetProcAddress");
    lookup.FailFrom(1, nullptr, LastError(ERROR_PROC_NOT_FOUND));
    const Version failed("MsiEnumRelatedProducts failed",
                         std::string("Unknown error for Upgrade Code: ") + kUpgradeCode, ERROR_PROC_NOT_FOUND);
    EXPECT_EQ(GetVersion(kUpgradeCode), Versions(99, failed));
}

TEST_F(InstallerStatus, MissingFunctionForProductsIsTheStatusOfEachProduct)
{
    installer_.listings = {{0, kPear}, {0, kApple}, {ERROR_NO_MORE_ITEMS, L""}};
    installer_.missing = "MsiGetProductInfoW";
    const Version failed("MsiGetProductInfo failed", "Unknown error for Product Code: ", ERROR_PROC_NOT_FOUND);
    EXPECT_EQ(Ask(), Versions(2, failed));
}

TEST(HasFoundVersion, OnlyAnEntryWithoutErrorCounts)
{
    const Version found("1.2.3");
    const Version failed("message", "detail", 1605);
    EXPECT_FALSE(HasFoundVersion({}));
    EXPECT_FALSE(HasFoundVersion({failed}));
    EXPECT_FALSE(HasFoundVersion({failed, failed}));
    EXPECT_TRUE(HasFoundVersion({found}));
    EXPECT_TRUE(HasFoundVersion({found, failed}));
    EXPECT_TRUE(HasFoundVersion({failed, failed, found}));
    EXPECT_TRUE(HasFoundVersion({Version("")})); // the code decides, not the text
    EXPECT_FALSE(HasFoundVersion({Version("", "", -1)}));
}

TEST(Version, FieldsOfBothKinds)
{
    const Version found("1.2.3");
    EXPECT_EQ(found.version, "1.2.3");
    EXPECT_EQ(found.message, "");
    EXPECT_EQ(found.detail, "");
    EXPECT_EQ(found.errorCode, 0);
    const Version failed("what", "where", 87);
    EXPECT_EQ(failed.version, "");
    EXPECT_EQ(failed.message, "what");
    EXPECT_EQ(failed.detail, "where");
    EXPECT_EQ(failed.errorCode, 87);
}

} // namespace
