// What ProcessBuilder hands to the system, and what it closes: the system's functions are replaced. The same with real
// children is in ProcessBuilderChildTests.cpp.

#include "tests/support/ImportHook.h"
#include <KelInsInfra/system/ProcessBuilder.h>
#include <cstring>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>

namespace {

using KelInsSys::ProcessBuilder;
using CloseHook = ImportHook<BOOL(HANDLE)>;
using WaitHook = ImportHook<DWORD(HANDLE, DWORD)>;
using ExitCodeHook = ImportHook<BOOL(HANDLE, LPDWORD)>;

HANDLE Handle(std::intptr_t number)
{
    return reinterpret_cast<HANDLE>(number); // NOLINT(performance-no-int-to-ptr)
}

/// What the system was asked to start.
struct Start
{
    bool hasApplication;
    std::wstring commandLine;
    bool hasSecurity;
    BOOL inheritHandles;
    DWORD flags;
    bool hasEnvironment;
    bool hasDirectory;
    STARTUPINFOW startup;
};

/// Stands for the system: the nth start gives the handles 1000n + 1 and 1000n + 2, and nothing is really closed.
class System
{
public:
    std::vector<Start> starts;
    BOOL succeeds = TRUE;

    [[nodiscard]] std::vector<std::intptr_t> Closed() const
    {
        std::vector<std::intptr_t> closed;
        for (const auto& [handle] : close_.Calls())
            closed.push_back(reinterpret_cast<std::intptr_t>(handle));
        return closed;
    }

private:
    using CreateHook = ImportHook<BOOL(LPCWSTR, LPWSTR, LPSECURITY_ATTRIBUTES, LPSECURITY_ATTRIBUTES, BOOL, DWORD,
                                       LPVOID, LPCWSTR, LPSTARTUPINFOW, LPPROCESS_INFORMATION)>;

