#include "SystemFailure.h"

#include "tests/support/ExpectThrowsText.h"
#include "tests/support/HandleCount.h"
#include "tests/support/ImportHook.h"
#include "tests/support/RegistryRoot.h"
#include <KelInsInfra/foundation/KelInsString.h>
#include <KelInsInfra/registry/KelInsReg.h>
#include <algorithm>
#include <gtest/gtest.h>

namespace {

using namespace KelInsReg;
using Names = std::vector<std::string>;

constexpr auto kNoView = RegistryView::DoNotForceRegView;

/// What the system's own calls say about the keys below one.
bool Exists(HKEY parent, const std::string& path)
{
    HKEY key = nullptr;
    if (::RegOpenKeyExW(parent, KelInsString::Widen(path).c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS)
        return false;
    ::RegCloseKey(key);
    return true;
}

void MakeKey(HKEY parent, const std::wstring& path)
{
    HKEY key = nullptr;
    ASSERT_EQ(::RegCreateKeyW(parent, path.c_str(), &key), ERROR_SUCCESS);
    ::RegCloseKey(key);
}

HKEY Duplicate(HKEY key)
{
    HKEY copy = nullptr;
    EXPECT_EQ(::RegOpenKeyExW(key, L"", 0, KEY_ALL_ACCESS, &copy), ERROR_SUCCESS);
    return copy;
}

class RegistryKeys : public testing::Test
{
protected:
    const RegistryRoot root_;
    const Key parent_{Duplicate(root_.Handle())};
};

// Names of root keys

TEST(RootKeyTexts, AreTheThreeShortNames)
{
    EXPECT_EQ(HKLM, "HKLM");
    EXPECT_EQ(HKCU, "HKCU");
    EXPECT_EQ(HKCR, "HKCR");
}

TEST(GetRootKeyHandleFromString, KnowsTheThreeShortNames)
{
    EXPECT_EQ(GetRootKeyHandleFromString("HKLM"), RootKey::LocalMachine);
    EXPECT_EQ(GetRootKeyHandleFromString("HKCU"), RootKey::CurrentUser);
    EXPECT_EQ(GetRootKeyHandleFromString("HKCR"), RootKey::ClassesRoot);
}

struct WrongRootCase
{
    const char* label;
    const char* text;

    friend void PrintTo(const WrongRootCase& c, std::ostream* out) { *out << c.text; }
};

constexpr WrongRootCase kWrongRoots[] = {
    {"Empty", ""},
    {"LowerCase", "hklm"},
    {"MixedCase", "HKcu"},
    {"LongLocalMachine", "HKEY_LOCAL_MACHINE"},
    {"LongCurrentUser", "HKEY_CURRENT_USER"},
    {"LongClassesRoot", "HKEY_CLASSES_ROOT"},
    {"OtherRoot", "HKU"},
    {"Shortened", "HKL"},
    {"TrailingSpace", "HKLM "},
    {"LeadingSpace", " HKLM"},
    {"WithPath", R"(HKLM\Software)"},
    {"NotAscii", "HKLM\xC3\xA4"},
};

class GetRootKeyHandleFromStringRefuses : public testing::TestWithParam<WrongRootCase>
{};

TEST_P(GetRootKeyHandleFromStringRefuses, AnyOtherText)
{
    ExpectThrowsText<std::runtime_error>([] { GetRootKeyHandleFromString(GetParam().text); },
                                         std::string("GetRootKeyHandleFromString - ") + GetParam().text + "\n");
}

INSTANTIATE_TEST_SUITE_P(Texts, GetRootKeyHandleFromStringRefuses, testing::ValuesIn(kWrongRoots),
                         LabelOf<WrongRootCase>);

TEST(Enumerations, HaveTheirValues)
{
    static_assert(static_cast<std::uint32_t>(RootKey::ClassesRoot) == 0);
    static_assert(static_cast<std::uint32_t>(RootKey::CurrentUser) == 1);
    static_assert(static_cast<std::uint32_t>(RootKey::LocalMachine) == 2);
    static_assert(static_cast<std::uint32_t>(RegistryView::DoNotForceRegView) == 0);
    static_assert(static_cast<std::uint32_t>(RegistryView::Force32RegView) == 1);
    static_assert(static_cast<std::uint32_t>(RegistryView::Force64RegView) == 2);
    static_assert(static_cast<std::uint32_t>(AccessRights::ReadOnly) == 0);
    static_assert(static_cast<std::uint32_t>(AccessRights::ReadWrite) == 1);
    static_assert(sizeof(RootKey) == 4 && sizeof(RegistryView) == 4 && sizeof(AccessRights) == 4);
}

// Opening and creating

TEST_F(RegistryKeys, OpenReadOnlyReadsAndDoesNotWrite)
{
    WriteRaw(root_.Handle(), L"name", {REG_SZ, BytesOf(std::wstring(L"text\0", 5))});
    const Key key = OpenKey(RootKey::CurrentUser, root_.Path(), AccessRights::ReadOnly, kNoView);
    std::string value;
    GetValue(key, "name", value, kNoView);
    EXPECT_EQ(value, "text");
    ExpectThrowsText<std::runtime_error>([&] { SetValue(key, "name", 1); },
                                         SystemFailure("SetValue - name, 1", ERROR_ACCESS_DENIED));
}

TEST_F(RegistryKeys, OpenReadWriteWrites)
{
    const Key key = OpenKey(RootKey::CurrentUser, root_.Path(), AccessRights::ReadWrite, kNoView);
    SetValue(key, "name", 1);
    EXPECT_EQ(ReadRaw(root_.Handle(), L"name"), (RawValue{REG_DWORD, std::string("\1\0\0\0", 4)}));
}

TEST_F(RegistryKeys, OpenTakesSeveralLevelsAndLeavesTheParentAlone)
{
    MakeKey(root_.Handle(), L"a\\b\\c");
    const HKEY before = parent_.GetKey();
    EXPECT_NE(OpenKey(parent_, R"(a\b\c)", AccessRights::ReadOnly, kNoView).GetKey(), nullptr);
    EXPECT_EQ(parent_.GetKey(), before);
    EXPECT_TRUE(Exists(before, "a"));
}

TEST_F(RegistryKeys, OpenOfTheEmptyPathIsTheParentItself)
{
    SetValue(OpenKey(parent_, "", AccessRights::ReadWrite, kNoView), "name", 1);
    EXPECT_EQ(ReadRaw(root_.Handle(), L"name").type, static_cast<DWORD>(REG_DWORD));
}

TEST_F(RegistryKeys, OpenDoesNotCreate)
{
    EXPECT_THROW(OpenKey(parent_, "new", AccessRights::ReadWrite, kNoView), std::runtime_error);
    EXPECT_FALSE(Exists(root_.Handle(), "new"));
}

TEST_F(RegistryKeys, CreateMakesAllLevelsAndIsReadWrite)
{
    const Key key = CreateKey(parent_, R"(a\b\c)", kNoView);
    SetValue(key, "name", 5);
    std::int32_t value = 0;
    GetValue(key, "name", value, kNoView);
    EXPECT_EQ(value, 5);
    EXPECT_TRUE(Exists(root_.Handle(), R"(a\b\c)"));
}

TEST_F(RegistryKeys, CreateOpensWhatIsThere)
{
    SetValue(CreateKey(parent_, "a", kNoView), "name", 5);
    const Key again = CreateKey(RootKey::CurrentUser, root_ / "a", kNoView);
    std::int32_t value = 0;
    GetValue(again, "name", value, kNoView);
    EXPECT_EQ(value, 5);
}

TEST_F(RegistryKeys, NamesAreUtf8)
{
    const std::string name = "\xC3\x84pfel \xE2\x82\xAC \xF0\x9F\x8D\x90"; // two, three and four bytes
    CreateKey(parent_, name, kNoView);
    EXPECT_EQ(::RegDeleteKeyW(root_.Handle(), L"\u00C4pfel \u20AC \U0001F350"), ERROR_SUCCESS);
    CreateKey(parent_, name, kNoView);
    Names names;
    EXPECT_EQ(GetSubkeys(parent_, names), 1U);
    EXPECT_EQ(names, Names{name});
    DeleteKey(parent_, name, kNoView);
    EXPECT_EQ(GetSubkeys(parent_, names), 0U);
}

// Deleting

TEST_F(RegistryKeys, DeleteRemovesTheKeyWithItsValues)
{
    SetValue(CreateKey(parent_, R"(a\b)", kNoView), "name", 5);
    DeleteKey(parent_, R"(a\b)", kNoView);
    EXPECT_FALSE(Exists(root_.Handle(), R"(a\b)"));
    EXPECT_TRUE(Exists(root_.Handle(), "a"));
}

TEST_F(RegistryKeys, DeleteRefusesAKeyWithSubkeysAndTreeRemovesIt)
{
    MakeKey(root_.Handle(), L"a\\b");
    const auto status = static_cast<std::uint32_t>(::RegDeleteKeyW(root_.Handle(), L"a"));
    ASSERT_NE(status, 0U);
    ExpectThrowsText<std::runtime_error>([&] { DeleteKey(parent_, "a", kNoView); },
                                         SystemFailure("DeleteKey - a, DoNotForceRegView", status));
    EXPECT_TRUE(Exists(root_.Handle(), R"(a\b)"));
    DeleteKeyTree(parent_, "a", kNoView);
    EXPECT_FALSE(Exists(root_.Handle(), "a"));
}

/// The paths handed to RegDeleteKeyW, in order.
class DeletionOrder
{
public:
    ImportHook<LSTATUS(HKEY, LPCWSTR)>& Hook() { return hook_; }

    Names Paths() const
    {
        Names paths;
        for (const auto& call : hook_.Calls())
            paths.push_back(KelInsString::Narrow(std::get<1>(call)));
        return paths;
    }

private:
    ImportHook<LSTATUS(HKEY, LPCWSTR)> hook_{"RegDeleteKeyW"};
};

TEST_F(RegistryKeys, TreeIsDeletedDeepestFirstByPathsFromTheParent)
{
    for (const wchar_t* path : {L"a\\b\\c", L"a\\b\\d", L"a\\e"})
        MakeKey(root_.Handle(), path);
    MakeKey(root_.Handle(), L"kept");
    DeletionOrder order;
    DeleteKeyTree(parent_, "a", kNoView);
    EXPECT_EQ(order.Paths(), (Names{R"(a\b\c)", R"(a\b\d)", R"(a\b)", R"(a\e)", "a"}));
    for (const auto& call : order.Hook().Calls())
        EXPECT_EQ(std::get<0>(call), parent_.GetKey());
    EXPECT_FALSE(Exists(root_.Handle(), "a"));
    EXPECT_TRUE(Exists(root_.Handle(), "kept"));
}

TEST_F(RegistryKeys, TreeDeletionStopsAtTheFirstFailure)
{
    for (const wchar_t* path : {L"a\\b\\c", L"a\\b\\d", L"a\\e"})
        MakeKey(root_.Handle(), path);
    DeletionOrder order;
    order.Hook().FailCall(2, ERROR_ACCESS_DENIED, NoCode());
    ExpectThrowsText<std::runtime_error>([&] { DeleteKeyTree(parent_, "a", kNoView); },
                                         SystemFailure(R"(DeleteKey - a\b\d, DoNotForceRegView)", ERROR_ACCESS_DENIED));
    EXPECT_EQ(order.Paths(), (Names{R"(a\b\c)", R"(a\b\d)"}));
    EXPECT_FALSE(Exists(root_.Handle(), R"(a\b\c)")); // what was deleted stays deleted
    EXPECT_TRUE(Exists(root_.Handle(), R"(a\b\d)"));
    EXPECT_TRUE(Exists(root_.Handle(), R"(a\e)"));
}

TEST_F(RegistryKeys, TreeDeletionStopsAtAKeyThatDoesNotOpen)
{
    for (const wchar_t* path : {L"a\\b", L"a\\c"})
        MakeKey(root_.Handle(), path);
    ImportHook<LSTATUS(HKEY, LPCWSTR, DWORD, REGSAM, PHKEY)> opening("RegOpenKeyExW");
    opening.FailCall(3, ERROR_ACCESS_DENIED, NoCode()); // a, a\b, a\c
    ExpectThrowsText<std::runtime_error>(
        [&] { DeleteKeyTree(parent_, "a", kNoView); },
        SystemFailure(R"(OpenKey - a\c, ReadOnly, DoNotForceRegView)", ERROR_ACCESS_DENIED));
    EXPECT_FALSE(Exists(root_.Handle(), R"(a\b)"));
    EXPECT_TRUE(Exists(root_.Handle(), R"(a\c)"));
}

TEST_F(RegistryKeys, TreeDeletionStopsAtAFailedListingAndClosesTheKey)
{
    MakeKey(root_.Handle(), L"a\\b");
    const std::size_t handles = HandleCount();
    {
        ImportHook<LSTATUS(HKEY, DWORD, LPWSTR, LPDWORD, LPDWORD, LPWSTR, LPDWORD, PFILETIME)> hook("RegEnumKeyExW");
        hook.FailCall(3, ERROR_ACCESS_DENIED, NoCode()); // a\b, the end of a, the end of a\b
        ExpectThrowsText<std::runtime_error>([&] { DeleteKeyTree(parent_, "a", kNoView); },
                                             SystemFailure("GetSubkeys - ", ERROR_ACCESS_DENIED));
    }
    EXPECT_TRUE(Exists(root_.Handle(), R"(a\b)"));
    EXPECT_EQ(HandleCount(), handles);
}

TEST_F(RegistryKeys, TreeDeletionKeepsNoKeyOpenWhileItGoesDown)
{
    MakeKey(root_.Handle(), L"a\\b\\c\\d\\e");
    const std::size_t handles = HandleCount();
    std::vector<std::size_t> during;
    ImportHook<LSTATUS(HKEY, LPCWSTR)> hook("RegDeleteKeyW", [&](HKEY parent, LPCWSTR path) {
        during.push_back(HandleCount());
        return ::RegDeleteKeyW(parent, path);
    });
    DeleteKeyTree(parent_, "a", kNoView);
    EXPECT_EQ(during, std::vector<std::size_t>(5, handles));
}

TEST_F(RegistryKeys, TreeOfAMissingKeyFailsAsOpenKeyReadOnly)
{
    for (const auto& [view, name] :
         {std::pair(kNoView, "DoNotForceRegView"), std::pair(RegistryView::Force32RegView, "Force32RegView"),
          std::pair(RegistryView::Force64RegView, "Force64RegView")})
        ExpectThrowsText<std::runtime_error>(
            [&, view = view] { DeleteKeyTree(parent_, R"(a\missing)", view); },
            SystemFailure(std::string(R"(OpenKey - a\missing, ReadOnly, )") + name, ERROR_FILE_NOT_FOUND));
}

TEST_F(RegistryKeys, TreeOfTheEmptyPathDoesNotReachTheKeysBelow)
{
    MakeKey(root_.Handle(), L"a");
    ExpectThrowsText<std::runtime_error>(
        [&] { DeleteKeyTree(parent_, "", kNoView); },
        SystemFailure(R"(OpenKey - \a, ReadOnly, DoNotForceRegView)", ERROR_BAD_PATHNAME));
    EXPECT_TRUE(Exists(root_.Handle(), "a"));
}

TEST_F(RegistryKeys, TreeWithAKeyHiddenByALeadingNulEndsInAFailure)
{
    MakeKey(root_.Handle(), L"a\\b");
    ImportHook<LSTATUS(HKEY, DWORD, LPWSTR, LPDWORD, LPDWORD, LPWSTR, LPDWORD, PFILETIME)> hook(
        "RegEnumKeyExW", [](HKEY, DWORD index, LPWSTR name, LPDWORD, LPDWORD, LPWSTR, LPDWORD, PFILETIME) -> LSTATUS {
            name[0] = L'\0';
            return index == 0 ? ERROR_SUCCESS : ERROR_NO_MORE_ITEMS;
        });
    ExpectThrowsText<std::runtime_error>(
        [&] { DeleteKeyTree(parent_, "a", kNoView); },
        SystemFailure(R"(OpenKey - a\, ReadOnly, DoNotForceRegView)", ERROR_FILE_NOT_FOUND));
    EXPECT_TRUE(Exists(root_.Handle(), R"(a\b)"));
}

TEST_F(RegistryKeys, DeepAndWideTreesAreDeleted)
{
    std::wstring deep = L"a";
    for (int level = 0; level < 100; ++level)
        deep += L"\\k";
    MakeKey(root_.Handle(), deep);
    for (int i = 0; i < 300; ++i)
        MakeKey(root_.Handle(), L"a\\n" + std::to_wstring(i) + L"\\x");
    DeleteKeyTree(RootKey::CurrentUser, root_ / "a", kNoView);
    EXPECT_FALSE(Exists(root_.Handle(), "a"));
}

// Listing

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

// Failures

TEST(RegistryKeysFail, AnEmptyParentIsRefusedByEveryOperation)
{
    const Key none;
    Names names = {"left over"};
    ExpectThrowsText<std::runtime_error>(
        [&] { OpenKey(none, "a", AccessRights::ReadOnly, kNoView); },
        SystemFailure("OpenKey - a, ReadOnly, DoNotForceRegView", ERROR_INVALID_HANDLE));
    ExpectThrowsText<std::runtime_error>([&] { CreateKey(none, "a", kNoView); },
                                         SystemFailure("CreateKey - a, DoNotForceRegView", ERROR_INVALID_HANDLE));
    ExpectThrowsText<std::runtime_error>([&] { DeleteKey(none, "a", kNoView); },
                                         SystemFailure("DeleteKey - a, DoNotForceRegView", ERROR_INVALID_HANDLE));
    ExpectThrowsText<std::runtime_error>(
        [&] { DeleteKeyTree(none, "a", kNoView); },
        SystemFailure("OpenKey - a, ReadOnly, DoNotForceRegView", ERROR_INVALID_HANDLE));
    ExpectThrowsText<std::runtime_error>([&] { GetSubkeys(none, names); },
                                         SystemFailure("GetSubkeys - ", ERROR_INVALID_HANDLE));
    EXPECT_EQ(names, Names());
}

struct ViewCase
{
    const char* label;
    std::uint32_t view;
    REGSAM flag; ///< on 64-bit Windows
    const char* name;
    bool deletesWithView;
};

constexpr ViewCase kViews[] = {
    {"DoNotForce", 0, 0, "DoNotForceRegView", false},
    {"Force32", 1, KEY_WOW64_32KEY, "Force32RegView", true},
    {"Force64", 2, KEY_WOW64_64KEY, "Force64RegView", true},
    {"Unknown3", 3, 0, "DoNotForceRegView", true},
    {"UnknownHighest", 0xFFFFFFFF, 0, "DoNotForceRegView", true},
};

void Report32BitProcessor(SYSTEM_INFO* info)
{
    *info = {};
    info->wProcessorArchitecture = PROCESSOR_ARCHITECTURE_INTEL;
}

/// The calls that a view leads to, each failing with a code of its own.
class Views : public testing::TestWithParam<ViewCase>
{
protected:
    static constexpr RootKey kParent = RootKey::CurrentUser;
    const RegistryView view_ = static_cast<RegistryView>(GetParam().view);
    const std::string name_ = GetParam().name;

    void ExpectCalls(REGSAM flag, bool deletesWithView)
    {
        ExpectOpening(AccessRights::ReadOnly, "ReadOnly", KEY_READ | flag);
        ExpectOpening(AccessRights::ReadWrite, "ReadWrite", KEY_READ | KEY_WRITE | flag);
        ExpectOpening(static_cast<AccessRights>(2), "ReadOnly", KEY_READ | flag);
        ExpectCreation(flag);
        ExpectDeletion(flag, deletesWithView);
    }

private:
    void ExpectOpening(AccessRights access, const std::string& accessName, REGSAM mask)
    {
        ImportHook<LSTATUS(HKEY, LPCWSTR, DWORD, REGSAM, PHKEY)> hook("RegOpenKeyExW");
        hook.FailFrom(1, ERROR_BADKEY, NoCode());
        ExpectThrowsText<std::runtime_error>(
            [&] { OpenKey(kParent, R"(a\b)", access, view_); },
            SystemFailure(R"(OpenKey - a\b, )" + accessName + ", " + name_, ERROR_BADKEY));
        ASSERT_EQ(hook.Calls().size(), 1U);
        const auto& [parent, path, options, actualMask, result] = hook.Calls().front();
        EXPECT_EQ(parent, HKEY_CURRENT_USER);
        EXPECT_EQ(path, L"a\\b");
        EXPECT_EQ(options, 0U);
        EXPECT_EQ(actualMask, mask);
    }

    void ExpectCreation(REGSAM flag)
    {
        ImportHook<LSTATUS(HKEY, LPCWSTR, DWORD, LPWSTR, DWORD, REGSAM, LPSECURITY_ATTRIBUTES, PHKEY, LPDWORD)> hook(
            "RegCreateKeyExW");
        hook.FailFrom(1, ERROR_CANTWRITE, NoCode());
        ExpectThrowsText<std::runtime_error>([&] { CreateKey(kParent, R"(a\b)", view_); },
                                             SystemFailure(R"(CreateKey - a\b, )" + name_, ERROR_CANTWRITE));
        ASSERT_EQ(hook.Calls().size(), 1U);
        const auto& [parent, path, reserved, keyClass, options, mask, security, result, disposition] =
            hook.Calls().front();
        EXPECT_EQ(parent, HKEY_CURRENT_USER);
        EXPECT_EQ(path, L"a\\b");
        EXPECT_EQ(reserved, 0U);
        EXPECT_EQ(keyClass, nullptr);
        EXPECT_EQ(options, 0U);
        EXPECT_EQ(mask, KEY_READ | KEY_WRITE | flag);
        EXPECT_EQ(security, nullptr);
        EXPECT_EQ(disposition, nullptr);
    }

    void ExpectDeletion(REGSAM flag, bool withView)
    {
        ImportHook<LSTATUS(HKEY, LPCWSTR)> plain("RegDeleteKeyW");
        ImportHook<LSTATUS(HKEY, LPCWSTR, REGSAM, DWORD)> viewed("RegDeleteKeyExW");
        plain.FailFrom(1, ERROR_ACCESS_DENIED, NoCode());
        viewed.FailFrom(1, ERROR_ACCESS_DENIED, NoCode());
        ExpectThrowsText<std::runtime_error>([&] { DeleteKey(kParent, R"(a\b)", view_); },
                                             SystemFailure(R"(DeleteKey - a\b, )" + name_, ERROR_ACCESS_DENIED));
        using Plain = decltype(plain)::Call;
        using Viewed = decltype(viewed)::Call;
        const Plain expectedPlain(HKEY_CURRENT_USER, L"a\\b");
        const Viewed expectedViewed(HKEY_CURRENT_USER, L"a\\b", flag, 0);
        EXPECT_EQ(plain.Calls(), withView ? std::vector<Plain>() : std::vector{expectedPlain});
        EXPECT_EQ(viewed.Calls(), withView ? std::vector{expectedViewed} : std::vector<Viewed>());
    }
};

TEST_P(Views, SetTheirFlagAndTheirNameOn64BitWindows)
{
    ExpectCalls(GetParam().flag, GetParam().deletesWithView);
}

TEST_P(Views, SetNoFlagOn32BitWindowsButKeepTheirName)
{
    const ImportSlots processor("GetSystemInfo", {}, reinterpret_cast<void*>(&Report32BitProcessor));
    ExpectCalls(0, false);
}

INSTANTIATE_TEST_SUITE_P(All, Views, testing::ValuesIn(kViews), LabelOf<ViewCase>);

TEST(RegistryKeysLeak, ThousandCallsOfEachOperationLeaveNoHandle)
{
    const RegistryRoot root;
    const Key parent(Duplicate(root.Handle()));
    Names names;
    const auto everyOperation = [&] {
        CreateKey(parent, R"(a\b)", kNoView);
        CreateKey(RootKey::CurrentUser, root / "c", RegistryView::Force64RegView);
        OpenKey(parent, "a", AccessRights::ReadWrite, RegistryView::Force32RegView);
        OpenKey(RootKey::CurrentUser, root.Path(), AccessRights::ReadOnly, kNoView);
        GetSubkeys(parent, names);
        EXPECT_THROW(OpenKey(parent, "missing", AccessRights::ReadOnly, kNoView), std::runtime_error);
        EXPECT_THROW(DeleteKey(parent, "a", kNoView), std::runtime_error);
        EXPECT_THROW(DeleteKeyTree(parent, "missing", kNoView), std::runtime_error);
        DeleteKeyTree(parent, "a", kNoView);
        DeleteKey(parent, "c", kNoView);
    };
    everyOperation(); // what the system opens once for good
    const std::size_t handles = HandleCount();
    for (int i = 0; i < 1000; ++i)
        everyOperation();
    EXPECT_EQ(HandleCount(), handles);
}

} // namespace
