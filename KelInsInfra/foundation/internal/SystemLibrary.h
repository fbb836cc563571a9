#pragma once

#include <KelInsInfra/foundation/internal/WindowsApi.h>

// For functions that few callers need, or that not every system has: a program that never calls them does not load
// their library.

/// Loads a DLL from the system's own directory alone, so that nobody can put another one in its place; it stays loaded.
/// @return null and the last error when it cannot be had.
inline HMODULE LoadSystemLibrary(const wchar_t* name)
{
    return ::LoadLibraryExW(name, nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
}

/// @param library  may be null.
/// @return null and the last error when there is no such function; the last error stays as it is without a library.
template <typename Function>
Function FindEntry(HMODULE library, const char* name)
{
    if (library == nullptr)
        return nullptr;
    return reinterpret_cast<Function>(reinterpret_cast<void*>(::GetProcAddress(library, name)));
}
