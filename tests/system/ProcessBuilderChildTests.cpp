// ProcessBuilder with real child processes.

#include "tests/support/HandleCount.h"
#include "tests/support/ImportHook.h"
#include "tests/support/TempDirectory.h"
#include "tests/system/Child.h"
#include <KelInsInfra/foundation/KelInsEnv.h>
#include <KelInsInfra/system/ProcessBuilder.h>
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <optional>

namespace {

using KelInsSys::ProcessBuilder;

std::optional<std::int32_t> RunChild(const std::string& command, bool showWindow = false)
{
    ProcessBuilder process(command);
    if (!process.Start(showWindow))
        return std::nullopt;
    return process.Wait();
}

struct ExitCase
{
    const char* label;
    const char* arguments;
    std::int32_t code;

    friend void PrintTo(const ExitCase& c, std::ostream* out) { *out << c.arguments; }
};

constexpr ExitCase kExitCases[] = {
    {"Zero", "exit 0", 0},
    {"Three", "exit 3", 3},
    {"StillActive", "exit 259", 259}, // the code by which the system says that a process has not ended
    {"InstallerFailure", "exit 1603", 1603},
    {"LargestPositive", "exit 0x7FFFFFFF", 0x7FFFFFFF},
    {"SmallestNegative", "exit 0x80000000", -0x7FFFFFFF - 1},
    {"AllBits", "exit 0xFFFFFFFF", -1},
    {"AccessViolationCode", "exit 0xC0000005", -1073741819},
    {"AccessViolation", "crash", -1073741819},
};

class ProcessBuilderExitCode : public testing::TestWithParam<ExitCase>
{};

TEST_P(ProcessBuilderExitCode, IsReturned)
{
    EXPECT_EQ(RunChild(ChildCommand(GetParam().arguments)), GetParam().code);
}

INSTANTIATE_TEST_SUITE_P(Table, ProcessBuilderExitCode, testing::ValuesIn(kExitCases),
                         [](const auto& test) { return std::string(test.param.label); });

TEST(ProcessBuilderChild, WaitCanBeRepeated)
{
    ProcessBuilder process(ChildCommand("exit 5"));
    ASSERT_TRUE(process.Start(false));
    EXPECT_EQ(process.Wait(), 5);
    EXPECT_EQ(process.Wait(), 5);
}

TEST(ProcessBuilderChild, CopyWaitsForTheSameProcess)
{
    ProcessBuilder process(ChildCommand("exit 5"));
    ASSERT_TRUE(process.Start(false));
    const ImportHook<BOOL(HANDLE)> closeOnlyOnce("CloseHandle", [](HANDLE) { return TRUE; });
    {
        ProcessBuilder copy = process;
        EXPECT_EQ(copy.Wait(), 5);
    }
    EXPECT_EQ(process.Wait(), 5);
}

TEST(ProcessBuilderChild, FailedStartAfterASuccessfulOne)
{
    ProcessBuilder process(ChildCommand("exit 5"));
    ASSERT_TRUE(process.Start(false));
    ProcessBuilder missing("no_such_program_anywhere.exe");
    EXPECT_FALSE(missing.Start(false));
    EXPECT_EQ(::GetLastError(), DWORD{ERROR_FILE_NOT_FOUND});
    EXPECT_EQ(process.Wait(), 5);
}

TEST(ProcessBuilderChild, EmptyCommandLineStartsNothing)
{
    EXPECT_EQ(RunChild(""), std::nullopt);
    EXPECT_EQ(RunChild(" "), std::nullopt);
    EXPECT_EQ(RunChild(std::string("\0x", 2)), std::nullopt);
}

TEST(ProcessBuilderChild, CommandLineBeyondTheSystemsLimitStartsNothing)
{
    EXPECT_EQ(RunChild(ChildCommand("exit 0 " + std::string(20'000, 'x'))),
              77); // arrives, and is one argument too many
    EXPECT_EQ(RunChild(ChildCommand("exit 0 " + std::string(40'000, 'x'))), std::nullopt);
}

TEST(ProcessBuilderChild, NoWindowForFalseConsoleForTrue)
{
    EXPECT_EQ(RunChild(ChildCommand("window"), false), 0);
    ::FreeConsole();
    EXPECT_EQ(RunChild(ChildCommand("window"), true), 1);
}

TEST(ProcessBuilderChild, EnvironmentIsInherited)
{
    EXPECT_EQ(RunChild(ChildCommand("environment KELINS_TEST_INHERITED")), 0);
    KelInsEnv::PutEnv("KELINS_TEST_INHERITED", "yes");
    EXPECT_EQ(RunChild(ChildCommand("environment KELINS_TEST_INHERITED")), 1);
    KelInsEnv::PutEnv("KELINS_TEST_INHERITED", "");
}

TEST(ProcessBuilderChild, CurrentDirectoryIsInherited)
{
    const TempDirectory directory;
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(directory.Path());
    EXPECT_EQ(RunChild(ChildCommand("later 0 relative.txt")), 0);
    std::filesystem::current_path(before);
    EXPECT_TRUE(std::filesystem::exists(directory / "relative.txt"));
}

TEST(ProcessBuilderChild, DestructorNeitherWaitsNorEndsIt)
{
    const TempDirectory directory;
    const std::string file = directory / "later.txt";
    HANDLE child = nullptr;
    {
        const ImportHook<BOOL(HANDLE)> keepOpen("CloseHandle", [&](HANDLE handle) {
            if (child != nullptr)
                return ::CloseHandle(handle); // the thread
            child = handle;
            return TRUE;
        });
        ProcessBuilder process(ChildCommand("later 500 \"" + file + "\""));
        ASSERT_TRUE(process.Start(false));
    }
    ASSERT_NE(child, nullptr);
    EXPECT_FALSE(std::filesystem::exists(file)); // the destructor came back before
    ::WaitForSingleObject(child, INFINITE);
    ::CloseHandle(child);
    EXPECT_TRUE(std::filesystem::exists(file)); // and the child went on
}

/// A pipe whose writing end children inherit. Its number is higher than those that a child has of its own.
class InheritablePipe
{
public:
    InheritablePipe()
    {
        for (HANDLE& event : events_)
            event = ::CreateEventW(nullptr, TRUE, FALSE, nullptr);
        SECURITY_ATTRIBUTES inheritable = {sizeof(inheritable), nullptr, TRUE};
        ::CreatePipe(&read_, &write_, &inheritable, 0);
        ::SetHandleInformation(read_, HANDLE_FLAG_INHERIT, 0);
    }

    ~InheritablePipe()
    {
        ::CloseHandle(read_);
        ::CloseHandle(write_);
        std::for_each(events_.begin(), events_.end(), ::CloseHandle);
    }

    InheritablePipe(const InheritablePipe&) = delete;
    InheritablePipe& operator=(const InheritablePipe&) = delete;

    [[nodiscard]] std::string WriteCommand(const std::string& text) const
    {
        return ChildCommand("write " + std::to_string(reinterpret_cast<std::intptr_t>(write_)) + " " + text);
    }

    [[nodiscard]] std::string Content() const
    {
        DWORD byteCount = 0;
        ::PeekNamedPipe(read_, nullptr, 0, nullptr, &byteCount, nullptr);
        std::string content(byteCount, '\0');
        if (byteCount > 0)
            ::ReadFile(read_, content.data(), byteCount, &byteCount, nullptr);
        return content;
    }

private:
    std::array<HANDLE, 300> events_{};
    HANDLE read_ = nullptr;
    HANDLE write_ = nullptr;
};

TEST(ProcessBuilderInheritance, OnByDefault)
{
    const InheritablePipe pipe;
    EXPECT_EQ(RunChild(pipe.WriteCommand("inherited")), 0);
    EXPECT_EQ(pipe.Content(), "inherited");
}

TEST(ProcessBuilderInheritance, Off)
{
    const InheritablePipe pipe;
    ProcessBuilder process(pipe.WriteCommand("inherited"));
    process.SetInheritHandles(0);
    ASSERT_TRUE(process.Start(false));
    EXPECT_EQ(process.Wait(), 6);
    EXPECT_EQ(pipe.Content(), "");
}

TEST(ProcessBuilderInheritance, OnAgain)
{
    const InheritablePipe pipe;
    ProcessBuilder process(pipe.WriteCommand("inherited"));
    process.SetInheritHandles(0);
    process.SetInheritHandles(1);
    ASSERT_TRUE(process.Start(false));
    EXPECT_EQ(process.Wait(), 0);
    EXPECT_EQ(pipe.Content(), "inherited");
}

TEST(ProcessBuilderHandles, AreTwoWhileItLivesAndNoneAfter)
{
    RunChild(ChildCommand("exit 0")); // what the system opens once for good
    const std::size_t before = HandleCount();
    {
        ProcessBuilder process(ChildCommand("exit 0"));
        EXPECT_EQ(HandleCount(), before);
        ASSERT_TRUE(process.Start(false));
        process.Wait();
        EXPECT_EQ(HandleCount(), before + 2);
    }
    EXPECT_EQ(HandleCount(), before);
}

TEST(ProcessBuilderHandles, ThousandFailedStartsLeaveNone)
{
    ProcessBuilder("no_such_program_anywhere.exe").Start(false);
    const std::size_t before = HandleCount();
    for (int i = 0; i < 1000; ++i)
        ASSERT_FALSE(ProcessBuilder("no_such_program_anywhere.exe").Start(false));
    EXPECT_EQ(HandleCount(), before);
}

TEST(ProcessBuilderHandles, ThousandStartsLeaveNone)
{
    RunChild(ChildCommand("exit 0"));
    const std::size_t before = HandleCount();
    for (int i = 0; i < 1000; ++i)
        ASSERT_EQ(RunChild(ChildCommand("exit 3")), 3) << i;
    EXPECT_EQ(HandleCount(), before);
}

} // namespace
