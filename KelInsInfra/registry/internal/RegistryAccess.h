#pragma once

#include <KelInsInfra/foundation/KelInsString.h>
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

/// Whether the conversion of a text to UTF-16 failed. Its empty result must not reach the system, which would take it
/// for the name of the key itself, or of its default value.
inline bool IsLost(const std::string& text, const std::wstring& wide)
{
    return wide.empty() && !text.empty() && text.front() != '\0';
}

/// The status of a call that takes a name, or of the name's conversion.
template <typename Call>
LSTATUS CallWithName(const std::string& name, const Call& call)
{
    const std::wstring wideName = KelInsString::Widen(name);
    return IsLost(name, wideName) ? ERROR_NO_UNICODE_TRANSLATION : call(wideName.c_str());
}

/// Registry calls return their code.
[[noreturn]] inline void Fail(const std::string& message, LSTATUS status)
{
    throw KelInsException(message, static_cast<std::uint32_t>(status));
}

/// What all overloads of OpenKey do, on a borrowed handle.
Key OpenSubkey(HKEY parent, const std::string& subkey, AccessRights access, RegistryView view);

} // namespace KelInsReg
