#include "RegistryFixtures.h"

#include "tests/support/ExpectThrowsText.h"
#include "tests/support/HandleCount.h"
#include "tests/support/ImportHook.h"
#include <KelInsInfra/foundation/KelInsString.h>
#include <gtest/gtest.h>

namespace {

using namespace KelInsReg;

struct ViewCase
{
    const char* label;
    std::uint32_t view;
    REGSAM flag; ///< on 64-bit Windows
    const char* name;
    bool deletesWithView; ///< on 64-bit Windows

    friend void PrintTo(const ViewCase& c, std::ostream* out) { *out << c.label; }
};

constexpr ViewCase kViews[] = {
    {"DoNotForce", 0, 0, "DoNotForceRegView", false},
    {"Force32", 1, KEY_WOW64_32KEY, "Force32RegView", true},
    {"Force64", 2, KEY_WOW64_64KEY, "Force64RegView", true},
    {"Unknown3", 3, 0, "DoNotForceRegView", true},
    {"UnknownHighest", 0xFFFFFFFF, 0, "DoNotForceRegView", true},
};

void Report32BitProcessor(SYSTEM_INFO* info)
{
    *info = {};
    info->wProcessorArchitecture = PROCESSOR_ARCHITECTURE_INTEL;
}

/// The calls that a view leads to, each failing with a code of its own.
class Views : public testing::TestWithParam<ViewCase>
{
protected:
    static constexpr RootKey kParent = RootKey::CurrentUser;
    const RegistryView view_ = static_cast<RegistryView>(GetParam().view);
    const std::string name_ = GetParam().name;

    void ExpectCalls(REGSAM flag, bool deletesWithView)
    {
        ExpectOpening(AccessRights::ReadOnly, "ReadOnly", KEY_READ | flag);
        ExpectOpening(AccessRights::ReadWrite, "ReadWrite", KEY_READ | KEY_WRITE | flag);
        ExpectOpening(static_cast<AccessRights>(2), "ReadOnly", KEY_READ | flag);
        ExpectCreation(flag);
        ExpectDeletion(flag, deletesWithView);
    }

private:
    void ExpectOpening(AccessRights access, const std::string& accessName, REGSAM mask)
    {
        ImportHook<LSTATUS(HKEY, LPCWSTR, DWORD, REGSAM, PHKEY)> hook("RegOpenKeyExW");
        hook.FailFrom(1, ERROR_BADKEY, NoCode());
        ExpectThrowsText<std::runtime_error>(
            [&] { OpenKey(kParent, R"(a\b)", access, view_); },
            SystemFailure(R"(OpenKey - a\b, )" + accessName + ", " + name_, ERROR_BADKEY));
        ASSERT_EQ(hook.Calls().size(), 1U);
        const auto& [parent, path, options, actualMask, result] = hook.Calls().front();
        EXPECT_EQ(parent, HKEY_CURRENT_USER);
        EXPECT_EQ(path, L"a\\b");
        EXPECT_EQ(options, 0U);
        EXPECT_EQ(actualMask, mask);
    }

    void ExpectCreation(REGSAM flag)
    {
        ImportHook<LSTATUS(HKEY, LPCWSTR, DWORD, LPWSTR, DWORD, REGSAM, LPSECURITY_ATTRIBUTES, PHKEY, LPDWORD)> hook(
            "RegCreateKeyExW");
        hook.FailFrom(1, ERROR_CANTWRITE, NoCode());
        ExpectThrowsText<std::runtime_error>([&] { CreateKey(kParent, R"(a\b)", view_); },
                                             SystemFailure(R"(CreateKey - a\b, )" + name_, ERROR_CANTWRITE));
        ASSERT_EQ(hook.Calls().size(), 1U);
        const auto& [parent, path, reserved, keyClass, options, mask, security, result, disposition] =
            hook.Calls().front();
        EXPECT_EQ(parent, HKEY_CURRENT_USER);
        EXPECT_EQ(path, L"a\\b");
        EXPECT_EQ(reserved, 0U);
        EXPECT_EQ(keyClass, nullptr);
        EXPECT_EQ(options, 0U);
        EXPECT_EQ(mask, KEY_READ | KEY_WRITE | flag);
        EXPECT_EQ(security, nullptr);
        EXPECT_EQ(disposition, nullptr);
    }

    void ExpectDeletion(REGSAM flag, bool withView)
    {
        ImportHook<LSTATUS(HKEY, LPCWSTR)> plain("RegDeleteKeyW");
        ImportHook<LSTATUS(HKEY, LPCWSTR, REGSAM, DWORD)> viewed("RegDeleteKeyExW");
        plain.FailFrom(1, ERROR_ACCESS_DENIED, NoCode());
        viewed.FailFrom(1, ERROR_ACCESS_DENIED, NoCode());
        ExpectThrowsText<std::runtime_error>([&] { DeleteKey(kParent, R"(a\b)", view_); },
                                             SystemFailure(R"(DeleteKey - a\b, )" + name_, ERROR_ACCESS_DENIED));
        using Plain = decltype(plain)::Call;
        using Viewed = decltype(viewed)::Call;
        const Plain expectedPlain(HKEY_CURRENT_USER, L"a\\b");
        const Viewed expectedViewed(HKEY_CURRENT_USER, L"a\\b", flag, 0);
        EXPECT_EQ(plain.Calls(), withView ? std::vector<Plain>() : std::vector{expectedPlain});
        EXPECT_EQ(viewed.Calls(), withView ? std::vector{expectedViewed} : std::vector<Viewed>());
    }
};

TEST_P(Views, SetTheirFlagAndTheirNameOn64BitWindows)
{
    ExpectCalls(GetParam().flag, GetParam().deletesWithView);
}

/// The kind of system is asked for once.
class IsolatedViews : public Views
{};

TEST_P(IsolatedViews, SetNoFlagOn32BitWindowsButKeepTheirName)
{
    const ImportSlots processor("GetSystemInfo", {}, reinterpret_cast<void*>(&Report32BitProcessor));
    ExpectCalls(0, false);
}

INSTANTIATE_TEST_SUITE_P(All, Views, testing::ValuesIn(kViews), LabelOf<ViewCase>);
INSTANTIATE_TEST_SUITE_P(All, IsolatedViews, testing::ValuesIn(kViews), LabelOf<ViewCase>);

} // namespace
