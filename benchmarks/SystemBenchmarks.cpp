// Starting a child process and waiting for it, beside the plain system calls.

#include <KelInsInfra/foundation/internal/WindowsApi.h>
#include <KelInsInfra/system/ProcessBuilder.h>
#include <benchmark/benchmark.h>
#include <string>

namespace {

constexpr const char* kCommand = "cmd.exe /c exit 3";
constexpr const wchar_t* kWideCommand = L"cmd.exe /c exit 3";
constexpr std::int32_t kExitCode = 3;

std::int32_t StartAndWait()
{
    KelInsSys::ProcessBuilder process(kCommand);
    return process.Start(false) ? process.Wait() : -1;
}

std::int32_t StartAndWaitByHand()
{
    std::wstring command = kWideCommand;
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process{};
    if (!::CreateProcessW(nullptr, command.data(), nullptr, nullptr, TRUE, CREATE_NO_WINDOW, nullptr, nullptr, &startup,
                          &process))
        return -1;
    ::WaitForSingleObject(process.hProcess, INFINITE);
    DWORD exitCode = 0;
    ::GetExitCodeProcess(process.hProcess, &exitCode);
    ::CloseHandle(process.hProcess);
    ::CloseHandle(process.hThread);
    return static_cast<std::int32_t>(exitCode);
}

constexpr double kLeastSeconds = 0.3; // several children: one takes a twentieth of a second under Wine

void Register(const char* name, std::int32_t (*startAndWait)())
{
    const auto run = [startAndWait](benchmark::State& state) {
        for (auto _ : state)
            if (const std::int32_t exitCode = startAndWait(); exitCode != kExitCode)
                state.SkipWithError(("the child ended with " + std::to_string(exitCode)).c_str());
    };
    benchmark::RegisterBenchmark(name, run)->UseRealTime()->Unit(benchmark::kMillisecond)->MinTime(kLeastSeconds);
}

const bool kRegistered = [] {
    Register("process start and wait/KelInsInfra", StartAndWait);
    Register("process start and wait/CreateProcessW and WaitForSingleObject", StartAndWaitByHand);
    return true;
}();

} // namespace
