#pragma once

#include <KelInsInfra/foundation/internal/WindowsApi.h>
#include <string>

/// A value as the registry keeps it.
struct RawValue
{
    DWORD type = REG_NONE;
    std::string bytes;

    bool operator==(const RawValue&) const = default;
};

/// The bytes of UTF-16 units, without a NUL at the end unless the text has one.
std::string BytesOf(const std::wstring& units);

/// @throws std::runtime_error  when the system refuses.
RawValue ReadRaw(HKEY key, const std::wstring& name);
void WriteRaw(HKEY key, const std::wstring& name, const RawValue& value);

/// A fresh key Software\KelInsInfraTests\<number> under a root key, removed with all below it.
class RegistryRoot
{
public:
    /// @param viewFlag  0, KEY_WOW64_32KEY or KEY_WOW64_64KEY.
    /// @param path      the Path of another one, in the other view.
    explicit RegistryRoot(HKEY root = HKEY_CURRENT_USER, REGSAM viewFlag = 0, std::string path = NewPath());
    ~RegistryRoot();
    RegistryRoot(const RegistryRoot&) = delete;
    RegistryRoot& operator=(const RegistryRoot&) = delete;

    /// Open for reading and writing, owned by this.
    [[nodiscard]] HKEY Handle() const { return key_; }

    /// UTF-8 path from the root key.
    [[nodiscard]] std::string Path() const;

    [[nodiscard]] std::string operator/(const std::string& name) const { return Path() + '\\' + name; }

private:
    static std::string NewPath();

    HKEY root_;
    REGSAM viewFlag_;
    std::string path_;
    HKEY key_ = nullptr;
};

/// While this lives, a predefined key (such as HKEY_LOCAL_MACHINE) is another one for this process.
class PredefinedKeyOverride
{
public:
    PredefinedKeyOverride(HKEY predefined, HKEY instead);
    ~PredefinedKeyOverride();
    PredefinedKeyOverride(const PredefinedKeyOverride&) = delete;
    PredefinedKeyOverride& operator=(const PredefinedKeyOverride&) = delete;

private:
    HKEY predefined_;
};
