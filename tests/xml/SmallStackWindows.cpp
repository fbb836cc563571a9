#include "SmallStack.h"

#include <KelInsInfra/foundation/internal/WindowsApi.h>
#include <stdexcept>

namespace {

DWORD WINAPI Run(void* function)
{
    (*static_cast<const std::function<void()>*>(function))();
    return 0;
}

} // namespace

void RunOnSmallStack(const std::function<void()>& function)
{
    std::function<void()> copy = function;
    // the size as that of the reservation, or it would only be what is committed at first
    const HANDLE thread = ::CreateThread(nullptr, 256 * 1024, Run, &copy, STACK_SIZE_PARAM_IS_A_RESERVATION, nullptr);
    if (thread == nullptr)
        throw std::runtime_error("no thread with a small stack");
    ::WaitForSingleObject(thread, INFINITE);
    ::CloseHandle(thread);
}
