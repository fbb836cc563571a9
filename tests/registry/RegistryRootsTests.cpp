#include "RegistryFixtures.h"

#include "tests/support/ExpectThrowsText.h"
#include <gtest/gtest.h>

namespace {

using namespace KelInsReg;

bool ExistsIn(HKEY parent, const std::string& path, REGSAM viewFlag)
{
    HKEY key = nullptr;
    if (::RegOpenKeyExW(parent, KelInsString::Widen(path).c_str(), 0, KEY_READ | viewFlag, &key) != ERROR_SUCCESS)
        return false;
    ::RegCloseKey(key);
    return true;
}

// Each root key, by standing another key in its place

struct RootCase
{
    const char* label;
    std::uint32_t root;
    HKEY handle;

    friend void PrintTo(const RootCase& c, std::ostream* out) { *out << c.label; }
};

const RootCase kRoots[] = {
    {"ClassesRoot", 0, HKEY_CLASSES_ROOT},          {"CurrentUser", 1, HKEY_CURRENT_USER},
    {"LocalMachine", 2, HKEY_LOCAL_MACHINE},        {"ThreeIsLocalMachine", 3, HKEY_LOCAL_MACHINE},
    {"SevenIsLocalMachine", 7, HKEY_LOCAL_MACHINE}, {"HighestIsLocalMachine", 0xFFFFFFFF, HKEY_LOCAL_MACHINE},
};

class RegistryRoots : public testing::TestWithParam<RootCase>
{
protected:
    const RegistryRoot stand_;
    const PredefinedKeyOverride override_{GetParam().handle, stand_.Handle()};
    const RootKey root_ = static_cast<RootKey>(GetParam().root);
};

TEST_P(RegistryRoots, KeysStandUnderIt)
{
    SetValue(CreateKey(root_, R"(a\b)", kNoView), "name", 5);
    EXPECT_TRUE(Exists(stand_.Handle(), R"(a\b)"));
    std::int32_t value = 0;
    GetValue(OpenKey(root_, R"(a\b)", AccessRights::ReadOnly, kNoView), "name", value, kNoView);
    EXPECT_EQ(value, 5);
    Names names;
    EXPECT_EQ(GetSubkeys(root_, names), 1U);
    EXPECT_EQ(names, Names{"a"});
    DeleteKey(root_, R"(a\b)", kNoView);
    EXPECT_FALSE(Exists(stand_.Handle(), R"(a\b)"));
    CreateKey(root_, R"(a\c\d)", kNoView);
    DeleteKeyTree(root_, "a", kNoView);
    EXPECT_FALSE(Exists(stand_.Handle(), "a"));
}

TEST_P(RegistryRoots, ValuesStandRightUnderIt)
{
    SetValue(root_, "integer", -5);
    SetValue(root_, "text", "pear");
    EXPECT_EQ(ReadRaw(stand_.Handle(), L"integer"), (RawValue{REG_DWORD, "\xFB\xFF\xFF\xFF"}));
    EXPECT_EQ(ReadRaw(stand_.Handle(), L"text"), (RawValue{REG_SZ, BytesOf(std::wstring(L"pear\0", 5))}));
    Names names;
    EXPECT_EQ(GetSubkeys(root_, names), 0U);
    EXPECT_EQ(GetValues(root_, names), 2U);
    EXPECT_EQ(names, (Names{"integer", "text"}));
    std::int32_t integer = 0;
    std::string text;
    GetValue(root_, "integer", integer, kNoView);
    GetValue(root_, "text", text, kNoView);
    EXPECT_EQ(integer, -5);
    EXPECT_EQ(text, "pear");
    DeleteValue(root_, "integer");
    EXPECT_EQ(GetValues(root_, names), 1U);
}

TEST_P(RegistryRoots, ValuesOfSubkeysAreRead)
{
    const Key key = CreateKey(root_, R"(a\b)", kNoView);
    SetValue(key, "integer", 7);
    SetValue(key, "text", "pear");
    std::int32_t integer = 0;
    std::string text;
    GetValue(root_, R"(a\b)", "integer", integer, kNoView);
    GetValue(root_, R"(a\b)", "text", text, kNoView);
    EXPECT_EQ(integer, 7);
    EXPECT_EQ(text, "pear");
}

TEST_P(RegistryRoots, FailuresOfValuesRightUnderIt)
{
    std::int32_t integer = 0;
    std::string text;
    ExpectThrowsText<std::runtime_error>([&] { GetValue(root_, "missing", integer, RegistryView::Force32RegView); },
                                         SystemFailure("GetValue - missing, Force32RegView", ERROR_FILE_NOT_FOUND));
    ExpectThrowsText<std::runtime_error>([&] { GetValue(root_, "missing", text, RegistryView::Force32RegView); },
                                         SystemFailure("GetValue - missing", ERROR_FILE_NOT_FOUND));
    ExpectThrowsText<std::runtime_error>([&] { DeleteValue(root_, "missing"); },
                                         SystemFailure("DeleteValue - missing", ERROR_FILE_NOT_FOUND));
}

INSTANTIATE_TEST_SUITE_P(All, RegistryRoots, testing::ValuesIn(kRoots), LabelOf<RootCase>);

// The two views, on a key of the machine that the system keeps twice

class RegistryViews : public testing::Test
{
protected:
    static constexpr auto kRoot = RootKey::LocalMachine;
    const RegistryRoot in32_{HKEY_LOCAL_MACHINE, KEY_WOW64_32KEY};
    const RegistryRoot in64_{HKEY_LOCAL_MACHINE, KEY_WOW64_64KEY, in32_.Path()};
    const std::string key_ = in32_ / "a"; // in neither view yet; above it, both have the same

