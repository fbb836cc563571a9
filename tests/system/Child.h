#pragma once

#include <KelInsInfra/foundation/KelInsString.h>
#include <KelInsInfra/foundation/internal/WindowsApi.h>
#include <array>
#include <cstdint>
#include <string>

/// The program of child.cpp, which lies beside the test program.
inline std::string ChildPath()
{
    std::array<wchar_t, 1024> buffer{};
    ::GetModuleFileNameW(nullptr, buffer.data(), static_cast<DWORD>(buffer.size()));
    const std::string program = KelInsString::Narrow(buffer.data());
    return program.substr(0, program.rfind('\\') + 1) + "system_child.exe";
}

/// Command line that starts it with these arguments.
inline std::string ChildCommand(const std::string& arguments)
{
    return '"' + ChildPath() + "\" " + arguments;
}
