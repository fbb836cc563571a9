#include <KelInsInfra/foundation/KelInsString.h>
#include <KelInsInfra/registry/internal/RegistryAccess.h>
#include <limits>

namespace KelInsReg {
namespace {

/// Right into the caller's integer: a shorter value leaves the other bytes as they were.
void Read(HKEY key, const std::string& name, std::int32_t& value, RegistryView view)
{
    DWORD byteCount = sizeof(value);
    const LSTATUS status = CallWithName(name, [&](const wchar_t* wideName) {
        return ::RegQueryValueExW(key, wideName, nullptr, nullptr, // stored type: not checked
                                  reinterpret_cast<BYTE*>(&value), &byteCount);
    });
    if (status != ERROR_SUCCESS)
        Fail("GetValue - " + name + ", " + ViewName(view), status);
}

void Read(HKEY key, const std::string& name, std::string& value, RegistryView view)
{
    const std::wstring wideName = KelInsString::Widen(name);
    DWORD byteCount = 0;
    const LSTATUS sizeStatus = IsLost(name, wideName) ? ERROR_NO_UNICODE_TRANSLATION
                                                      : ::RegQueryValueExW(key, wideName.c_str(), nullptr,
                                                                           nullptr, // stored type: not checked
                                                                           nullptr, &byteCount);
    if (sizeStatus != ERROR_SUCCESS)
        Fail("GetValue - " + name, sizeStatus);
    // A unit for each byte, and one more: what is stored need not end in a NUL, nor have an even size.
    std::wstring units(std::size_t{byteCount} + 1, L'\0');
    const LSTATUS status =
        ::RegQueryValueExW(key, wideName.c_str(), nullptr, nullptr, reinterpret_cast<BYTE*>(units.data()), &byteCount);
    if (status != ERROR_SUCCESS)
        Fail("GetValue - " + name + ", " + ViewName(view), status);
    value = KelInsString::Narrow(units); // up to the first NUL
}

template <typename Value>
void ReadBelow(HKEY parent, const std::string& subkey, const std::string& name, Value& value, RegistryView view)
{
    Read(OpenSubkey(parent, subkey, AccessRights::ReadOnly, view).GetKey(), name, value, view);
}

void Write(HKEY key, const std::string& name, const std::string& value)
{
    const std::size_t unitCount = value.size() + 1; // as many as UTF-8 bytes: at least as many as the text takes
    const std::size_t byteCount = unitCount * sizeof(wchar_t);
    LSTATUS status = ERROR_INVALID_PARAMETER; // more than a value can hold
    if (byteCount <= std::numeric_limits<DWORD>::max()) {
        std::wstring units = KelInsString::Widen(value);
        const bool isLost = IsLost(value, units);
        units.resize(unitCount, L'\0');
        status = CallWithName(name, [&](const wchar_t* wideName) {
            return isLost ? ERROR_NO_UNICODE_TRANSLATION
                          : ::RegSetValueExW(key, wideName, 0, REG_SZ, reinterpret_cast<const BYTE*>(units.data()),
                                             static_cast<DWORD>(byteCount));
        });
    }
    if (status != ERROR_SUCCESS)
        Fail("SetValue - " + name + ", " + value, status);
}

void Write(HKEY key, const std::string& name, std::int32_t value)
{
    const LSTATUS status = CallWithName(name, [&](const wchar_t* wideName) {
        return ::RegSetValueExW(key, wideName, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&value), sizeof(value));
    });
    if (status != ERROR_SUCCESS)
        Fail("SetValue - " + name + ", " + std::to_string(value), status);
}

void Delete(HKEY key, const std::string& name)
{
    const LSTATUS status =
        CallWithName(name, [&](const wchar_t* wideName) { return ::RegDeleteValueW(key, wideName); });
    if (status != ERROR_SUCCESS)
        Fail("DeleteValue - " + name, status);
}

} // namespace

void GetValue(const Key& parent, const std::string& subkey, const std::string& name, std::int32_t& value,
              RegistryView view)
{
    ReadBelow(HandleOf(parent), subkey, name, value, view);
}

void GetValue(RootKey parent, const std::string& subkey, const std::string& name, std::int32_t& value,
              RegistryView view)
{
    ReadBelow(HandleOf(parent), subkey, name, value, view);
}

void GetValue(const Key& parent, const std::string& name, std::int32_t& value, RegistryView view)
{
    Read(HandleOf(parent), name, value, view);
}

void GetValue(RootKey parent, const std::string& name, std::int32_t& value, RegistryView view)
{
    Read(HandleOf(parent), name, value, view);
}

void GetValue(const Key& parent, const std::string& subkey, const std::string& name, std::string& value,
              RegistryView view)
{
    ReadBelow(HandleOf(parent), subkey, name, value, view);
}

void GetValue(RootKey parent, const std::string& subkey, const std::string& name, std::string& value, RegistryView view)
{
    ReadBelow(HandleOf(parent), subkey, name, value, view);
}

void GetValue(const Key& parent, const std::string& name, std::string& value, RegistryView view)
{
    Read(HandleOf(parent), name, value, view);
}

void GetValue(RootKey parent, const std::string& name, std::string& value, RegistryView view)
{
    Read(HandleOf(parent), name, value, view);
}

void SetValue(const Key& parent, const std::string& name, const std::string& value)
{
    Write(HandleOf(parent), name, value);
}

void SetValue(RootKey parent, const std::string& name, const std::string& value)
{
    Write(HandleOf(parent), name, value);
}

void SetValue(const Key& parent, const std::string& name, std::int32_t value)
{
    Write(HandleOf(parent), name, value);
}

void SetValue(RootKey parent, const std::string& name, std::int32_t value)
{
    Write(HandleOf(parent), name, value);
}

void DeleteValue(const Key& parent, const std::string& name)
{
    Delete(HandleOf(parent), name);
}

void DeleteValue(RootKey parent, const std::string& name)
{
    Delete(HandleOf(parent), name);
}

} // namespace KelInsReg
