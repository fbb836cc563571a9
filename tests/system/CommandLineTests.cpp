#include "tests/support/ExpectThrowsText.h"
#include "tests/support/HandleCount.h"
#include "tests/support/ImportHook.h"
#include "tests/support/TempDirectory.h"
#include "tests/system/Child.h"
#include <KelInsInfra/foundation/KelInsEnv.h>
#include <KelInsInfra/foundation/KelInsSys.h>
#include <KelInsInfra/io/Path.h>
#include <KelInsInfra/system/KelInsSys.h>
#include <KelInsInfra/system/ProcessBuilder.h>
#include <atomic>
#include <cwchar>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iterator>
#include <thread>

namespace {

namespace fs = std::filesystem;

using testing::Contains;
using testing::ElementsAre;
using Arguments = std::vector<std::string>;
using CommandLineHook = ImportHook<LPWSTR()>;
using LoadHook = ImportHook<HMODULE(LPCWSTR, HANDLE, DWORD)>;
using EntryHook = ImportHook<FARPROC(HMODULE, LPCSTR)>;
using LocalFreeHook = ImportHook<HLOCAL(HLOCAL)>;
using ModuleNameHook = ImportHook<DWORD(HMODULE, LPWSTR, DWORD)>;
using EnvironmentHook = ImportHook<LPWCH()>;
using FreeEnvironmentHook = ImportHook<BOOL(LPWCH)>;

/// Stands between the library and the system's splitting of the command line. One at a time.
class SplitHook
{
public:
    std::atomic<unsigned> calls = 0;
    std::vector<DWORD> failures; ///< codes of the first calls, which fail
    DWORD delay = 0;             ///< of each call, in milliseconds

    SplitHook() { current_ = this; }

private:
    static LPWSTR* WINAPI Split(LPCWSTR text, int* count)
    {
        ::Sleep(current_->delay);
        const unsigned call = current_->calls++;
        if (call < current_->failures.size()) {
            ::SetLastError(current_->failures[call]);
            return nullptr;
        }
        return current_->original_(text, count);
    }

    static inline SplitHook* current_ = nullptr;
    decltype(&Split) original_ = nullptr;
    EntryHook hook_{"GetProcAddress", [this](HMODULE library, LPCSTR entry) {
                        const FARPROC found = hook_.CallOriginal(library, entry);
                        if (std::string(entry) != "CommandLineToArgvW")
                            return found;
                        original_ = reinterpret_cast<decltype(&Split)>(reinterpret_cast<void*>(found));
                        return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(&Split));
                    }};
};

/// What a child knows of itself.
struct Report
{
    std::string executable;
    std::string directory;
    Arguments arguments;
};

Report RunReportingChild(const std::string& commandLine)
{
    const TempDirectory directory;
    const std::string file = directory / "report";
    KelInsEnv::PutEnv("KELINS_TEST_REPORT", file);
    KelInsSys::ProcessBuilder child(commandLine);
    if (child.Start(false))
        child.Wait();
    KelInsEnv::PutEnv("KELINS_TEST_REPORT", "");
    std::ifstream stream(file, std::ios::binary);
    EXPECT_TRUE(stream.is_open()) << commandLine;
    Report report;
    std::getline(stream, report.executable, '\0');
    std::getline(stream, report.directory, '\0');
    for (std::string argument; std::getline(stream, argument, '\0');)
        report.arguments.push_back(argument);
    return report;
}

struct ArgumentsCase
{
    const char* label;
    const char* commandLineTail;
    Arguments arguments;

    friend void PrintTo(const ArgumentsCase& c, std::ostream* out) { *out << c.commandLineTail; }
};

