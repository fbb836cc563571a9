// What the library writes, as the system's own tool reads it, and the other way round.

#include "tests/support/RegistryRoot.h"
#include "tests/support/TempDirectory.h"
#include <KelInsInfra/foundation/KelInsString.h>
#include <KelInsInfra/registry/KelInsReg.h>
#include <cstdio>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>

namespace {

using namespace KelInsReg;

constexpr auto kNoView = RegistryView::DoNotForceRegView;

/// Runs reg.exe and gives what it prints, without carriage returns.
std::string Reg(const std::string& arguments)
{
    std::FILE* pipe = ::_wpopen(KelInsString::Widen("reg " + arguments + " 2>&1").c_str(), L"rb");
    if (pipe == nullptr)
        return "reg could not be started";
    std::string output;
    for (int c = std::fgetc(pipe); c != EOF; c = std::fgetc(pipe))
        if (c != '\r')
            output.push_back(static_cast<char>(c));
    EXPECT_EQ(::_pclose(pipe), 0) << arguments << '\n' << output;
    return output;
}

std::string Quoted(const std::string& text)
{
    return '"' + text + '"';
}

/// A UTF-16 file as UTF-8 without carriage returns and byte order mark.
std::string ReadUtf16File(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(file), {}};
    std::wstring units(bytes.size() / sizeof(wchar_t), L'\0');
    bytes.copy(reinterpret_cast<char*>(units.data()), units.size() * sizeof(wchar_t));
    std::erase(units, L'\r');
    std::erase(units, L'\uFEFF');
    return KelInsString::Narrow(units);
}

void WriteUtf16File(const std::string& path, const std::string& text)
{
    std::ofstream(path, std::ios::binary) << BytesOf(L'\uFEFF' + KelInsString::Widen(text));
}

class RegistryFromOutside : public testing::Test
{
protected:
    const RegistryRoot root_;
    const std::string path_ = R"(HKEY_CURRENT_USER\)" + root_.Path();
    const Key key_ = OpenKey(RootKey::CurrentUser, root_.Path(), AccessRights::ReadWrite, kNoView);
    const TempDirectory directory_;
};

TEST_F(RegistryFromOutside, QueryShowsWhatIsWritten)
{
    SetValue(key_, "text", "Pear tree");
    SetValue(key_, "integer", -5);
    EXPECT_EQ(Reg("query " + Quoted(path_) + " /v text"), "\n" + path_ + "\n    text    REG_SZ    Pear tree\n\n");
    EXPECT_EQ(Reg("query " + Quoted(path_) + " /v integer"),
              "\n" + path_ + "\n    integer    REG_DWORD    0xfffffffb\n\n");
}

TEST_F(RegistryFromOutside, ExportShowsKeysNamesAndTexts)
{
    SetValue(key_, "", "default");
    SetValue(key_, "smallest", -2147483647 - 1);
    SetValue(key_, "\xC3\x84pfel \xE2\x82\xAC", "\xF0\x9F\x8D\x90 \\ \"quoted\"");
    CreateKey(key_,
              "\xC3\xB6"
              R"(\below)",
              kNoView);
    const std::string file = directory_ / "out.reg";
    Reg("export " + Quoted(path_) + " " + Quoted(file) + " /y");
    std::string expected = "Windows Registry Editor Version 5.00\n\n";
    expected += "[" + path_ + "]\n@=\"default\"\n\"smallest\"=dword:80000000\n";
    expected += "\"\xC3\x84pfel \xE2\x82\xAC\"=\"\xF0\x9F\x8D\x90 \\\\ \\\"quoted\\\"\"\n\n";
    expected += "[" + path_ + "\\\xC3\xB6]\n\n[" + path_ + "\\\xC3\xB6\\below]\n\n";
    EXPECT_EQ(ReadUtf16File(file), expected);
}