    bool In32() const { return ExistsIn(HKEY_LOCAL_MACHINE, key_, KEY_WOW64_32KEY); }

    bool In64() const { return ExistsIn(HKEY_LOCAL_MACHINE, key_, KEY_WOW64_64KEY); }
};

TEST_F(RegistryViews, Force32CreatesInThe32BitView)
{
    CreateKey(kRoot, key_, RegistryView::Force32RegView);
    EXPECT_TRUE(In32());
    EXPECT_FALSE(In64());
    const std::string inside = "Software\\Wow6432Node" + key_.substr(std::string("Software").size());
    EXPECT_TRUE(ExistsIn(HKEY_LOCAL_MACHINE, inside, KEY_WOW64_64KEY)); // where the 64-bit view shows the other one
}

TEST_F(RegistryViews, Force64CreatesInThe64BitView)
{
    CreateKey(kRoot, key_, RegistryView::Force64RegView);
    EXPECT_TRUE(In64());
    EXPECT_FALSE(In32());
}

TEST_F(RegistryViews, DoNotForceIsTheProcessesOwn)
{
    CreateKey(kRoot, key_, kNoView);
    EXPECT_TRUE(In64());
    EXPECT_FALSE(In32());
}

TEST_F(RegistryViews, OneNameHoldsDifferentValuesInTheTwo)
{
    SetValue(CreateKey(kRoot, key_, RegistryView::Force32RegView), "bits", 32);
    SetValue(CreateKey(kRoot, key_, RegistryView::Force64RegView), "bits", 64);
    std::int32_t value = 0;
    GetValue(kRoot, key_, "bits", value, RegistryView::Force32RegView);
    EXPECT_EQ(value, 32);
    GetValue(kRoot, key_, "bits", value, RegistryView::Force64RegView);
    EXPECT_EQ(value, 64);
    GetValue(kRoot, key_, "bits", value, kNoView);
    EXPECT_EQ(value, 64);
    GetValue(OpenKey(kRoot, key_, AccessRights::ReadOnly, RegistryView::Force32RegView), "bits", value, kNoView);
    EXPECT_EQ(value, 32); // an open key stays in its view
    DeleteKeyTree(kRoot, key_, RegistryView::Force64RegView);
    EXPECT_FALSE(In64());
    EXPECT_TRUE(In32());
}

TEST_F(RegistryViews, DeletionIsOfOneViewAlone)
{
    for (const auto view : {RegistryView::Force32RegView, RegistryView::Force64RegView})
        CreateKey(kRoot, key_, view);
    DeleteKey(kRoot, key_, RegistryView::Force32RegView);
    EXPECT_FALSE(In32());
    EXPECT_TRUE(In64());
    ExpectThrowsText<std::runtime_error>(
        [&] { DeleteKey(kRoot, key_, RegistryView::Force32RegView); },
        SystemFailure("DeleteKey - " + key_ + ", Force32RegView", ERROR_FILE_NOT_FOUND));
    DeleteKey(kRoot, key_, RegistryView::Force64RegView);
    EXPECT_FALSE(In64());
}

TEST_F(RegistryViews, TreesAreOfOneViewAlone)
{
    for (const auto view : {RegistryView::Force32RegView, RegistryView::Force64RegView})
        CreateKey(kRoot, key_ + R"(\b\c)", view);
    CreateKey(kRoot, key_ + R"(\b\only64)", RegistryView::Force64RegView);
    DeleteKeyTree(kRoot, key_, RegistryView::Force32RegView);
    EXPECT_FALSE(In32());
    EXPECT_TRUE(ExistsIn(HKEY_LOCAL_MACHINE, key_ + R"(\b\only64)", KEY_WOW64_64KEY));
    DeleteKeyTree(kRoot, key_, RegistryView::Force64RegView);
    EXPECT_FALSE(In64());
}

} // namespace
