// The entry points that Windows Installer calls. An exception that left one would end the process it runs in: each is
// caught here, and its text goes to Windows Installer's log.

#include "Server.h"
#include "ServerData.h"
#include <KelInsInfra/foundation/KelInsString.h>
#include <exception>
#include <string>
#include <windows.h>

#include <msi.h>
#include <msiquery.h>

namespace {

using Orchard::ServerData;

std::string ReadCustomActionData(MSIHANDLE installation)
{
    const wchar_t* const kName = L"CustomActionData";
    wchar_t none[] = L"";
    DWORD length = 0;
    ::MsiGetPropertyW(installation, kName, none, &length); // asks for the length, without the NUL
    std::wstring text(length, L'\0');
    ++length;
    if (::MsiGetPropertyW(installation, kName, text.data(), &length) != ERROR_SUCCESS)
        return "";
    return KelInsString::Narrow(text);
}

void LogFailure(MSIHANDLE installation, const std::string& reason)
{
    PMSIHANDLE record = ::MsiCreateRecord(1); // closes itself
    ::MsiRecordSetStringW(record, 0, L"Orchard Server: [1]");
    ::MsiRecordSetStringW(record, 1, KelInsString::Widen(reason).c_str());
    ::MsiProcessMessage(installation, INSTALLMESSAGE_INFO, record);
}

using Work = void (*)(const ServerData&);

UINT Run(MSIHANDLE installation, Work work) noexcept
{
    try {
        try {
            work(Orchard::ParseServerData(ReadCustomActionData(installation)));
            return ERROR_SUCCESS;
        } catch (const std::exception& error) {
            LogFailure(installation, error.what());
        }
    } catch (...) { // neither may what is no std::exception get out, nor a failure to log one
    }
    return ERROR_INSTALL_FAILURE;
}

} // namespace

#define ENTRY_POINT extern "C" __declspec(dllexport) UINT __stdcall

ENTRY_POINT ConfigureServer(MSIHANDLE installation);
ENTRY_POINT CheckServer(MSIHANDLE installation);
ENTRY_POINT RestoreServer(MSIHANDLE installation);
ENTRY_POINT ForgetBackup(MSIHANDLE installation);
ENTRY_POINT UnconfigureServer(MSIHANDLE installation);

UINT __stdcall ConfigureServer(MSIHANDLE installation)
{
    return Run(installation, Orchard::Configure);
}

UINT __stdcall CheckServer(MSIHANDLE installation)
{
    return Run(installation, Orchard::Check);
}

UINT __stdcall RestoreServer(MSIHANDLE installation)
{
    return Run(installation, Orchard::Restore);
}

UINT __stdcall ForgetBackup(MSIHANDLE installation)
{
    return Run(installation, Orchard::ForgetBackup);
}

UINT __stdcall UnconfigureServer(MSIHANDLE installation)
{
    return Run(installation, [](const ServerData&) { Orchard::Unconfigure(); });
}
