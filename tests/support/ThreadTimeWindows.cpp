#include "ThreadTime.h"

#include <KelInsInfra/foundation/internal/WindowsApi.h>
#include <stdexcept>

double ThreadSecondsInUserMode()
{
    FILETIME creation, exit, kernel, user;
    if (!::GetThreadTimes(::GetCurrentThread(), &creation, &exit, &kernel, &user))
        throw std::runtime_error("GetThreadTimes");
    ULARGE_INTEGER time;
    time.LowPart = user.dwLowDateTime;
    time.HighPart = user.dwHighDateTime;
    return static_cast<double>(time.QuadPart) / 1e7; // counted in steps of 100 ns
}