    CreateHook create_{
        "CreateProcessW", [this](LPCWSTR application, LPWSTR commandLine, LPSECURITY_ATTRIBUTES process,
                                 LPSECURITY_ATTRIBUTES thread, BOOL inheritHandles, DWORD flags, LPVOID environment,
                                 LPCWSTR directory, LPSTARTUPINFOW startup, LPPROCESS_INFORMATION information) {
            starts.push_back({application != nullptr, commandLine, process != nullptr || thread != nullptr,
                              inheritHandles, flags, environment != nullptr, directory != nullptr, *startup});
            *commandLine = L'?'; // the system may write into the text
            const std::intptr_t n = 1000 * static_cast<std::intptr_t>(starts.size());
            *information = {};
            if (succeeds)
                *information = {Handle(n + 1), Handle(n + 2), 3, 4};
            ::SetLastError(succeeds ? 0 : 1234);
            return succeeds;
        }};
    CloseHook close_{"CloseHandle", [](HANDLE) { return TRUE; }};
};

TEST(ProcessBuilderStart, HandsTheCommandLineOverAndNothingElse)
{
    System system;
    ProcessBuilder process("setup.exe  \"a b\" '\xF0\x9F\x8D\x8E' ");
    EXPECT_TRUE(process.Start(true));
    ASSERT_EQ(system.starts.size(), 1U);
    const Start& start = system.starts.front();
    EXPECT_EQ(start.commandLine, L"setup.exe  \"a b\" '\U0001F34E' ");
    EXPECT_FALSE(start.hasApplication);
    EXPECT_FALSE(start.hasSecurity);
    EXPECT_FALSE(start.hasEnvironment);
    EXPECT_FALSE(start.hasDirectory);
}

TEST(ProcessBuilderStart, StartupRecordHasItsSizeAndShowsNormally)
{
    System system;
    ProcessBuilder process("x");
    process.Start(true);
    process.Start(false);
    STARTUPINFOW expected;
    std::memset(&expected, 0, sizeof(expected));
    expected.cb = 104;
    expected.wShowWindow = 5;
    ASSERT_EQ(system.starts.size(), 2U);
    for (const Start& start : system.starts)
        EXPECT_EQ(std::memcmp(&start.startup, &expected, sizeof(expected)), 0);
}

TEST(ProcessBuilderStart, WindowIsTheOnlyFlag)
{
    System system;
    ProcessBuilder process("x");
    process.Start(false);
    process.Start(true);
    EXPECT_EQ(system.starts.at(0).flags, 0x08000000U);
    EXPECT_EQ(system.starts.at(1).flags, 0U);
}

TEST(ProcessBuilderStart, InheritFlagIsOneAndThenAsGiven)
{
    System system;
    ProcessBuilder process("x");
    process.Start(true);
    for (const std::int32_t flag : {0, 1, 7, -1}) {
        process.SetInheritHandles(flag);
        process.Start(true);
    }
    const ProcessBuilder copy = process;
    ProcessBuilder(copy).Start(true);
    std::vector<BOOL> flags;
    for (const Start& start : system.starts)
        flags.push_back(start.inheritHandles);
    EXPECT_THAT(flags, testing::ElementsAre(1, 0, 1, 7, -1, -1));
}

TEST(ProcessBuilderStart, CommandLineIsKeptWhateverTheSystemWritesIntoIt)
{
    System system;
    ProcessBuilder process("x y");
    process.Start(true);
    process.Start(true);
    EXPECT_EQ(system.starts.at(1).commandLine, L"x y");
}

TEST(ProcessBuilderStart, OwnCopyOfTheText)
{
    System system;
    std::string command = "one";
    ProcessBuilder process(command);
    command = "two";
    process.Start(true);
    EXPECT_EQ(system.starts.at(0).commandLine, L"one");
}

TEST(ProcessBuilderStart, FailureIsFalseAndLeavesTheSystemsCode)
{
    System system;
    system.succeeds = FALSE;
    ProcessBuilder process("x");
    EXPECT_FALSE(process.Start(true));
    EXPECT_EQ(::GetLastError(), 1234U);
}

TEST(ProcessBuilderStart, FailureLeavesTheHandlesOfTheLastSuccess)
{
    System system;
    {
        ProcessBuilder process("x");
        process.Start(true);
        system.succeeds = FALSE;
        process.Start(true);
    }
    EXPECT_THAT(system.Closed(), testing::ElementsAre(1001, 1002));
}

TEST(ProcessBuilderStart, SecondOverwritesTheHandlesOfTheFirstUnclosed)
{
    System system;
    {
        ProcessBuilder process("x");
        process.Start(true);
        process.Start(true);
        EXPECT_THAT(system.Closed(), testing::IsEmpty());
    }
    EXPECT_THAT(system.Closed(), testing::ElementsAre(2001, 2002));
}

TEST(ProcessBuilderWait, AsksForTheStoredProcessWithoutLimit)
{
    System system;
    WaitHook wait("WaitForSingleObject", [](HANDLE, DWORD) { return DWORD{0}; });
    ExitCodeHook exitCode("GetExitCodeProcess", [](HANDLE, LPDWORD code) {
        *code = 42;
        return TRUE;
    });
    ProcessBuilder process("x");
    process.Start(true);
    EXPECT_EQ(process.Wait(), 42);
    EXPECT_EQ(process.Wait(), 42);
    EXPECT_THAT(wait.Calls(), testing::Each(WaitHook::Call(Handle(1001), INFINITE)));
    EXPECT_EQ(std::get<0>(exitCode.Calls().at(0)), Handle(1001));
    EXPECT_THAT(system.Closed(), testing::IsEmpty()); // the handles stay open
}

TEST(ProcessBuilderWait, WithoutAStartWaitsOnTheInvalidHandle)
{
    WaitHook wait("WaitForSingleObject", [](HANDLE, DWORD) { return DWORD{0}; });
    ProcessBuilder process("x");
    EXPECT_EQ(process.Wait(), 259); // the system takes it as this process, which is still active
    EXPECT_THAT(wait.Calls(), testing::ElementsAre(WaitHook::Call(INVALID_HANDLE_VALUE, INFINITE)));
}

TEST(ProcessBuilderWait, ZeroWhenTheCodeCannotBeRead)
{
    System system;
    const WaitHook wait("WaitForSingleObject", [](HANDLE, DWORD) { return DWORD{0}; });
    ExitCodeHook exitCode("GetExitCodeProcess", [](HANDLE, LPDWORD code) {
        *code = 42;
        return FALSE;
    });
    ProcessBuilder process("x");
    process.Start(true);
    EXPECT_EQ(process.Wait(), 0);
    EXPECT_EQ(exitCode.Calls().size(), 1U);
}

TEST(ProcessBuilderDestructor, ClosesProcessAndThread)
{
    System system;
    {
        ProcessBuilder process("x");
        process.Start(true);
        EXPECT_THAT(system.Closed(), testing::IsEmpty());
    }
    EXPECT_THAT(system.Closed(), testing::ElementsAre(1001, 1002));
}

TEST(ProcessBuilderDestructor, ClosesNothingWithoutAStart)
{
    System system;
    system.succeeds = FALSE;
    {
        const ProcessBuilder never("x");
        ProcessBuilder failed("y");
        failed.Start(true);
    }
    EXPECT_THAT(system.Closed(), testing::IsEmpty());
}

TEST(ProcessBuilderCopy, ConstructedShareHandlesAndEachClosesThem)
{
    System system;
    {
        ProcessBuilder process("x");
        process.Start(true);
        const ProcessBuilder copy = process; // NOLINT(performance-unnecessary-copy-initialization)
    }
    EXPECT_THAT(system.Closed(), testing::ElementsAre(1001, 1002, 1001, 1002));
}

TEST(ProcessBuilderCopy, AssignedShareHandlesAndCloseNoneBefore)
{
    System system;
    {
        ProcessBuilder first("x");
        first.Start(true);
        ProcessBuilder second("y");
        second.Start(true);
        second = first;
        EXPECT_THAT(system.Closed(), testing::IsEmpty());
        second.Start(true); // the command line came along
    }
    EXPECT_THAT(system.Closed(), testing::ElementsAre(3001, 3002, 1001, 1002));
    EXPECT_EQ(system.starts.at(2).commandLine, L"x");
}

TEST(ProcessBuilderCopy, MovingCopies)
{
    System system;
    {
        ProcessBuilder process("x");
        process.Start(true);
        const ProcessBuilder moved = std::move(process);
    }
    EXPECT_THAT(system.Closed(), testing::ElementsAre(1001, 1002, 1001, 1002));
}

TEST(ProcessBuilderCopy, OfOneNeverStartedIsIndependent)
{
    System system;
    {
        ProcessBuilder process("x");
        ProcessBuilder copy = process;
        copy.Start(true);
        EXPECT_TRUE(system.Closed().empty());
    }
    EXPECT_THAT(system.Closed(), testing::ElementsAre(1001, 1002));
}

} // namespace
