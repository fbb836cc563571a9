#pragma once

#include <KelInsInfra/Export.h>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

/// Installed products, as Windows Installer knows them, and the form in which its database writes GUIDs.
namespace KelInsMSI {

/// One product found by GetVersion, or one failure on the way.
struct Version
{
    /// A product. Implicit.
    Version(std::string foundVersion) : version(std::move(foundVersion)) {}

    /// A failure.
    Version(std::string failure, std::string place, std::int32_t code)
        : message(std::move(failure)), detail(std::move(place)), errorCode(code)
    {}

    std::string version;        ///< UTF-8, as the product states it ("1.2.3"); empty in an entry for a failure
    std::string message;        ///< short text of the failure; empty for a product
    std::string detail;         ///< where the database keeps what could not be had; empty for a product
    std::int32_t errorCode = 0; ///< Windows Installer's status; 0 for a product
};

/// Versions of the installed products of one product line, in the order in which Windows Installer lists them.
///
/// @param upgradeCode  the line's upgrade code: a GUID in braces with its dashes, 38 characters.
/// @return an entry for each product, empty when there is none. At most 99 entries: products beyond are not listed.
///
/// What fails makes an entry of its own, and the listing goes on, but for status 87 which ends it. Its message and
/// detail, by the status of the listing:
/// - 1610: "The configuration data is corrupt",
///   "Invalid value in HKEY_CLASSES_ROOT\Installer\UpgradeCodes\<packed upgrade code>"
/// - 87: "An invalid parameter was passed to the function", "Invalid Upgrade Code: <upgrade code>"
/// - any other: "MsiEnumRelatedProducts failed", "Unknown error for Upgrade Code: <upgrade code>"
///
/// and by the status of asking one product for its version:
/// - 1605: "The product is unadvertised or uninstalled",
///   "Unknown key HKEY_CLASSES_ROOT\Installer\Products\<packed product code>"
/// - 1608: "The property is unrecognized", "Invalid data in <key>\<packed product code>", where <key> is
///   HKEY_LOCAL_MACHINE\SOFTWARE\Microsoft\Windows\CurrentVersion\Installer\UserData\S-1-5-18\Products
/// - any other: "MsiGetProductInfo failed", "Unknown error for Product Code: <what the call left of the version>"
///
/// A version of 64 or more UTF-16 units is such another status (234). Where msi.dll cannot be loaded from the system
/// directory, each listing has that failure's code.
/// Throws nothing but std::bad_alloc.
KELINS_API std::vector<Version> GetVersion(const std::string& upgradeCode);

/// Whether any entry is a product, not a failure.
KELINS_API bool HasFoundVersion(const std::vector<Version>& versions);

/// A GUID as Windows Installer's registry keys spell it: 32 digits, those of the first three fields in reverse order,
/// those of each later byte swapped: "{12345678-90AB-CDEF-1234-567890ABCDEF}" is "87654321BA09FEDC2143658709BADCFE".
///
/// @param uuid  32 digits between two enclosing characters; dashes are ignored wherever they stand. Neither digits nor
///              enclosing characters are checked, and the letter case stays.
/// @return empty when there are not 34 characters beside the dashes.
KELINS_API std::string UUIDtoRegistryKey(const std::string& uuid);

/// The reverse: a GUID in braces, with its dashes.
///
/// @param key  32 digits, not checked; the letter case stays.
/// @return "{}" when there are not 32 characters.
KELINS_API std::string RegistryKeyToUUID(const std::string& key);

} // namespace KelInsMSI
