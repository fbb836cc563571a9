#include <KelInsInfra/foundation/KelInsString.h>
#include <KelInsInfra/foundation/internal/WindowsApi.h>
#include <KelInsInfra/system/ProcessBuilder.h>

namespace KelInsSys {

ProcessBuilder::ProcessBuilder(const std::string& command)
    : command_(command), process_{INVALID_HANDLE_VALUE, INVALID_HANDLE_VALUE, 0, 0}
{}

ProcessBuilder::ProcessBuilder(const ProcessBuilder& other) = default;
ProcessBuilder& ProcessBuilder::operator=(const ProcessBuilder& other) = default;

ProcessBuilder::~ProcessBuilder()
{
    if (process_.process != INVALID_HANDLE_VALUE)
        ::CloseHandle(process_.process);
    if (process_.thread != INVALID_HANDLE_VALUE)
        ::CloseHandle(process_.thread);
}

void ProcessBuilder::SetInheritHandles(std::int32_t value)
{
    inheritHandles_ = value;
}

bool ProcessBuilder::Start(bool showWindow)
{
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    startup.wShowWindow = SW_SHOW; // ignored by the system, as the flags are 0

    PROCESS_INFORMATION started{}; // of its own: the system may clear it when it fails
    BOOL created = FALSE;
    DWORD error = ERROR_SUCCESS;
    {
        std::wstring commandLine = KelInsString::Widen(command_); // the system may write into it
        created = ::CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, inheritHandles_,
                                   showWindow ? 0 : CREATE_NO_WINDOW, nullptr, nullptr, &startup, &started);
        error = ::GetLastError();
    }
    ::SetLastError(error); // the caller's to ask for; freeing the text may have changed it
    if (created)
        process_ = {started.hProcess, started.hThread, started.dwProcessId, started.dwThreadId};
    return created;
}

std::int32_t ProcessBuilder::Wait()
{
    ::WaitForSingleObject(process_.process, INFINITE);
    DWORD exitCode = 0;
    if (!::GetExitCodeProcess(process_.process, &exitCode))
        return 0;
    return static_cast<std::int32_t>(exitCode);
}

} // namespace KelInsSys
