#include <KelInsInfra/foundation/KelInsString.h>
#include <KelInsInfra/foundation/internal/KelInsException.h>
#include <KelInsInfra/foundation/internal/SystemLibrary.h>
#include <KelInsInfra/foundation/internal/UniqueHandle.h>
#include <KelInsInfra/io/Path.h>
#include <KelInsInfra/system/KelInsSys.h>
#include <array>
#include <cwchar>
#include <shellapi.h>

namespace KelInsSys {
namespace {

using UniqueEnvironment = UniqueHandle<wchar_t*, ::FreeEnvironmentStringsW>;

std::vector<std::string> SplitCommandLine()
{
    const auto commandLineToArgv =
        FindEntry<decltype(&::CommandLineToArgvW)>(LoadSystemLibrary(L"shell32.dll"), "CommandLineToArgvW");
    int count = 0;
    wchar_t** const wideArguments =
        commandLineToArgv == nullptr ? nullptr : commandLineToArgv(::GetCommandLineW(), &count);
    if (wideArguments == nullptr) {
        const DWORD error = ::GetLastError();
        throw KelInsException("CommandLineToArgv failed.", error);
    }
    const UniqueLocalMemory owner(wideArguments);
    std::vector<std::string> arguments;
    arguments.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i)
        arguments.push_back(KelInsString::Narrow(wideArguments[i]));
    return arguments;
}

std::string AskExecutablePath()
{
    std::array<wchar_t, MAX_PATH> buffer{};
    const DWORD units = ::GetModuleFileNameW(nullptr, buffer.data(), MAX_PATH);
    if (units == 0) {
        const DWORD error = ::GetLastError();
        throw KelInsException("GetModuleFileName failed.", error);
    }
    return KelInsString::Narrow(std::wstring(buffer.data(), units)); // a full buffer may lack its NUL
}

} // namespace

// Function-local constants: when their initialisation throws, the next call tries again.

std::vector<std::string> GetArguments()
{
    static const std::vector<std::string> arguments = SplitCommandLine();
    return arguments;
}

std::vector<std::string> GetEnvironment()
{
    const UniqueEnvironment block(::GetEnvironmentStringsW());
    std::vector<std::string> entries;
    if (!block)
        return entries;
    for (const wchar_t* entry = block.Get(); *entry != L'\0'; entry += std::wcslen(entry) + 1)
        entries.push_back(KelInsString::Narrow(entry));
    return entries;
}

std::string GetExecutablePath()
{
    static const std::string path = AskExecutablePath();
    return path;
}

std::string GetExecutableDirPath()
{
    static const std::string path = KelInsIO::Path(GetExecutablePath()).GetParent().GetPath();
    return path;
}

} // namespace KelInsSys
