#include "RegistryFixtures.h"

#include "tests/support/ExpectThrowsText.h"
#include "tests/support/HandleCount.h"
#include "tests/support/ImportHook.h"
#include <KelInsInfra/foundation/KelInsString.h>
#include <algorithm>
#include <gtest/gtest.h>
#include <limits>

using namespace std::string_literals;

namespace {

using namespace KelInsReg;

using QueryHook = ImportHook<LSTATUS(HKEY, LPCWSTR, LPDWORD, LPDWORD, LPBYTE, LPDWORD)>;

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

} // namespace