const ArgumentsCase kArgumentsCases[] = {
    {"None", "", {}},
    {"SpacesOnly", "   ", {}},
    {"QuotedAndPlain", R"( "a b" c)", {"a b", "c"}},
    {"Empty", R"( "" x "")", {"", "x", ""}},
    {"QuoteWithinWord", R"( a" b "c)", {"a b c"}},
    {"EscapedQuote", R"( a\"b)", {R"(a"b)"}},
    {"EscapedQuoteWithinQuotes", R"( "say \"hi\" now")", {R"(say "hi" now)"}},
    {"BackslashesNotBeforeQuotes", R"( C:\dir\\file \\server\share)", {R"(C:\dir\\file)", R"(\\server\share)"}},
    {"TwoBackslashesBeforeQuote", R"( "C:\dir\\" x)", {R"(C:\dir\)", "x"}},
    {"ThreeBackslashesBeforeQuote", R"( a\\\"b)", {R"(a\"b)"}},
    {"FourBackslashesBeforeQuote", R"( a\\\\"b c")", {R"(a\\b c)"}},
    {"OneBackslashBeforeClosingQuote", R"( "C:\dir\" x)", {R"(C:\dir" x)"}},
    {"UnterminatedQuote", R"( a "b c)", {"a", "b c"}},
    {"ApostrophesAreOrdinary", " 'a b'", {"'a", "b'"}},
    {"TabSeparates", " a\tb", {"a", "b"}},
    {"TrailingBackslash", R"( a\)", {R"(a\)"}},
    {"Utf8", " \xC3\xA9t\xC3\xA9 \xE6\x97\xA5\xE6\x9C\xAC", {"\xC3\xA9t\xC3\xA9", "\xE6\x97\xA5\xE6\x9C\xAC"}},
    {"Emoji",
     " \"\xF0\x9F\x8D\x8E \xF0\x9F\x91\xA9\xE2\x80\x8D\xF0\x9F\x94\xA7\"",
     {"\xF0\x9F\x8D\x8E \xF0\x9F\x91\xA9\xE2\x80\x8D\xF0\x9F\x94\xA7"}},
};

class GetArguments : public testing::TestWithParam<ArgumentsCase>
{};

TEST_P(GetArguments, OfAChild)
{
    const std::string program = ChildPath();
    Arguments expected = GetParam().arguments;
    expected.insert(expected.begin(), program);
    EXPECT_EQ(RunReportingChild("\"" + program + "\"" + GetParam().commandLineTail).arguments, expected);
}

INSTANTIATE_TEST_SUITE_P(Table, GetArguments, testing::ValuesIn(kArgumentsCases),
                         [](const auto& test) { return std::string(test.param.label); });

/// A directory with a copy of the child under another name, and the current directory for as long as this lives.
class ChildCopy
{
public:
    explicit ChildCopy(const std::u8string& name) : before_(fs::current_path())
    {
        fs::copy_file(ChildPath(), fs::path(directory_.Path()) / name);
        fs::current_path(directory_.Path());
    }

    ~ChildCopy() { fs::current_path(before_); }

    ChildCopy(const ChildCopy&) = delete;
    ChildCopy& operator=(const ChildCopy&) = delete;

    [[nodiscard]] std::string Directory() const { return directory_.Path(); }

private:
    TempDirectory directory_;
    fs::path before_;
};

TEST(GetArgumentsProgram, IsAsWrittenNotItsPath)
{
    const ChildCopy copy(u8"as_written.exe");
    const Report report = RunReportingChild(R"(as_written.exe "a b" c)");
    EXPECT_THAT(report.arguments, ElementsAre("as_written.exe", "a b", "c"));
    EXPECT_EQ(report.executable, copy.Directory() + R"(\as_written.exe)");
    EXPECT_EQ(report.directory, copy.Directory());
    EXPECT_THAT(RunReportingChild(R"(.\as_written x)").arguments, ElementsAre(R"(.\as_written)", "x"));
}

TEST(GetArgumentsProgram, OutsideAsciiAndWithSpaces)
{
    const ChildCopy copy(u8"s\u00E9t\u00FCp \U0001F34E.exe");
    const std::string name = "s\xC3\xA9t\xC3\xBCp \xF0\x9F\x8D\x8E.exe";
    const Report report = RunReportingChild("\"" + name + "\" x");
    EXPECT_THAT(report.arguments, ElementsAre(name, "x"));
    EXPECT_EQ(report.executable, copy.Directory() + "\\" + name);
    EXPECT_EQ(report.directory, copy.Directory());
}

TEST(GetArgumentsIsolated, SplitOnceAndReleased)
{
    CommandLineHook commandLine("GetCommandLineW");
    const SplitHook split;
    const LocalFreeHook free("LocalFree");
    const Arguments first = KelInsSys::GetArguments();
    EXPECT_FALSE(first.empty());
    std::wcscpy(::GetCommandLineW(), L"x"); // the process's own text, changed in place
    EXPECT_EQ(KelInsSys::GetArguments(), first);
    EXPECT_EQ(commandLine.Calls().size(), 1U);
    EXPECT_EQ(split.calls, 1U);
    EXPECT_EQ(free.Calls().size(), 1U);
}

TEST(GetArgumentsIsolated, CopiesAreIndependent)
{
    Arguments changed = KelInsSys::GetArguments();
    changed.at(0) = "changed";
    EXPECT_NE(KelInsSys::GetArguments().at(0), "changed");
}

TEST(GetArgumentsIsolated, FailsThenTriesAgain)
{
    const LocalFreeHook free("LocalFree");
    SplitHook split;
    split.failures = {ERROR_NOT_ENOUGH_MEMORY, ERROR_INVALID_PARAMETER};
    for (const DWORD code : split.failures)
        ExpectThrowsText<std::runtime_error>([] { KelInsSys::GetArguments(); },
                                             "CommandLineToArgv failed. - " + KelInsSys::GetLastErrorMessage(code) +
                                                 "\n");
    EXPECT_FALSE(KelInsSys::GetArguments().empty());
    KelInsSys::GetArguments();
    EXPECT_EQ(split.calls, 3U);
}

TEST(GetArgumentsIsolated, FailsWithoutTheSystemsLibraryThenTriesAgain)
{
    LoadHook load("LoadLibraryExW");
    load.FailCall(1, nullptr, LastError(ERROR_MOD_NOT_FOUND));
    ExpectThrowsText<std::runtime_error>([] { KelInsSys::GetArguments(); },
                                         "CommandLineToArgv failed. - " +
                                             KelInsSys::GetLastErrorMessage(ERROR_MOD_NOT_FOUND) + "\n");
    EXPECT_FALSE(KelInsSys::GetArguments().empty());
    EXPECT_THAT(load.Calls(), testing::Each(LoadHook::Call(L"shell32.dll", nullptr, 0x800))); // system directory alone
}

TEST(GetArgumentsIsolated, SplitOnceByManyThreads)
{
    SplitHook split;
    split.delay = 100;
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i)
        threads.emplace_back([] { EXPECT_FALSE(KelInsSys::GetArguments().empty()); });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(split.calls, 1U);
}

Arguments SystemEnvironment()
{
    Arguments entries;
    LPWCH block = ::GetEnvironmentStringsW();
    for (const wchar_t* entry = block; *entry != L'\0'; entry += std::wcslen(entry) + 1)
        entries.push_back(KelInsString::Narrow(entry));
    ::FreeEnvironmentStringsW(block);
    return entries;
}

TEST(GetEnvironment, IsTheBlockInItsOrder)
{
    EXPECT_EQ(KelInsSys::GetEnvironment(), SystemEnvironment());
    EXPECT_FALSE(KelInsSys::GetEnvironment().empty());
    for (const std::string& entry : KelInsSys::GetEnvironment())
        EXPECT_EQ(entry.find('\0'), std::string::npos);
}

TEST(GetEnvironment, HoldsANewVariableAtOnce)
{
    KelInsEnv::PutEnv("KELINS_TEST_NEW", "gr\xC3\xBC\xC3\x9F = \xF0\x9F\x8D\x8E");
    EXPECT_THAT(KelInsSys::GetEnvironment(), Contains("KELINS_TEST_NEW=gr\xC3\xBC\xC3\x9F = \xF0\x9F\x8D\x8E"));
    KelInsEnv::PutEnv("KELINS_TEST_NEW", "");
    EXPECT_THAT(KelInsSys::GetEnvironment(), testing::Not(Contains(testing::StartsWith("KELINS_TEST_NEW="))));
}

TEST(GetEnvironment, HoldsTheHiddenEntriesOfDrives)
{
    ::SetEnvironmentVariableW(L"=K:", L"K:\\Tools");
    EXPECT_THAT(KelInsSys::GetEnvironment(), Contains("=K:=K:\\Tools"));
    ::SetEnvironmentVariableW(L"=K:", nullptr);
}

TEST(GetEnvironment, WalksEntriesOfEveryShape)
{
    wchar_t block[] = L"=C:=C:\\\0=ExitCode=00000000\0A=\0B==x=\0C=\U0001F34E\0";
    FreeEnvironmentHook free("FreeEnvironmentStringsW", [](LPWCH) { return TRUE; });
    const EnvironmentHook hook("GetEnvironmentStringsW", [&] { return &block[0]; });
    EXPECT_THAT(KelInsSys::GetEnvironment(),
                ElementsAre("=C:=C:\\", "=ExitCode=00000000", "A=", "B==x=", "C=\xF0\x9F\x8D\x8E"));
    EXPECT_THAT(free.Calls(), ElementsAre(FreeEnvironmentHook::Call(&block[0])));
}

TEST(GetEnvironment, EmptyBlockHasNoEntries)
{
    wchar_t block[] = L"\0";
    const FreeEnvironmentHook free("FreeEnvironmentStringsW", [](LPWCH) { return TRUE; });
    const EnvironmentHook hook("GetEnvironmentStringsW", [&] { return &block[0]; });
    EXPECT_TRUE(KelInsSys::GetEnvironment().empty());
}

TEST(GetEnvironment, EmptyWithoutABlock)
{
    const FreeEnvironmentHook free("FreeEnvironmentStringsW");
    EnvironmentHook hook("GetEnvironmentStringsW");
    hook.FailCall(1, nullptr, LastError(ERROR_NOT_ENOUGH_MEMORY));
    EXPECT_TRUE(KelInsSys::GetEnvironment().empty());
    EXPECT_TRUE(free.Calls().empty());
    EXPECT_FALSE(KelInsSys::GetEnvironment().empty());
    EXPECT_EQ(free.Calls().size(), 1U);
}

TEST(GetExecutablePath, IsTheProgramsNotTheLibrarys)
{
    const std::string path = KelInsSys::GetExecutablePath();
    EXPECT_THAT(path, testing::EndsWith("\\dll_tests.exe"));
    EXPECT_TRUE(fs::exists(path));
    EXPECT_EQ(KelInsSys::GetExecutableDirPath() + "\\dll_tests.exe", path);
    EXPECT_EQ(KelInsSys::GetExecutableDirPath(), KelInsIO::Path(path).GetParent().GetPath());
}

TEST(GetExecutablePathIsolated, AskedOnceForTheMainModule)
{
    const ModuleNameHook hook("GetModuleFileNameW", [](HMODULE, LPWSTR buffer, DWORD) {
        std::wcscpy(buffer, L"C:\\Tools\\setup.exe");
        return DWORD{18};
    });
    EXPECT_EQ(KelInsSys::GetExecutableDirPath(), "C:\\Tools");
    EXPECT_EQ(KelInsSys::GetExecutablePath(), "C:\\Tools\\setup.exe");
    EXPECT_EQ(KelInsSys::GetExecutableDirPath(), "C:\\Tools");
    ASSERT_EQ(hook.Calls().size(), 1U);
    EXPECT_EQ(std::get<0>(hook.Calls()[0]), nullptr);
    EXPECT_EQ(std::get<2>(hook.Calls()[0]), 260U);
}

TEST(GetExecutablePathIsolated, InTheRootOfADrive)
{
    const ModuleNameHook hook("GetModuleFileNameW", [](HMODULE, LPWSTR buffer, DWORD) {
        std::wcscpy(buffer, L"C:\\setup.exe");
        return DWORD{12};
    });
    EXPECT_EQ(KelInsSys::GetExecutableDirPath(), "C:");
}

TEST(GetExecutablePathIsolated, FailsThenTriesAgain)
{
    ModuleNameHook hook("GetModuleFileNameW");
    hook.FailCall(1, 0, LastError(ERROR_MOD_NOT_FOUND));
    hook.FailCall(2, 0, LastError(ERROR_ACCESS_DENIED));
    ExpectThrowsText<std::runtime_error>([] { KelInsSys::GetExecutablePath(); },
                                         "GetModuleFileName failed. - " +
                                             KelInsSys::GetLastErrorMessage(ERROR_MOD_NOT_FOUND) + "\n");
    ExpectThrowsText<std::runtime_error>([] { KelInsSys::GetExecutableDirPath(); },
                                         "GetModuleFileName failed. - " +
                                             KelInsSys::GetLastErrorMessage(ERROR_ACCESS_DENIED) + "\n");
    EXPECT_THAT(KelInsSys::GetExecutableDirPath() + "\\dll_tests.exe", KelInsSys::GetExecutablePath());
    EXPECT_EQ(hook.Calls().size(), 3U);
}

/// The system fills the buffer with as much as fits: with a NUL at its end, or, in older ones, without.
TEST(GetExecutablePathIsolated, TruncatedWithoutNul)
{
    const ModuleNameHook hook("GetModuleFileNameW", [](HMODULE, LPWSTR buffer, DWORD units) {
        std::wmemset(buffer, L'x', units);
        return units;
    });
    EXPECT_EQ(KelInsSys::GetExecutablePath(), std::string(260, 'x'));
}

TEST(GetExecutablePathIsolated, TruncatedWithNul)
{
    const ModuleNameHook hook("GetModuleFileNameW", [](HMODULE, LPWSTR buffer, DWORD units) {
        std::wmemset(buffer, L'x', units);
        buffer[units - 1] = L'\0';
        return units;
    });
    EXPECT_EQ(KelInsSys::GetExecutablePath(), std::string(259, 'x'));
}

} // namespace
