// The process ends at each call of the system in the midst of rewriting a file: before the call, and where it writes,
// after half of it. The file then holds the old content or the new one, or the new one lies whole in the temporary
// file.

#include "KillSweep.h"
#include "Scene.h"
#include "Session.h"
#include "Watchdog.h"

#include <KelInsInfra/foundation/KelInsString.h>
#include <array>
#include <gtest/gtest.h>
#include <map>
#include <stdexcept>

namespace Sweeps {
namespace {

constexpr UINT kKilled = 0x4B31;

/// How the parent tells a child what to do; in the environment, so that the directory's name needs no quoting.
const std::string kOperation = "KELINS_KILL_OPERATION";
const std::string kDirectory = "KELINS_KILL_DIRECTORY";
const std::string kCall = "KELINS_KILL_CALL"; ///< from 1; 0: none
const std::string kHalf = "KELINS_KILL_HALF";

std::string Variable(const std::string& name)
{
    std::array<wchar_t, 1024> value{};
    ::GetEnvironmentVariableW(KelInsString::Widen(name).c_str(), value.data(), static_cast<DWORD>(value.size()));
    return KelInsString::Narrow(value.data());
}

void SetVariable(const std::string& name, const std::string& value)
{
    ::SetEnvironmentVariableW(KelInsString::Widen(name).c_str(), KelInsString::Widen(value).c_str());
}

/// @return the exit code.
DWORD RunChild(const std::string& operation, const Scene& scene, std::size_t call, bool half)
{
    NowDoing(operation + ": child that is killed at call " + std::to_string(call) + (half ? ", after half of it" : ""));
    SetVariable(kOperation, operation);
    SetVariable(kDirectory, scene.Get().directory);
    SetVariable(kCall, std::to_string(call));
    SetVariable(kHalf, half ? "1" : "0");
    std::array<wchar_t, 1024> program{};
    ::GetModuleFileNameW(nullptr, program.data(), static_cast<DWORD>(program.size()));
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process{};
    const auto start = [&] {
        return ::CreateProcessW(program.data(), nullptr, nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                                &process);
    };
    for (int attempt = 1; !start(); ++attempt) { // Wine on a busy machine fails one start in some hundred
        if (attempt == 5)
            throw std::runtime_error("no child process: " + std::to_string(::GetLastError()));
        ::Sleep(200);
    }
    ::WaitForSingleObject(process.hProcess, INFINITE);
    DWORD code = 0;
    ::GetExitCodeProcess(process.hProcess, &code);
    ::CloseHandle(process.hThread);
    ::CloseHandle(process.hProcess);
    return code;
}

class KillSweep : public testing::TestWithParam<std::tuple<std::string, bool>>
{
protected:
    void SetUp() override
    {
        std::tie(operation_, half_) = GetParam();
        Prepare();
        before_ = scene_.Look();
        calls_ = RunChild(operation_, scene_, 0, half_);
        after_ = scene_.Look();
        ASSERT_GT(calls_, 5U);
        ASSERT_LT(calls_, 1000U);
    }

    void Prepare() const
    {
        const Session session;
        Sweeps::Prepare(scene_, session.Find(operation_));
    }

    /// "old", "new", "whole temporary file", or what else there is.
    [[nodiscard]] std::string StateOf(const Traces& traces) const
    {
        std::string target;
        for (const auto& [name, content] : after_)
            if (name.starts_with("file\\"))
                target = name;
        std::string temporary = "(none)";
        for (const auto& [name, content] : traces)
            if (name.starts_with(target + "_Tmp"))
                temporary = content.substr(1);
        const std::string whole = after_.at(target).substr(1);
        const bool wasThere = before_.contains(target);
        if (!traces.contains(target))
            return wasThere ? "missing" : "old";
        const std::string actual = traces.at(target).substr(1);
        if (actual == whole)
            return "new";
        if (wasThere && actual == before_.at(target).substr(1))
            return "old";
        return temporary == whole ? "whole temporary file"
                                  : "torn, " + std::to_string(actual.size()) + " bytes, and lost";
    }

    Scene scene_;
    std::string operation_;
    bool half_ = false;
    Traces before_;
    Traces after_;
    DWORD calls_ = 0;
};

TEST_P(KillSweep, NothingIsLost)
{
    std::map<std::string, int> states;
    for (std::size_t call = 1; call <= calls_; ++call) {
        Prepare();
        EXPECT_EQ(RunChild(operation_, scene_, call, half_), kKilled) << "call " << call;
        const std::string state = StateOf(scene_.Look());
        ++states[state];
        EXPECT_TRUE(state == "old" || state == "new" || state == "whole temporary file")
            << "killed at call " << call << ": " << state;
    }
    std::printf("%s%s: %lu kills: %d old, %d new, %d whole temporary file\n", operation_.c_str(),
                half_ ? " after half of a call" : "", calls_, states["old"], states["new"],
                states["whole temporary file"]);
}

INSTANTIATE_TEST_SUITE_P(Rewriting, KillSweep,
                         testing::Combine(testing::Values("WriteKey", "WriteNewFile", "ReplaceInLines"),
                                          testing::Bool()),
                         [](const auto& test) {
                             return std::get<0>(test.param) + (std::get<1>(test.param) ? "Half" : "");
                         });

} // namespace

bool IsKillSweepChild()
{
    return !Variable(kOperation).empty();
}

int RunKillSweepChild()
{
    const Place place{Variable(kDirectory), ""};
    Session session;
    static Outcome outcome;
    FaultInjector& injector = session.Injector();
    injector.ArmAtAnyCall(
        std::stoul(Variable(kCall)), [] { ::TerminateProcess(::GetCurrentProcess(), kKilled); },
        Variable(kHalf) == "1");
    session.Run(session.Find(Variable(kOperation)), place, outcome);
    injector.Disarm();
    return outcome.kind == Outcome::Kind::Result ? static_cast<int>(injector.CallsOfAll()) : -1;
}

} // namespace Sweeps
