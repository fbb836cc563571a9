#pragma once

#include "SystemFailure.h"

#include "tests/support/RegistryRoot.h"
#include <KelInsInfra/foundation/KelInsString.h>
#include <KelInsInfra/registry/KelInsReg.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

using Names = std::vector<std::string>;

constexpr auto kNoView = KelInsReg::RegistryView::DoNotForceRegView;

/// What the system's own calls say about the keys below one.
inline bool Exists(HKEY parent, const std::string& path)
{
    HKEY key = nullptr;
    if (::RegOpenKeyExW(parent, KelInsString::Widen(path).c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS)
        return false;
    ::RegCloseKey(key);
    return true;
}

inline void MakeKey(HKEY parent, const std::wstring& path)
{
    HKEY key = nullptr;
    ASSERT_EQ(::RegCreateKeyW(parent, path.c_str(), &key), ERROR_SUCCESS);
    ::RegCloseKey(key);
}

/// For a Key to own.
inline HKEY Duplicate(HKEY key)
{
    HKEY copy = nullptr;
    EXPECT_EQ(::RegOpenKeyExW(key, L"", 0, KEY_ALL_ACCESS, &copy), ERROR_SUCCESS);
    return copy;
}

/// A key of the test's own, and the library's Key of it.
class RegistryKeys : public testing::Test
{
protected:
    const RegistryRoot root_;
    const KelInsReg::Key parent_{Duplicate(root_.Handle())};
};

/// An integer whose bytes all show whether they were overwritten.
constexpr std::int32_t kBefore = 0x44332211;

/// The same with what stands in it, raw and through the library.
class RegistryValues : public testing::Test
{
protected:
    void Store(const wchar_t* name, DWORD type, const std::string& bytes) const
    {
        WriteRaw(root_.Handle(), name, {type, bytes});
    }

    RawValue Stored(const wchar_t* name) const { return ReadRaw(root_.Handle(), name); }

    std::string Text(const std::string& name) const
    {
        std::string value = "before";
        KelInsReg::GetValue(key_, name, value, kNoView);
        return value;
    }

    std::int32_t Integer(const std::string& name) const
    {
        std::int32_t value = kBefore;
        KelInsReg::GetValue(key_, name, value, kNoView);
        return value;
    }

    const RegistryRoot root_;
    const KelInsReg::Key key_{Duplicate(root_.Handle())};
};
