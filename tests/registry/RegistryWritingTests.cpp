#include "RegistryFixtures.h"

#include "tests/support/ExpectThrowsText.h"
#include "tests/support/HandleCount.h"
#include "tests/support/ImportHook.h"
#include <KelInsInfra/foundation/KelInsString.h>
#include <gtest/gtest.h>
#include <limits>

using namespace std::string_literals;

namespace {

using namespace KelInsReg;

using SetHook = ImportHook<LSTATUS(HKEY, LPCWSTR, DWORD, DWORD, const BYTE*, DWORD)>;

struct WrittenTextCase
{
    const char* label;
    const char* text;
    std::wstring stored; ///< units, without the zeros that fill up

    friend void PrintTo(const WrittenTextCase& c, std::ostream* out) { *out << c.label; }
};

const WrittenTextCase kWrittenTexts[] = {
    {"Empty", "", L""},
    {"OneCharacter", "x", L"x"},
    {"Ascii", "Pear tree", L"Pear tree"},
    {"TwoByteSequences", "\xC3\x84pfel", L"\u00C4pfel"},
    {"ThreeByteSequences", "\xE2\x82\xAC\xE4\xB8\xAD", L"\u20AC\u4E2D"},
    {"FourByteSequences", "a\xF0\x9F\x8D\x90z", L"a\U0001F350z"},
    {"InvalidUtf8", "a\xFFz", L"a\uFFFDz"},
};

class RegistryWrittenTexts : public RegistryValues, public testing::WithParamInterface<WrittenTextCase>
{};

TEST_P(RegistryWrittenTexts, AreStoredWithZerosUpToTwiceTheUtf8LengthPlusTwo)
{
    const std::string text = GetParam().text;
    SetValue(key_, "name", text);
    std::string bytes = BytesOf(GetParam().stored);
    bytes.resize(2 * text.size() + 2, '\0');
    EXPECT_EQ(Stored(L"name"), (RawValue{REG_SZ, bytes}));
}

TEST_P(RegistryWrittenTexts, AreReadBack)
{
    SetValue(key_, "name", GetParam().text);
    EXPECT_EQ(Text("name"), KelInsString::Narrow(GetParam().stored));
}

INSTANTIATE_TEST_SUITE_P(Texts, RegistryWrittenTexts, testing::ValuesIn(kWrittenTexts), LabelOf<WrittenTextCase>);

TEST_F(RegistryValues, WrittenTextEndsAtItsFirstNulButKeepsItsSize)
{
    SetValue(key_, "name", "ab\0cd"s);
    EXPECT_EQ(Stored(L"name"), (RawValue{REG_SZ, "a\0b\0"s + std::string(8, '\0')}));
}

TEST_F(RegistryValues, EmptyTextIsASingleZeroUnit)
{
    SetValue(key_, "name", "");
    EXPECT_EQ(Stored(L"name"), (RawValue{REG_SZ, "\0\0"s}));
}

TEST_F(RegistryValues, WrittenIntegers)
{
    for (const auto& [value, bytes] :
         {std::pair(0, "\0\0\0\0"s), std::pair(-5, "\xFB\xFF\xFF\xFF"s), std::pair(0x12345678, "\x78\x56\x34\x12"s),
          std::pair(std::numeric_limits<std::int32_t>::min(), "\0\0\0\x80"s)}) {
        SetValue(key_, "name", value);
        EXPECT_EQ(Stored(L"name"), (RawValue{REG_DWORD, bytes}));
        EXPECT_EQ(Integer("name"), value);
    }
}

TEST_F(RegistryValues, WritingReplacesValueAndType)
{
    SetValue(key_, "name", "a long text that is there before");
    SetValue(key_, "name", 1);
    EXPECT_EQ(Stored(L"name"), (RawValue{REG_DWORD, "\1\0\0\0"s}));
    SetValue(key_, "name", "x");
    EXPECT_EQ(Stored(L"name"), (RawValue{REG_SZ, "x\0\0\0"s}));
}

TEST_F(RegistryValues, EmptyNameIsTheDefaultValue)
{
    SetValue(key_, "", "pear");
    EXPECT_EQ(Stored(L""), (RawValue{REG_SZ, BytesOf(L"pear\0"s)}));
    EXPECT_EQ(Text(""), "pear");
    SetValue(key_, "\0ends before its first letter"s, "plum");
    EXPECT_EQ(Text(""), "plum");
    SetValue(key_, "", 7);
    EXPECT_EQ(Integer(""), 7);
    DeleteValue(key_, "");
    ExpectThrowsText<std::runtime_error>([&] { Text(""); }, SystemFailure("GetValue - ", ERROR_FILE_NOT_FOUND));
}

TEST_F(RegistryValues, NamesAreUtf8AndIgnoreLetterCase)
{
    SetValue(key_, "\xC3\x84pfel", 1);
    EXPECT_EQ(Stored(L"\u00C4pfel").bytes, "\1\0\0\0"s);
    EXPECT_EQ(Integer("\xC3\x84PFEL"), 1);
    DeleteValue(key_, "\xC3\x84pfel");
    EXPECT_THROW(Integer("\xC3\x84pfel"), std::runtime_error);
}

/// The empty name that is left would be that of the default value, and an empty text would be stored for another.
TEST_F(RegistryValues, NothingIsReadOrWrittenWhereAConversionFails)
{
    SetValue(key_, "", "default");
    SetValue(key_, "name", "before");
    ImportHook<int(UINT, DWORD, LPCCH, int, LPWSTR, int)> widen("MultiByteToWideChar");
    widen.FailFrom(1, 0, LastError(ERROR_NO_UNICODE_TRANSLATION));
    const auto failure = [](const std::string& message) {
        return SystemFailure(message, ERROR_NO_UNICODE_TRANSLATION);
    };
    std::int32_t number = 0;
    std::string text;
    ExpectThrowsText<std::runtime_error>([&] { GetValue(key_, "\xC3\xA9", text, kNoView); },
                                         failure("GetValue - \xC3\xA9"));
    ExpectThrowsText<std::runtime_error>([&] { GetValue(key_, "\xC3\xA9", number, kNoView); },
                                         failure("GetValue - \xC3\xA9, DoNotForceRegView"));
    ExpectThrowsText<std::runtime_error>([&] { SetValue(key_, "\xC3\xA9", "x"); }, failure("SetValue - \xC3\xA9, x"));
    ExpectThrowsText<std::runtime_error>([&] { SetValue(key_, "\xC3\xA9", 1); }, failure("SetValue - \xC3\xA9, 1"));
    ExpectThrowsText<std::runtime_error>([&] { SetValue(key_, "name", "\xC3\xA9"); },
                                         failure("SetValue - name, \xC3\xA9"));
    ExpectThrowsText<std::runtime_error>([&] { DeleteValue(key_, "\xC3\xA9"); }, failure("DeleteValue - \xC3\xA9"));
    EXPECT_EQ(Text(""), "default");
    EXPECT_EQ(Text("name"), "before");
}

TEST_F(RegistryValues, FailedWritesNameTheValue)
{
    const Key readOnly = OpenKey(RootKey::CurrentUser, root_.Path(), AccessRights::ReadOnly, kNoView);
    ExpectThrowsText<std::runtime_error>([&] { SetValue(readOnly, "name", "pear"); },
                                         SystemFailure("SetValue - name, pear", ERROR_ACCESS_DENIED));
    ExpectThrowsText<std::runtime_error>([&] { SetValue(readOnly, "name", -5); },
                                         SystemFailure("SetValue - name, -5", ERROR_ACCESS_DENIED));
    ExpectThrowsText<std::runtime_error>([&] { SetValue(readOnly, "", 0); },
                                         SystemFailure("SetValue - , 0", ERROR_ACCESS_DENIED));
    ExpectThrowsText<std::runtime_error>([&] { SetValue(readOnly, "name", std::numeric_limits<std::int32_t>::min()); },
                                         SystemFailure("SetValue - name, -2147483648", ERROR_ACCESS_DENIED));
    ExpectThrowsText<std::runtime_error>([&] { DeleteValue(readOnly, "name"); },
                                         SystemFailure("DeleteValue - name", ERROR_ACCESS_DENIED));
}

TEST_F(RegistryValues, WritesAndDeletionsHandTheirArgumentsOn)
{
    SetHook setting("RegSetValueExW");
    setting.FailFrom(1, ERROR_BADKEY, NoCode());
    ImportHook<LSTATUS(HKEY, LPCWSTR)> deleting("RegDeleteValueW");
    deleting.FailFrom(1, ERROR_BADKEY, NoCode());
    ExpectThrowsText<std::runtime_error>([&] { SetValue(key_, "n", "\xC3\xA4"); },
                                         SystemFailure("SetValue - n, \xC3\xA4", ERROR_BADKEY));
    ExpectThrowsText<std::runtime_error>([&] { SetValue(key_, "n", 7); },
                                         SystemFailure("SetValue - n, 7", ERROR_BADKEY));
    ExpectThrowsText<std::runtime_error>([&] { DeleteValue(key_, "n"); },
                                         SystemFailure("DeleteValue - n", ERROR_BADKEY));
    const DWORD expected[][2] = {{REG_SZ, 6}, {REG_DWORD, 4}};
    ASSERT_EQ(setting.Calls().size(), 2U);
    for (std::size_t i = 0; i < 2; ++i) {
        const auto& [key, name, reserved, type, data, size] = setting.Calls()[i];
        EXPECT_EQ(key, key_.GetKey());
        EXPECT_EQ(name, L"n");
        EXPECT_EQ(reserved, 0U);
        EXPECT_EQ(type, expected[i][0]);
        EXPECT_EQ(size, expected[i][1]);
    }
    ASSERT_EQ(deleting.Calls().size(), 1U);
    EXPECT_EQ(std::get<0>(deleting.Calls()[0]), key_.GetKey());
    EXPECT_EQ(std::get<1>(deleting.Calls()[0]), L"n");
}

TEST_F(RegistryValues, DeletionOfAMissingValueFails)
{
    ExpectThrowsText<std::runtime_error>([&] { DeleteValue(key_, "missing"); },
                                         SystemFailure("DeleteValue - missing", ERROR_FILE_NOT_FOUND));
}

TEST(RegistryValuesFail, AnEmptyKeyIsRefusedByEveryOperation)
{
    const Key none;
    std::int32_t integer = kBefore;
    std::string text = "before";
    Names names = {"left over"};
    const auto expect = [](const auto& call, const std::string& message) {
        ExpectThrowsText<std::runtime_error>(call, SystemFailure(message, ERROR_INVALID_HANDLE));
    };
    expect([&] { GetValue(none, "n", integer, kNoView); }, "GetValue - n, DoNotForceRegView");
    expect([&] { GetValue(none, "n", text, kNoView); }, "GetValue - n");
    expect([&] { SetValue(none, "n", "text"); }, "SetValue - n, text");
    expect([&] { SetValue(none, "n", 5); }, "SetValue - n, 5");
    expect([&] { DeleteValue(none, "n"); }, "DeleteValue - n");
    expect([&] { GetValues(none, names); }, "GetValues - ");
    EXPECT_EQ(integer, kBefore);
    EXPECT_EQ(text, "before");
    EXPECT_EQ(names, Names());
}

TEST_F(RegistryValues, ThousandCallsOfEachOperationLeaveNoHandle)
{
    CreateKey(key_, "sub", kNoView);
    Names names;
    std::int32_t integer = 0;
    std::string text;
    const auto everyOperation = [&] {
        SetValue(key_, "i", 5);
        SetValue(key_, "t", "text");
        GetValue(key_, "i", integer, kNoView);
        GetValue(key_, "t", text, kNoView);
        GetValue(RootKey::CurrentUser, root_.Path(), "i", integer, RegistryView::Force64RegView);
        GetValue(RootKey::CurrentUser, root_.Path(), "t", text, RegistryView::Force64RegView);
        EXPECT_THROW(GetValue(key_, "sub", "missing", integer, kNoView), std::runtime_error);
        EXPECT_THROW(GetValue(key_, "sub", "missing", text, kNoView), std::runtime_error);
        GetValues(key_, names);
        DeleteValue(key_, "i");
        EXPECT_THROW(DeleteValue(key_, "i"), std::runtime_error);
    };
    everyOperation(); // what the system opens once for good
    const std::size_t handles = HandleCount();
    for (int i = 0; i < 1000; ++i)
        everyOperation();
    EXPECT_EQ(HandleCount(), handles);
}

} // namespace
