#include "SystemFailure.h"

#include "tests/support/ExpectThrowsText.h"
#include "tests/support/HandleCount.h"
#include "tests/support/ImportHook.h"
#include "tests/support/RegistryRoot.h"
#include <KelInsInfra/foundation/KelInsString.h>
#include <KelInsInfra/registry/KelInsReg.h>
#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>

using namespace std::string_literals;

namespace {

using namespace KelInsReg;
using Names = std::vector<std::string>;
using QueryHook = ImportHook<LSTATUS(HKEY, LPCWSTR, LPDWORD, LPDWORD, LPBYTE, LPDWORD)>;
using SetHook = ImportHook<LSTATUS(HKEY, LPCWSTR, DWORD, DWORD, const BYTE*, DWORD)>;

constexpr auto kNoView = RegistryView::DoNotForceRegView;

/// An integer whose bytes all show whether they were overwritten.
constexpr std::int32_t kBefore = 0x44332211;

class RegistryValues : public testing::Test
{
protected:
    RegistryValues()
    {
        HKEY copy = nullptr;
        EXPECT_EQ(::RegOpenKeyExW(root_.Handle(), L"", 0, KEY_READ | KEY_WRITE, &copy), ERROR_SUCCESS);
        key_ = Key(copy);
    }

    void Store(const wchar_t* name, DWORD type, const std::string& bytes) const
    {
        WriteRaw(root_.Handle(), name, {type, bytes});
    }

    RawValue Stored(const wchar_t* name) const { return ReadRaw(root_.Handle(), name); }

    std::string Text(const std::string& name) const
    {
        std::string value = "before";
        GetValue(key_, name, value, kNoView);
        return value;
    }

    std::int32_t Integer(const std::string& name) const
    {
        std::int32_t value = kBefore;
        GetValue(key_, name, value, kNoView);
        return value;
    }

    const RegistryRoot root_;
    Key key_;
};

// Reading integers

struct IntegerCase
{
    const char* label;
    DWORD type;
    std::string bytes;
    std::int32_t value;

    friend void PrintTo(const IntegerCase& c, std::ostream* out) { *out << c.label; }
};

const IntegerCase kIntegers[] = {
    {"Zero", REG_DWORD, "\0\0\0\0"s, 0},
    {"LittleEndian", REG_DWORD, "\x78\x56\x34\x12"s, 0x12345678},
    {"MinusFive", REG_DWORD, "\xFB\xFF\xFF\xFF"s, -5},
    {"Smallest", REG_DWORD, "\0\0\0\x80"s, std::numeric_limits<std::int32_t>::min()},
    {"Largest", REG_DWORD, "\xFF\xFF\xFF\x7F"s, std::numeric_limits<std::int32_t>::max()},
    {"BigEndianTypeIsNotTurned", REG_DWORD_BIG_ENDIAN, "\x12\x34\x56\x78"s, 0x78563412},
    {"OneCharacterText", REG_SZ, "7\0\0\0"s, 0x37}, // with its terminator: four bytes
    {"ThreeBytesKeepTheHighest", REG_BINARY, "\xAA\xBB\xCC"s, 0x44CCBBAA},
    {"TwoBytesKeepTheHigherTwo", REG_BINARY, "\xAA\xBB"s, 0x4433BBAA},
    {"OneByteKeepsTheHigherThree", REG_BINARY, "\xAA"s, 0x443322AA},
    {"NoBytesKeepAll", REG_BINARY, ""s, kBefore},
    {"NoTypeAtAll", REG_NONE, "\1\2\3\4"s, 0x04030201},
};

class RegistryIntegers : public RegistryValues, public testing::WithParamInterface<IntegerCase>
{};

TEST_P(RegistryIntegers, AreTheStoredBytes)
{
    Store(L"name", GetParam().type, GetParam().bytes);
    EXPECT_EQ(Integer("name"), GetParam().value);
}

INSTANTIATE_TEST_SUITE_P(Bytes, RegistryIntegers, testing::ValuesIn(kIntegers), LabelOf<IntegerCase>);

TEST_F(RegistryValues, IntegerOfMoreThanFourBytesIsRefused)
{
    Store(L"qword", REG_QWORD, "\1\0\0\0\0\0\0\0"s);
    Store(L"text", REG_SZ, "7\0007\0\0\0"s); // two characters: six bytes with the terminator
    Store(L"five", REG_BINARY, "12345"s);
    for (const std::string name : {"qword", "text", "five"})
        ExpectThrowsText<std::runtime_error>(
            [&] { Integer(name); }, SystemFailure("GetValue - " + name + ", DoNotForceRegView", ERROR_MORE_DATA));
}

// Reading text

struct TextCase
{
    const char* label;
    DWORD type;
    std::string bytes;
    std::string text;

