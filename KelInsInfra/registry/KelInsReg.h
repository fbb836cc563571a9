#pragma once

#include <KelInsInfra/Export.h>
#include <KelInsInfra/registry/Key.h>
#include <cstdint>
#include <string>
#include <vector>

/// Registry keys and values, in the 32-bit or the 64-bit view of 64-bit Windows.
///
/// A parent is an open Key, which is only looked at, or a RootKey. A subkey is the path from the parent, of one or more
/// levels with '\' between them. Names and texts are UTF-8; what follows a NUL in them is not seen. One of more than
/// INT_MAX bytes is refused with ERROR_NO_UNICODE_TRANSLATION or ERROR_INVALID_PARAMETER. Failures are
/// std::runtime_error with the text given at each function: <system text> stands for the system's message
/// (KelInsSys::GetLastErrorMessage), <view> for the name of the RegistryView, "\n" for the one line feed that ends
/// these texts.
namespace KelInsReg {

/// A predefined key. Any value but 0 and 1 means LocalMachine.
enum class RootKey : std::uint32_t
{
    ClassesRoot = 0,
    CurrentUser = 1,
    LocalMachine = 2,
};

/// Which of the two registries of 64-bit Windows is meant where there are two, as under HKLM\Software. Any other value
/// is named DoNotForceRegView in texts and acts like it. Where KelInsSys::IsRTOS64 is false there is no difference.
enum class RegistryView : std::uint32_t
{
    DoNotForceRegView = 0, ///< the calling process's own
    Force32RegView = 1,
    Force64RegView = 2,
};

/// Any value but 1 means ReadOnly.
enum class AccessRights : std::uint32_t
{
    ReadOnly = 0,
    ReadWrite = 1,
};

/// @name Texts of root keys
/// @{
KELINS_API extern const std::string HKLM; ///< "HKLM"
KELINS_API extern const std::string HKCU; ///< "HKCU"
KELINS_API extern const std::string HKCR; ///< "HKCR"

/// The root key of one of these three texts, letter case included.
/// @throws "GetRootKeyHandleFromString - <text>\n" for any other text, so also for "hklm" and "HKEY_LOCAL_MACHINE".
KELINS_API RootKey GetRootKeyHandleFromString(const std::string& text);
/// @}

/// @name Keys
/// @{

/// Opens a key.
/// @throws "OpenKey - <subkey>, <ReadOnly or ReadWrite>, <view> - <system text>\n", for a missing key too.
KELINS_API Key OpenKey(const Key& parent, const std::string& subkey, AccessRights access, RegistryView view);
KELINS_API Key OpenKey(RootKey parent, const std::string& subkey, AccessRights access, RegistryView view);

/// Opens a key for reading and writing; it is created, with the missing ones above it, when it does not exist.
/// @throws "CreateKey - <subkey>, <view> - <system text>\n"
KELINS_API Key CreateKey(const Key& parent, const std::string& subkey, RegistryView view);
KELINS_API Key CreateKey(RootKey parent, const std::string& subkey, RegistryView view);

/// Deletes a key with its values. A key that has subkeys is refused. The empty path is the parent itself.
/// @throws "DeleteKey - <subkey>, <view> - <system text>\n", for a missing key too.
KELINS_API void DeleteKey(const Key& parent, const std::string& subkey, RegistryView view);
KELINS_API void DeleteKey(RootKey parent, const std::string& subkey, RegistryView view);

/// Deletes a key with all below it, deepest keys first. Stops at the first failure: what was deleted stays deleted.
/// A registry link is followed: the keys below its target are deleted.
/// @param subkey  not empty: the empty path is the parent itself, and only a parent without subkeys can be deleted so.
/// @throws as OpenKey with ReadOnly, so also for a missing key; as GetSubkeys and DeleteKey.
KELINS_API void DeleteKeyTree(const Key& parent, const std::string& subkey, RegistryView view);
KELINS_API void DeleteKeyTree(RootKey parent, const std::string& subkey, RegistryView view);

/// Names of the keys right below a key, in the system's order.
/// @param names  emptied first, and empty after a failure named here.
/// @return how many names there are.
/// @throws "GetSubkeys -  - <system text>\n"
KELINS_API std::uint64_t GetSubkeys(const Key& parent, std::vector<std::string>& names);
KELINS_API std::uint64_t GetSubkeys(RootKey parent, std::vector<std::string>& names);
/// @}

/// @name Reading values
/// An empty name is the key's default value. The output stays as it was when a function throws, but see the integers.
/// Where a subkey is given, it is opened for reading in that view; where not, the view only stands in the texts.
/// @{

/// Copies the value's bytes into the integer, whatever type they are stored as. A value of fewer than four bytes sets
/// only the integer's lowest ones. One of more is refused (ERROR_MORE_DATA) and may leave anything in the integer.
/// @throws "GetValue - <name>, <view> - <system text>\n", for a missing value too; as OpenKey.
KELINS_API void GetValue(const Key& parent, const std::string& subkey, const std::string& name, std::int32_t& value,
                         RegistryView view);
KELINS_API void GetValue(RootKey parent, const std::string& subkey, const std::string& name, std::int32_t& value,
                         RegistryView view);
KELINS_API void GetValue(const Key& parent, const std::string& name, std::int32_t& value, RegistryView view);
KELINS_API void GetValue(RootKey parent, const std::string& name, std::int32_t& value, RegistryView view);

/// Takes the value's bytes as UTF-16 text up to the first NUL, whatever type they are stored as: of several strings
/// (REG_MULTI_SZ) the first, and references to environment variables (REG_EXPAND_SZ) as they stand.
/// @throws "GetValue - <name> - <system text>\n", for a missing value too; "GetValue - <name>, <view> - <system
///         text>\n" when the value has changed meanwhile; as OpenKey.
KELINS_API void GetValue(const Key& parent, const std::string& subkey, const std::string& name, std::string& value,
                         RegistryView view);
KELINS_API void GetValue(RootKey parent, const std::string& subkey, const std::string& name, std::string& value,
                         RegistryView view);
KELINS_API void GetValue(const Key& parent, const std::string& name, std::string& value, RegistryView view);
KELINS_API void GetValue(RootKey parent, const std::string& name, std::string& value, RegistryView view);

/// Names of a key's values, in the system's order; that of the default value, where it is set, is empty.
/// @param names  emptied first, and empty after a failure named here.
/// @return how many names there are.
/// @throws "GetValues -  - <system text>\n", also for a name of more than 255 UTF-16 units.
KELINS_API std::uint64_t GetValues(const Key& parent, std::vector<std::string>& names);
KELINS_API std::uint64_t GetValues(RootKey parent, std::vector<std::string>& names);
/// @}

/// @name Changing values
/// The value stands right under the parent, so under the root key itself where that is given. An empty name is the
/// key's default value.
/// @{

/// Stores a text (REG_SZ) with its terminating NUL. The stored size is two bytes for each byte of UTF-8, and two more:
/// text that is not ASCII is followed by more than one NUL.
/// @throws "SetValue - <name>, <value> - <system text>\n"
KELINS_API void SetValue(const Key& parent, const std::string& name, const std::string& value);
KELINS_API void SetValue(RootKey parent, const std::string& name, const std::string& value);

/// Stores a 32-bit integer (REG_DWORD).
/// @throws "SetValue - <name>, <decimal value> - <system text>\n"
KELINS_API void SetValue(const Key& parent, const std::string& name, std::int32_t value);
KELINS_API void SetValue(RootKey parent, const std::string& name, std::int32_t value);

/// Deletes one value.
/// @throws "DeleteValue - <name> - <system text>\n", for a missing value too.
KELINS_API void DeleteValue(const Key& parent, const std::string& name);
KELINS_API void DeleteValue(RootKey parent, const std::string& name);
/// @}

} // namespace KelInsReg
