#include "../CommandLine.h"

#include <filesystem>
#include <gmock/gmock.h>

namespace {

using Setup::CommandLine;
using Setup::ParseCommandLine;
using Setup::UsageError;

TEST(CommandLineTest, Install)
{
    const CommandLine commandLine = ParseCommandLine({"install", "C:/pay load/", R"("D:\x\.\y\..\z")"});
    EXPECT_EQ(commandLine.action, CommandLine::Action::Install);
    EXPECT_EQ(commandLine.payload, R"(C:\pay load)");
    EXPECT_EQ(commandLine.target, R"(D:\x\z)");
}

TEST(CommandLineTest, Uninstall)
{
    const CommandLine commandLine = ParseCommandLine({"uninstall", R"(D:\x)"});
    EXPECT_EQ(commandLine.action, CommandLine::Action::Uninstall);
    EXPECT_EQ(commandLine.payload, "");
    EXPECT_EQ(commandLine.target, R"(D:\x)");
}

TEST(CommandLineTest, CheckAndUpgradeTakeWhatInstallTakes)
{
    EXPECT_EQ(ParseCommandLine({"check", R"(C:\p)", R"(D:\t)"}).action, CommandLine::Action::Check);
    EXPECT_EQ(ParseCommandLine({"upgrade", R"(C:\p)", R"(D:\t)"}).action, CommandLine::Action::Upgrade);
}

TEST(CommandLineTest, OptionsStandAnywhere)
{
    const CommandLine commandLine = ParseCommandLine(
        {"--log", R"(D:\log.txt)", "install", "--set", "B=x = y", R"(C:\p)", "--set", "A_1=", R"(D:\t)"});
    EXPECT_EQ(commandLine.log, R"(D:\log.txt)");
    EXPECT_EQ(commandLine.payload, R"(C:\p)");
    EXPECT_EQ(commandLine.target, R"(D:\t)");
    EXPECT_THAT(commandLine.options, testing::ElementsAre(testing::Pair("B", "x = y"), testing::Pair("A_1", "")));
}

TEST(CommandLineTest, Shares)
{
    for (const char* form : {R"(\\server\share\x)", R"(\\server\share\x\)", "//server/share/x/"})
        EXPECT_EQ(ParseCommandLine({"uninstall", form}).target, R"(\\server\share\x)") << form;
}

TEST(CommandLineTest, RootOfTheCurrentDrive)
{
    const std::string drive = std::filesystem::current_path().root_name().string();
    for (const char* form : {R"(\x)", R"(\x\)", "/x/"})
        EXPECT_EQ(ParseCommandLine({"uninstall", form}).target, drive + R"(\x)") << form;
}

TEST(CommandLineTest, RelativeFoldersAreBelowTheCurrentOne)
{
    const std::filesystem::path here = std::filesystem::current_path();
    EXPECT_EQ(ParseCommandLine({"uninstall", "x"}).target, (here / "x").string());
    EXPECT_EQ(ParseCommandLine({"uninstall", R"(..\x)"}).target, (here.parent_path() / "x").string());
    EXPECT_EQ(ParseCommandLine({"uninstall", "."}).target, here.string());
}

TEST(CommandLineTest, Help)
{
    for (const char* form : {"--help", "-h", "/?"})
        EXPECT_EQ(ParseCommandLine({form}).action, CommandLine::Action::Help) << form;
}

TEST(CommandLineTest, WhatIsNotUnderstood)
{
    const std::vector<std::vector<std::string>> wrong = {
        {},
        {""},
        {"remove"},
        {"install"},
        {"install", "a"},
        {"install", "a", "b", "c"},
        {"install", "", "b"},
        {"install", "a", ""},
        {"install", "a", R"(\\server)"},
        {"uninstall", R"(\)"},
        {"uninstall"},
        {"uninstall", "a", "b"},
        {"check", "a"},
        {"--log"},
        {"uninstall", "a", "--log"},
        {"uninstall", "a", "--set"},
        {"uninstall", "a", "--set", "A"},
        {"uninstall", "a", "--set", "=1"},
        {"uninstall", "a", "--set", "a=1"},
        {"uninstall", "a", "--set", "A B=1"},
    };
    for (const auto& arguments : wrong)
        EXPECT_THROW(ParseCommandLine(arguments), UsageError) << testing::PrintToString(arguments);
}

} // namespace