    friend void PrintTo(const TextCase& c, std::ostream* out) { *out << c.label; }
};

const TextCase kTexts[] = {
    {"Terminated", REG_SZ, BytesOf(L"Pear tree\0"s + L'\0'), "Pear tree"},
    {"Unterminated", REG_SZ, BytesOf(L"Pear tree"), "Pear tree"},
    {"OneUnitUnterminated", REG_SZ, BytesOf(L"P"), "P"},
    {"Empty", REG_SZ, "\0\0"s, ""},
    {"NoBytes", REG_SZ, "", ""},
    {"UpToTheFirstNul", REG_SZ, BytesOf(L"Pear\0tree\0"s), "Pear"},
    {"NulFirst", REG_SZ, BytesOf(L"\0tree\0"s), ""},
    {"Accents", REG_SZ, BytesOf(L"\u00C4\u20AC\U0001F350\0"s), "\xC3\x84\xE2\x82\xAC\xF0\x9F\x8D\x90"},
    {"LoneSurrogate", REG_SZ, BytesOf(L"a\xD83C\0"s), KelInsString::Narrow(L"a\xD83C")},
    {"NotExpanded", REG_EXPAND_SZ, BytesOf(L"%SystemRoot%\\x\0"s), R"(%SystemRoot%\x)"},
    {"FirstOfSeveral", REG_MULTI_SZ, BytesOf(L"one\0two\0\0"s), "one"},
    {"SeveralButNone", REG_MULTI_SZ, BytesOf(L"\0"s), ""},
    {"OddByteCount", REG_SZ, BytesOf(L"Pear") + "s", "Pears"}, // the byte that is missing is zero
    {"OddByteAlone", REG_BINARY, "x"s, "x"},
    {"OddByteAfterTheEnd", REG_SZ, BytesOf(L"Pear\0"s) + "s", "Pear"},
    {"IntegerSpellsUnits", REG_DWORD, "P\0e\0"s, "Pe"},
    {"IntegerWithHighZeros", REG_DWORD, "\x41\0\0\0"s, "A"},
    {"IntegerZero", REG_DWORD, "\0\0\0\0"s, ""},
    {"LongInteger", REG_QWORD, "P\0e\0a\0r\0"s, "Pear"},
    {"Binary", REG_BINARY, BytesOf(L"\u4E2D"), "\xE4\xB8\xAD"},
};

class RegistryTexts : public RegistryValues, public testing::WithParamInterface<TextCase>
{};

TEST_P(RegistryTexts, AreTheStoredUnits)
{
    Store(L"name", GetParam().type, GetParam().bytes);
    EXPECT_EQ(Text("name"), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(Bytes, RegistryTexts, testing::ValuesIn(kTexts), LabelOf<TextCase>);

TEST_F(RegistryValues, TextOfAnyLength)
{
    for (const std::size_t length : {1U, 255U, 256U, 511U, 512U, 513U, 1024U, 100'000U, 1'000'000U}) {
        const std::string text(length, 'x');
        SetValue(key_, "name", text);
        EXPECT_EQ(Text("name"), text) << length;
        Store(L"name", REG_SZ, BytesOf(std::wstring(length, L'y'))); // unterminated
        EXPECT_EQ(Text("name"), std::string(length, 'y')) << length;
    }
}

TEST_F(RegistryValues, TextIsReadIntoAClearedBufferOfTwiceItsSize)
{
    Store(L"name", REG_BINARY, std::string(100, '\x41'));
    bool cleared = true;
    std::vector<DWORD> sizes;
    QueryHook hook(
        "RegQueryValueExW", [&](HKEY key, LPCWSTR name, LPDWORD reserved, LPDWORD type, LPBYTE data, LPDWORD size) {
            EXPECT_EQ(type, nullptr);
            EXPECT_EQ(reserved, nullptr);
            if (data != nullptr) {
                cleared = std::all_of(data, data + std::size_t{*size + 1} * 2, [](BYTE byte) { return byte == 0; });
                sizes.push_back(*size);
            }
            return ::RegQueryValueExW(key, name, reserved, type, data, size);
        });
    Text("name");
    EXPECT_TRUE(cleared);
    EXPECT_EQ(sizes, std::vector<DWORD>{100});
}

TEST_F(RegistryValues, TextThatGrewBetweenTheTwoCallsIsRefused)
{
    Store(L"name", REG_SZ, BytesOf(L"a\0"s));
    QueryHook hook("RegQueryValueExW",
                   [&](HKEY key, LPCWSTR name, LPDWORD reserved, LPDWORD type, LPBYTE data, LPDWORD size) {
                       const LSTATUS status = ::RegQueryValueExW(key, name, reserved, type, data, size);
                       if (data == nullptr)
                           Store(L"name", REG_SZ, BytesOf(L"a longer one\0"s));
                       return status;
                   });
    std::string value = "before";
    ExpectThrowsText<std::runtime_error>([&] { GetValue(key_, "name", value, RegistryView::Force64RegView); },
                                         SystemFailure("GetValue - name, Force64RegView", ERROR_MORE_DATA));
    EXPECT_EQ(value, "before");
}

// Failures of reading

struct ViewNameCase
{
    const char* label;
    std::uint32_t view;
    const char* name;

    friend void PrintTo(const ViewNameCase& c, std::ostream* out) { *out << c.label; }
};

constexpr ViewNameCase kViewNames[] = {
    {"DoNotForce", 0, "DoNotForceRegView"}, {"Force32", 1, "Force32RegView"},      {"Force64", 2, "Force64RegView"},
    {"Unknown", 3, "DoNotForceRegView"},    {"Highest", ~0U, "DoNotForceRegView"},
};

class RegistryReadFailures : public RegistryValues, public testing::WithParamInterface<ViewNameCase>
{
protected:
    const RegistryView view_ = static_cast<RegistryView>(GetParam().view);
    const std::string viewName_ = GetParam().name;
};

TEST_P(RegistryReadFailures, MissingIntegerNamesTheView)
{
    std::int32_t value = kBefore;
    ExpectThrowsText<std::runtime_error>([&] { GetValue(key_, "missing", value, view_); },
                                         SystemFailure("GetValue - missing, " + viewName_, ERROR_FILE_NOT_FOUND));
    EXPECT_EQ(value, kBefore);
}

TEST_P(RegistryReadFailures, MissingTextDoesNotNameTheView)
{
    std::string value = "before";
    ExpectThrowsText<std::runtime_error>([&] { GetValue(key_, "missing", value, view_); },
                                         SystemFailure("GetValue - missing", ERROR_FILE_NOT_FOUND));
    EXPECT_EQ(value, "before");
}

TEST_P(RegistryReadFailures, SecondCallOfATextNamesTheView)
{
    SetValue(key_, "name", "text");
    QueryHook hook("RegQueryValueExW");
    hook.FailCall(2, ERROR_ACCESS_DENIED, NoCode());
    std::string value = "before";
    ExpectThrowsText<std::runtime_error>([&] { GetValue(key_, "name", value, view_); },
                                         SystemFailure("GetValue - name, " + viewName_, ERROR_ACCESS_DENIED));
    EXPECT_EQ(value, "before");
}

TEST_P(RegistryReadFailures, MissingSubkeyFailsAsOpenKeyReadOnly)
{
    std::int32_t integer = kBefore;
    std::string text = "before";
    const std::string failure = SystemFailure("OpenKey - sub, ReadOnly, " + viewName_, ERROR_FILE_NOT_FOUND);
    ExpectThrowsText<std::runtime_error>([&] { GetValue(key_, "sub", "name", integer, view_); }, failure);
    ExpectThrowsText<std::runtime_error>([&] { GetValue(key_, "sub", "name", text, view_); }, failure);
    const std::string path = root_ / "sub";
    const std::string rootFailure =
        SystemFailure("OpenKey - " + path + ", ReadOnly, " + viewName_, ERROR_FILE_NOT_FOUND);
    constexpr auto root = RootKey::CurrentUser;
    ExpectThrowsText<std::runtime_error>([&] { GetValue(root, path, "name", integer, view_); }, rootFailure);
    ExpectThrowsText<std::runtime_error>([&] { GetValue(root, path, "name", text, view_); }, rootFailure);
    EXPECT_EQ(integer, kBefore);
    EXPECT_EQ(text, "before");
}

INSTANTIATE_TEST_SUITE_P(Views, RegistryReadFailures, testing::ValuesIn(kViewNames), LabelOf<ViewNameCase>);

TEST_F(RegistryValues, SubkeyIsOpenedForReadingInTheViewAndClosedOnEveryPath)
{
    SetValue(CreateKey(key_, "sub", kNoView), "integer", 5);
    SetValue(OpenKey(key_, "sub", AccessRights::ReadWrite, kNoView), "text", "pear");
    const std::size_t handles = HandleCount();
    ImportHook<LSTATUS(HKEY, LPCWSTR, DWORD, REGSAM, PHKEY)> opening("RegOpenKeyExW");
    std::int32_t integer = 0;
    std::string text;
    GetValue(key_, "sub", "integer", integer, RegistryView::Force64RegView);
    GetValue(key_, "sub", "text", text, RegistryView::Force64RegView);
    EXPECT_EQ(integer, 5);
    EXPECT_EQ(text, "pear");
    EXPECT_THROW(GetValue(key_, "sub", "missing", integer, RegistryView::Force64RegView), std::runtime_error);
    EXPECT_THROW(GetValue(key_, "sub", "missing", text, RegistryView::Force64RegView), std::runtime_error);
    ASSERT_EQ(opening.Calls().size(), 4U);
    for (const auto& call : opening.Calls())
        EXPECT_EQ(std::get<3>(call), static_cast<REGSAM>(KEY_READ | KEY_WOW64_64KEY));
    EXPECT_EQ(HandleCount(), handles);
}

// Writing

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

// Listing

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
