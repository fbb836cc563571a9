#include "RegistryRoot.h"

#include <atomic>
#include <stdexcept>
#include <utility>

namespace {

constexpr const char* kFolder = "Software\\KelInsInfraTests";

void Check(LSTATUS status, const std::string& what)
{
    if (status != ERROR_SUCCESS)
        throw std::runtime_error(what + ": status " + std::to_string(status));
}

} // namespace

std::string BytesOf(const std::wstring& units)
{
    return {reinterpret_cast<const char*>(units.data()), units.size() * sizeof(wchar_t)};
}

RawValue ReadRaw(HKEY key, const std::wstring& name)
{
    RawValue value;
    DWORD byteCount = 0;
    Check(::RegQueryValueExW(key, name.c_str(), nullptr, nullptr, nullptr, &byteCount), "ReadRaw");
    value.bytes.resize(byteCount);
    Check(::RegQueryValueExW(key, name.c_str(), nullptr, &value.type, reinterpret_cast<BYTE*>(value.bytes.data()),
                             &byteCount),
          "ReadRaw");
    return value;
}

void WriteRaw(HKEY key, const std::wstring& name, const RawValue& value)
{
    Check(::RegSetValueExW(key, name.c_str(), 0, value.type, reinterpret_cast<const BYTE*>(value.bytes.data()),
                           static_cast<DWORD>(value.bytes.size())),
          "WriteRaw");
}

std::string RegistryRoot::NewPath()
{
    static std::atomic<unsigned> counter = 0;
    std::string path = kFolder;
    path.append("\\").append(std::to_string(::GetCurrentProcessId()));
    return path.append("_").append(std::to_string(counter++));
}

RegistryRoot::RegistryRoot(HKEY root, REGSAM viewFlag, std::string path)
    : root_(root), viewFlag_(viewFlag), path_(std::move(path))
{
    Check(::RegCreateKeyExA(root_, path_.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS | viewFlag_, nullptr, &key_, nullptr),
          "RegistryRoot");
}

RegistryRoot::~RegistryRoot()
{
    ::RegDeleteTreeW(key_, nullptr);
    ::RegCloseKey(key_);
    ::RegDeleteKeyExA(root_, path_.c_str(), viewFlag_, 0);
    ::RegDeleteKeyExA(root_, kFolder, viewFlag_, 0); // fails while other tests have theirs
}

std::string RegistryRoot::Path() const
{
    return path_;
}

PredefinedKeyOverride::PredefinedKeyOverride(HKEY predefined, HKEY instead) : predefined_(predefined)
{
    Check(::RegOverridePredefKey(predefined_, instead), "PredefinedKeyOverride");
}

PredefinedKeyOverride::~PredefinedKeyOverride()
{
    ::RegOverridePredefKey(predefined_, nullptr);
}
