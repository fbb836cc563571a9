#pragma once

#include <KelInsInfra/Export.h>

struct HKEY__; // what HKEY points to

namespace KelInsReg {

/// Owner of one open registry key: closes it on destruction. Not for use by two threads at once.
class Key
{
public:
    /// Owns nothing.
    KELINS_API Key() noexcept;

    /// Takes over an open key (an HKEY), to close it later; null makes an empty Key.
    KELINS_API explicit Key(HKEY__* handle) noexcept;

    /// Takes over the other's key; the other is then empty.
    KELINS_API Key(Key&& other) noexcept;

    /// Closes its own key, then takes over the other's; the other is then empty.
    /// When both are one object or hold the same handle, nothing happens: nothing is closed, and both keep the handle.
    KELINS_API Key& operator=(Key&& other) noexcept;

    Key(const Key&) = delete;
    Key& operator=(const Key&) = delete;

    KELINS_API ~Key(); ///< as Close

    /// Closes the key and is empty afterwards; does nothing when it is empty.
    KELINS_API void Close() noexcept;

    /// The handle, still owned by this; null when empty.
    KELINS_API HKEY__* GetKey() const noexcept;

private:
    HKEY__* handle_ = nullptr;
};

} // namespace KelInsReg
