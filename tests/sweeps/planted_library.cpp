// A DLL that an attacker puts beside a program, under the name of one of the system's: tells that it was loaded.

#include <KelInsInfra/foundation/internal/WindowsApi.h>

BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID);

BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID)
{
    if (reason == DLL_PROCESS_ATTACH)
        ::SetEnvironmentVariableW(L"KELINS_PLANTED", L"loaded");
    return TRUE;
}