TEST_F(RegistryFromOutside, WhatIsAddedIsRead)
{
    Reg("add " + Quoted(path_) + " /v text /t REG_SZ /d \"Pear tree\" /f");
    Reg("add " + Quoted(path_) + " /v integer /t REG_DWORD /d 4294967291 /f");
    Reg("add " + Quoted(path_ + R"(\a\b)") + " /ve /d below /f");
    std::string text;
    std::int32_t integer = 0;
    GetValue(key_, "text", text, kNoView);
    GetValue(key_, "integer", integer, kNoView);
    EXPECT_EQ(text, "Pear tree");
    EXPECT_EQ(integer, -5);
    GetValue(key_, R"(a\b)", "", text, kNoView);
    EXPECT_EQ(text, "below");
}

TEST_F(RegistryFromOutside, WhatIsImportedIsRead)
{
    const std::string file = directory_ / "in.reg";
    WriteUtf16File(file,
                   "Windows Registry Editor Version 5.00\r\n\r\n[" + path_ +
                       "]\r\n\"\xC3\x84pfel\"=\"\xE2\x82\xAC \\\\\"\r\n\"several\"=hex(7):6f,00,6e,00,65,00,00,00,"
                       "74,00,77,00,6f,00,00,00,00,00\r\n\"path\"=hex(2):25,00,78,00,25,00,00,00\r\n\"bytes\"="
                       "hex:01,02\r\n");
    Reg("import " + Quoted(file));
    std::string text;
    GetValue(key_, "\xC3\x84pfel", text, kNoView);
    EXPECT_EQ(text, "\xE2\x82\xAC \\");
    GetValue(key_, "several", text, kNoView);
    EXPECT_EQ(text, "one");
    GetValue(key_, "path", text, kNoView);
    EXPECT_EQ(text, "%x%");
    std::int32_t integer = 0;
    GetValue(key_, "bytes", integer, kNoView);
    EXPECT_EQ(integer, 0x0201);
    std::vector<std::string> names;
    EXPECT_EQ(GetValues(key_, names), 4U);
}

TEST_F(RegistryFromOutside, DeletionsAreSeen)
{
    SetValue(CreateKey(key_, R"(a\b)", kNoView), "name", 1);
    SetValue(key_, "kept", 1);
    SetValue(key_, "gone", 1);
    DeleteKeyTree(key_, "a", kNoView);
    DeleteValue(key_, "gone");
    EXPECT_EQ(Reg("query " + Quoted(path_)), "\n" + path_ + "\n    kept    REG_DWORD    0x1\n\n");
}

TEST_F(RegistryFromOutside, ViewsAreTheTools)
{
    const RegistryRoot in32(HKEY_LOCAL_MACHINE, KEY_WOW64_32KEY);
    const RegistryRoot in64(HKEY_LOCAL_MACHINE, KEY_WOW64_64KEY, in32.Path());
    const std::string path = R"(HKEY_LOCAL_MACHINE\)" + in32.Path();
    SetValue(CreateKey(RootKey::LocalMachine, in32.Path(), RegistryView::Force32RegView), "bits", 0x32);
    SetValue(CreateKey(RootKey::LocalMachine, in32.Path(), RegistryView::Force64RegView), "bits", 0x64);
    EXPECT_EQ(Reg("query " + Quoted(path) + " /v bits /reg:32"), "\n" + path + "\n    bits    REG_DWORD    0x32\n\n");
    EXPECT_EQ(Reg("query " + Quoted(path) + " /v bits /reg:64"), "\n" + path + "\n    bits    REG_DWORD    0x64\n\n");
    Reg("add " + Quoted(path) + " /v bits /t REG_DWORD /d 33 /f /reg:32");
    std::int32_t bits = 0;
    GetValue(RootKey::LocalMachine, in32.Path(), "bits", bits, RegistryView::Force32RegView);
    EXPECT_EQ(bits, 33);
    GetValue(RootKey::LocalMachine, in32.Path(), "bits", bits, RegistryView::Force64RegView);
    EXPECT_EQ(bits, 0x64);
}

} // namespace
