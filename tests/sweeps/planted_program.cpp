// The program beside which DLLs are planted: 0 when the library loaded none of them, 1 when it did. With any argument
// it loads one itself, to show that it can be told.

#include <KelInsInfra/foundation/KelInsEnv.h>
#include <KelInsInfra/foundation/internal/WindowsApi.h>
#include <KelInsInfra/registry/KelInsMSI.h>
#include <KelInsInfra/system/KelInsSys.h>

int main(int argc, char**)
{
    KelInsSys::GetUsername();
    KelInsSys::GetArguments();
    KelInsMSI::GetVersion("{C1234567-0000-0000-0000-5EED00000009}");
    if (argc > 1)
        ::LoadLibraryW(L"planted.dll");
    return ::GetEnvironmentVariableW(L"KELINS_PLANTED", nullptr, 0) == 0 ? 0 : 1;
}
