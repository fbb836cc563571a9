#include "RegistryFixtures.h"

#include "tests/support/ExpectThrowsText.h"
#include "tests/support/HandleCount.h"
#include "tests/support/ImportHook.h"
#include <KelInsInfra/foundation/KelInsString.h>
#include <gtest/gtest.h>

namespace {

using namespace KelInsReg;

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

/// The empty name that is left would be that of the parent itself.
TEST_F(RegistryKeys, NameWhoseConversionFailsReachesNoKey)
{
    MakeKey(root_.Handle(), L"\u00E9\\a");
    MakeKey(root_.Handle(), L"kept");
    ImportHook<int(UINT, DWORD, LPCCH, int, LPWSTR, int)> widen("MultiByteToWideChar");
    widen.FailFrom(1, 0, LastError(ERROR_NO_UNICODE_TRANSLATION));
    const auto failure = [](const std::string& message) {
        return SystemFailure(message, ERROR_NO_UNICODE_TRANSLATION);
    };
    ExpectThrowsText<std::runtime_error>([&] { OpenKey(parent_, "\xC3\xA9", AccessRights::ReadOnly, kNoView); },
                                         failure("OpenKey - \xC3\xA9, ReadOnly, DoNotForceRegView"));
    ExpectThrowsText<std::runtime_error>([&] { CreateKey(parent_, "\xC3\xA9", kNoView); },
                                         failure("CreateKey - \xC3\xA9, DoNotForceRegView"));
    ExpectThrowsText<std::runtime_error>([&] { DeleteKey(parent_, "\xC3\xA9", kNoView); },
                                         failure("DeleteKey - \xC3\xA9, DoNotForceRegView"));
    ExpectThrowsText<std::runtime_error>([&] { DeleteKeyTree(parent_, "\xC3\xA9", kNoView); },
                                         failure("OpenKey - \xC3\xA9, ReadOnly, DoNotForceRegView"));
    EXPECT_TRUE(Exists(root_.Handle(), "kept"));
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

/// As in a text made from a buffer whose length counts the terminator.
TEST_F(RegistryKeys, TreeUnderAPathWithANulIsTheOneThatTheSystemSees)
{
    for (const wchar_t* path : {L"a\\b\\c", L"a\\d", L"kept"})
        MakeKey(root_.Handle(), path);
    DeletionOrder order;
    DeleteKeyTree(parent_, std::string("a\0x", 3), kNoView);
    EXPECT_EQ(order.Paths(), (Names{R"(a\b\c)", R"(a\b)", R"(a\d)", "a"}));
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
