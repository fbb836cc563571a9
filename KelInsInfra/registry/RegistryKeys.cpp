#include <KelInsInfra/foundation/KelInsString.h>
#include <KelInsInfra/foundation/internal/KelInsException.h>
#include <KelInsInfra/registry/internal/RegistryAccess.h>
#include <KelInsInfra/system/KelInsSys.h>

namespace KelInsReg {

const std::string HKLM = "HKLM";
const std::string HKCU = "HKCU";
const std::string HKCR = "HKCR";

RootKey GetRootKeyHandleFromString(const std::string& text)
{
    if (text == "HKLM")
        return RootKey::LocalMachine;
    if (text == "HKCU")
        return RootKey::CurrentUser;
    if (text == "HKCR")
        return RootKey::ClassesRoot;
    throw KelInsException("GetRootKeyHandleFromString - " + text);
}

HKEY HandleOf(RootKey root)
{
    switch (root) {
    case RootKey::ClassesRoot:
        return HKEY_CLASSES_ROOT;
    case RootKey::CurrentUser:
        return HKEY_CURRENT_USER;
    default:
        return HKEY_LOCAL_MACHINE;
    }
}

std::string ViewName(RegistryView view)
{
    switch (view) {
    case RegistryView::Force32RegView:
        return "Force32RegView";
    case RegistryView::Force64RegView:
        return "Force64RegView";
    default:
        return "DoNotForceRegView";
    }
}

namespace {

bool HasBothViews()
{
    static const bool both = KelInsSys::IsRTOS64(); // as long as the system runs
    return both;
}

/// What the view adds to an access mask.
REGSAM ViewFlag(RegistryView view)
{
    if (!HasBothViews())
        return 0;
    switch (view) {
    case RegistryView::Force32RegView:
        return KEY_WOW64_32KEY;
    case RegistryView::Force64RegView:
        return KEY_WOW64_64KEY;
    default:
        return 0;
    }
}

[[noreturn]] void FailToOpen(const std::string& subkey, AccessRights access, RegistryView view, LSTATUS status)
{
    const std::string accessName = access == AccessRights::ReadWrite ? "ReadWrite" : "ReadOnly";
    Fail("OpenKey - " + subkey + ", " + accessName + ", " + ViewName(view), status);
}

Key CreateSubkey(HKEY parent, const std::string& subkey, RegistryView view)
{
    HKEY handle = nullptr;
    const LSTATUS status = CallWithName(subkey, [&](const wchar_t* name) {
        return ::RegCreateKeyExW(parent, name, 0, nullptr, 0, KEY_READ | KEY_WRITE | ViewFlag(view), nullptr, &handle,
                                 nullptr); // whether it was new: not asked
    });
    if (status != ERROR_SUCCESS)
        Fail("CreateKey - " + subkey + ", " + ViewName(view), status);
    return Key(handle);
}

void DeleteSubkey(HKEY parent, const std::string& subkey, RegistryView view)
{
    const LSTATUS status = CallWithName(subkey, [&](const wchar_t* name) {
        return view == RegistryView::DoNotForceRegView || !HasBothViews()
                   ? ::RegDeleteKeyW(parent, name)
                   : ::RegDeleteKeyExW(parent, name, ViewFlag(view), 0);
    });
    if (status != ERROR_SUCCESS)
        Fail("DeleteKey - " + subkey + ", " + ViewName(view), status);
}

std::vector<std::string> SubkeysOf(HKEY parent, const std::string& subkey, RegistryView view)
{
    std::vector<std::string> names;
    GetSubkeys(OpenSubkey(parent, subkey, AccessRights::ReadOnly, view), names);
    return names;
}

/// The system sees a path up to a NUL: what came after that would make each key below the same key again, without end.
std::string Below(const std::string& subkey, const std::string& name)
{
    return subkey.substr(0, subkey.find('\0')) + '\\' + name;
}

void DeleteSubkeyTree(HKEY parent, const std::string& subkey, RegistryView view)
{
    for (const std::string& name : SubkeysOf(parent, subkey, view)) {
        const std::string path = Below(subkey, name);
        if (name.empty()) // begins with a NUL, to hide it: its path would name the key above it, again and again
            FailToOpen(path, AccessRights::ReadOnly, view, ERROR_FILE_NOT_FOUND);
        DeleteSubkeyTree(parent, path, view);
    }
    DeleteSubkey(parent, subkey, view);
}

} // namespace

Key OpenSubkey(HKEY parent, const std::string& subkey, AccessRights access, RegistryView view)
{
    const REGSAM mask = KEY_READ | ViewFlag(view) | (access == AccessRights::ReadWrite ? KEY_WRITE : 0);
    HKEY handle = nullptr;
    const LSTATUS status =
        CallWithName(subkey, [&](const wchar_t* name) { return ::RegOpenKeyExW(parent, name, 0, mask, &handle); });
    if (status != ERROR_SUCCESS)
        FailToOpen(subkey, access, view, status);
    return Key(handle);
}

Key OpenKey(const Key& parent, const std::string& subkey, AccessRights access, RegistryView view)
{
    return OpenSubkey(HandleOf(parent), subkey, access, view);
}

Key OpenKey(RootKey parent, const std::string& subkey, AccessRights access, RegistryView view)
{
    return OpenSubkey(HandleOf(parent), subkey, access, view);
}

Key CreateKey(const Key& parent, const std::string& subkey, RegistryView view)
{
    return CreateSubkey(HandleOf(parent), subkey, view);
}

Key CreateKey(RootKey parent, const std::string& subkey, RegistryView view)
{
    return CreateSubkey(HandleOf(parent), subkey, view);
}

void DeleteKey(const Key& parent, const std::string& subkey, RegistryView view)
{
    DeleteSubkey(HandleOf(parent), subkey, view);
}

void DeleteKey(RootKey parent, const std::string& subkey, RegistryView view)
{
    DeleteSubkey(HandleOf(parent), subkey, view);
}

void DeleteKeyTree(const Key& parent, const std::string& subkey, RegistryView view)
{
    DeleteSubkeyTree(HandleOf(parent), subkey, view);
}

void DeleteKeyTree(RootKey parent, const std::string& subkey, RegistryView view)
{
    DeleteSubkeyTree(HandleOf(parent), subkey, view);
}

} // namespace KelInsReg
