#include "RegistryFixtures.h"

#include "tests/support/ExpectThrowsText.h"
#include "tests/support/HandleCount.h"
#include "tests/support/ImportHook.h"
#include <KelInsInfra/foundation/KelInsString.h>
#include <algorithm>
#include <gtest/gtest.h>

using namespace std::string_literals;

namespace {

using namespace KelInsReg;

// Subkeys

TEST_F(RegistryKeys, SubkeysOfAKeyWithoutAnyEmptyTheVector)
{
    Names names = {"left", "over"};
    EXPECT_EQ(GetSubkeys(parent_, names), 0U);
    EXPECT_EQ(names, Names());
}

TEST_F(RegistryKeys, SubkeysReplaceTheVectorsContentAndLeaveDeeperOnesOut)
{
    MakeKey(root_.Handle(), L"a\\deeper");
    MakeKey(root_.Handle(), L"b");
    Names names = {"left", "over", "from", "before"};
    EXPECT_EQ(GetSubkeys(parent_, names), 2U);
    EXPECT_EQ(names, (Names{"a", "b"}));
}

TEST_F(RegistryKeys, SubkeysOf255UnitsAreListed)
{
    const std::wstring longest(255, L'\u00E4');
    MakeKey(root_.Handle(), longest);
    Names names;
    EXPECT_EQ(GetSubkeys(parent_, names), 1U);
    EXPECT_EQ(names, Names{KelInsString::Narrow(longest)});
}

TEST_F(RegistryKeys, LongerSubkeysAreRefused)
{
    MakeKey(root_.Handle(), L"a");
    const std::wstring tooLong(256, L'b');
    HKEY key = nullptr;
    if (::RegCreateKeyW(root_.Handle(), tooLong.c_str(), &key) != ERROR_SUCCESS)
        GTEST_SKIP() << "Windows makes no key with such a name; Wine does";
    ::RegCloseKey(key);
    Names names = {"left over"};
    ExpectThrowsText<std::runtime_error>([&] { GetSubkeys(parent_, names); },
                                         SystemFailure("GetSubkeys - ", ERROR_MORE_DATA));
    EXPECT_EQ(names, Names());
}

TEST_F(RegistryKeys, ThousandsOfSubkeysComeInTheSystemsOrder)
{
    constexpr DWORD count = 3000;
    for (DWORD i = 0; i < count; ++i)
        MakeKey(root_.Handle(), L"k" + std::to_wstring(i * 7919 % count));
    Names names;
    EXPECT_EQ(GetSubkeys(parent_, names), count);
    ASSERT_EQ(names.size(), count);
    for (DWORD i = 0; i < count; i += 101) {
        wchar_t name[256];
        DWORD unitCount = 256;
        ASSERT_EQ(::RegEnumKeyExW(root_.Handle(), i, name, &unitCount, nullptr, nullptr, nullptr, nullptr), 0);
        EXPECT_EQ(names[i], KelInsString::Narrow(name));
    }
    std::sort(names.begin(), names.end());
    EXPECT_EQ(std::unique(names.begin(), names.end()), names.end());
}

TEST_F(RegistryKeys, FailedListingEmptiesTheVector)
{
    for (const wchar_t* name : {L"a", L"b", L"c"})
        MakeKey(root_.Handle(), name);
    ImportHook<LSTATUS(HKEY, DWORD, LPWSTR, LPDWORD, LPDWORD, LPWSTR, LPDWORD, PFILETIME)> hook("RegEnumKeyExW");
    hook.FailCall(3, ERROR_MORE_DATA, NoCode());
    Names names = {"left over"};
    ExpectThrowsText<std::runtime_error>([&] { GetSubkeys(parent_, names); },
                                         SystemFailure("GetSubkeys - ", ERROR_MORE_DATA));
    EXPECT_EQ(names, Names());
    DWORD index = 0;
    for (const auto& call : hook.Calls()) {
        EXPECT_EQ(std::get<0>(call), parent_.GetKey());
        EXPECT_EQ(std::get<1>(call), index++);
    }
}

TEST_F(RegistryKeys, ListingAsksFor256UnitsEachTime)
{
    for (const wchar_t* name : {L"a", L"bb"})
        MakeKey(root_.Handle(), name);
    std::vector<DWORD> sizes;
    ImportHook<LSTATUS(HKEY, DWORD, LPWSTR, LPDWORD, LPDWORD, LPWSTR, LPDWORD, PFILETIME)> hook(
        "RegEnumKeyExW",
        [&](HKEY key, DWORD index, LPWSTR name, LPDWORD unitCount, LPDWORD, LPWSTR, LPDWORD, PFILETIME) {
            sizes.push_back(*unitCount);
            return ::RegEnumKeyExW(key, index, name, unitCount, nullptr, nullptr, nullptr, nullptr);
        });
    Names names;
    GetSubkeys(parent_, names);
    EXPECT_EQ(sizes, std::vector<DWORD>(3, 256));
}

// Value names

TEST_F(RegistryValues, NamesOfAKeyWithoutValuesEmptyTheVector)
{
    Names names = {"left", "over"};
    EXPECT_EQ(GetValues(key_, names), 0U);
    EXPECT_EQ(names, Names());
}

TEST_F(RegistryValues, DefaultValueAloneIsOneEmptyName)
{
    SetValue(key_, "", "pear");
    Names names = {"left", "over"};
    EXPECT_EQ(GetValues(key_, names), 1U);
    EXPECT_EQ(names, Names{""});
}

TEST_F(RegistryValues, NamesOf255UnitsAreListedAndLongerOnesRefused)
{
    const std::wstring longest(255, L'\u00E4');
    Store(longest.c_str(), REG_DWORD, "\0\0\0\0"s);
    Names names;
    EXPECT_EQ(GetValues(key_, names), 1U);
    EXPECT_EQ(names, Names{KelInsString::Narrow(longest)});
    for (const std::size_t length : {256U, 300U}) {
        const std::wstring tooLong(length, L'b');
        Store(tooLong.c_str(), REG_DWORD, "\0\0\0\0"s);
        ExpectThrowsText<std::runtime_error>([&] { GetValues(key_, names); },
                                             SystemFailure("GetValues - ", ERROR_MORE_DATA));
        EXPECT_EQ(names, Names());
        EXPECT_EQ(Integer(KelInsString::Narrow(tooLong)), 0); // reading it works all the same
        DeleteValue(key_, KelInsString::Narrow(tooLong));
    }
    EXPECT_EQ(GetValues(key_, names), 1U);
}

TEST_F(RegistryValues, ThousandsOfNamesComeInTheSystemsOrder)
{
    constexpr DWORD count = 3000;
    for (DWORD i = 0; i < count; ++i)
        Store((L"v" + std::to_wstring(i * 7919 % count)).c_str(), REG_BINARY, "");
    Names names;
    EXPECT_EQ(GetValues(key_, names), count);
    ASSERT_EQ(names.size(), count);
    for (DWORD i = 0; i < count; i += 101) {
        wchar_t name[256];
        DWORD unitCount = 256;
        ASSERT_EQ(::RegEnumValueW(root_.Handle(), i, name, &unitCount, nullptr, nullptr, nullptr, nullptr), 0);
        EXPECT_EQ(names[i], KelInsString::Narrow(name));
    }
    std::sort(names.begin(), names.end());
    EXPECT_EQ(std::unique(names.begin(), names.end()), names.end());
}

TEST_F(RegistryValues, FailedListingEmptiesTheVector)
{
    for (const wchar_t* name : {L"a", L"b", L"c"})
        Store(name, REG_BINARY, "");
    ImportHook<LSTATUS(HKEY, DWORD, LPWSTR, LPDWORD, LPDWORD, LPDWORD, LPBYTE, LPDWORD)> hook("RegEnumValueW");
    hook.FailCall(3, ERROR_ACCESS_DENIED, NoCode());
    Names names = {"left over"};
    ExpectThrowsText<std::runtime_error>([&] { GetValues(key_, names); },
                                         SystemFailure("GetValues - ", ERROR_ACCESS_DENIED));
    EXPECT_EQ(names, Names());
    ASSERT_EQ(hook.Calls().size(), 3U);
    EXPECT_EQ(std::get<1>(hook.Calls()[2]), 2U);
}

} // namespace
