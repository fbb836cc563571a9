#pragma once

#include <KelInsInfra/foundation/internal/KelInsException.h>
#include <KelInsInfra/foundation/internal/WindowsApi.h>
#include <KelInsInfra/registry/KelInsReg.h>
#include <string>

namespace KelInsReg {

/// Borrowed, like that of a Key: not to be closed.
HKEY HandleOf(RootKey root);

inline HKEY HandleOf(const Key& key)
{
    return key.GetKey();
}

std::string ViewName(RegistryView view);

/// Registry calls return their code.
[[noreturn]] inline void Fail(const std::string& message, LSTATUS status)
{
    throw KelInsException(message, static_cast<std::uint32_t>(status));
}

/// What all overloads of OpenKey do, on a borrowed handle.
Key OpenSubkey(HKEY parent, const std::string& subkey, AccessRights access, RegistryView view);

} // namespace KelInsReg
