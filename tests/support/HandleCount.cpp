#include "HandleCount.h"

#include <KelInsInfra/foundation/internal/WindowsApi.h>
#include <cstdint>

std::size_t HandleCount()
{
    DWORD told = 0;
    if (::GetProcessHandleCount(::GetCurrentProcess(), &told) && told != 0)
        return told;
    // Wine tells 0. It gives the lowest free number to a new handle: a gap so wide has never been filled.
    constexpr std::uintptr_t kGap = 32;
    constexpr std::uintptr_t kStep = 4; // handles are multiples of it
    const DWORD lastError = ::GetLastError();
    std::size_t count = 0;
    std::uintptr_t last = 0;
    for (std::uintptr_t number = 1; number <= last + kGap; ++number) {
        DWORD flags = 0;
        // NOLINTNEXTLINE(performance-no-int-to-ptr): handles are numbers
        if (::GetHandleInformation(reinterpret_cast<HANDLE>(number * kStep), &flags)) {
            ++count;
            last = number;
        }
    }
    ::SetLastError(lastError);
    return count;
}

std::array<const void*, 2> NextHandles()
{
    std::array<HANDLE, 2> events{};
    for (HANDLE& event : events)
        event = ::CreateEventW(nullptr, FALSE, FALSE, nullptr);
    for (const HANDLE event : events)
        ::CloseHandle(event);
    return {events[0], events[1]};
}
