#include "Watchdog.h"

#include <KelInsInfra/foundation/internal/WindowsApi.h>
#include <array>
#include <stdexcept>

namespace Sweeps {
namespace {

constexpr UINT kHung = 98;
constexpr int kSeconds = 60;

SRWLOCK guard = SRWLOCK_INIT;
std::array<char, 512> doing{};
std::size_t doingSize = 0;
unsigned steps = 0;

/// By the system's own function: those of the runtime may be failing just now.
void Tell(std::string_view text)
{
    DWORD written = 0;
    ::WriteFile(::GetStdHandle(STD_ERROR_HANDLE), text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
}

DWORD WINAPI Watch(void*)
{
    unsigned seen = 0;
    for (int quiet = 0;; ++quiet) {
        ::Sleep(1000);
        ::AcquireSRWLockExclusive(&guard);
        if (seen != steps) {
            seen = steps;
            quiet = 0;
        }
        if (quiet >= kSeconds) {
            Tell("\nThe sweep hangs; for a minute it has been with: ");
            Tell({doing.data(), doingSize});
            Tell("\n");
            ::TerminateProcess(::GetCurrentProcess(), kHung);
        }
        ::ReleaseSRWLockExclusive(&guard);
    }
}

} // namespace

void StartWatchdog()
{
    const HANDLE thread = ::CreateThread(nullptr, 0, &Watch, nullptr, 0, nullptr);
    if (thread == nullptr)
        throw std::runtime_error("the watchdog cannot be started");
    ::CloseHandle(thread);
}

void NowDoing(std::string_view what)
{
    ::AcquireSRWLockExclusive(&guard);
    doingSize = what.copy(doing.data(), doing.size());
    ++steps;
    ::ReleaseSRWLockExclusive(&guard);
}

} // namespace Sweeps
