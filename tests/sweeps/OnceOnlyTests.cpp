// What is found out once in a process, asked for by 64 threads at once, each in a process of its own.

#include "tests/support/HandleCount.h"
#include <KelInsInfra/foundation/internal/WindowsApi.h>
#include <KelInsInfra/registry/KelInsMSI.h>
#include <KelInsInfra/system/KelInsSys.h>
#include <atomic>
#include <functional>
#include <gtest/gtest.h>
#include <thread>

namespace {

using Question = std::function<std::string()>;

/// All answers, asked for as nearly at once as can be.
std::vector<std::string> AskOnManyThreads(const Question& question)
{
    constexpr std::size_t kThreads = 64;
    std::vector<std::string> answers(kThreads);
    std::atomic<std::size_t> ready{0};
    std::vector<std::thread> threads;
    for (std::string& answer : answers)
        threads.emplace_back([&] {
            ++ready;
            while (ready < kThreads)
                ::SwitchToThread();
            answer = question();
        });
    for (std::thread& thread : threads)
        thread.join();
    return answers;
}

void ExpectOneAnswer(const Question& question)
{
    const std::vector<std::string> answers = AskOnManyThreads(question);
    EXPECT_EQ(answers, std::vector<std::string>(answers.size(), question()));
    EXPECT_NE(answers.front(), "");
}

std::string InWords(bool answer)
{
    return answer ? "true" : "false";
}

TEST(OnceOnlyIsolated, IsAdmin)
{
    ExpectOneAnswer([] { return InWords(KelInsSys::IsAdmin()); });
}

TEST(OnceOnlyIsolated, EntryPoints)
{
    ExpectOneAnswer([] { return InWords(KelInsSys::IsWOW64()) + InWords(KelInsSys::IsRTOS64()); });
}

TEST(OnceOnlyIsolated, Arguments)
{
    ExpectOneAnswer([] {
        std::string text;
        for (const std::string& argument : KelInsSys::GetArguments())
            text += argument + "\n";
        return text;
    });
}

TEST(OnceOnlyIsolated, Executable)
{
    ExpectOneAnswer([] { return KelInsSys::GetExecutablePath() + KelInsSys::GetExecutableDirPath(); });
}

TEST(OnceOnlyIsolated, LibrariesLoadedOnFirstUse)
{
    ExpectOneAnswer([] {
        const auto versions = KelInsMSI::GetVersion("{C1234567-0000-0000-0000-5EED00000009}");
        return KelInsSys::GetUsername() + std::to_string(versions.size());
    });
}

} // namespace
