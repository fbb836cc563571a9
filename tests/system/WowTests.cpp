// IsWOW64 and IsRTOS64 under systems other than the one at hand: the entries that they look up are replaced. They are
// looked up once per process, hence one process for each test.

#include "tests/support/ImportHook.h"
#include <KelInsInfra/system/KelInsSys.h>
#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using EntryHook = ImportHook<FARPROC(HMODULE, LPCSTR)>;
using ModuleHook = ImportHook<HMODULE(LPCWSTR)>;
using SystemInfoHook = ImportHook<std::intptr_t(LPSYSTEM_INFO)>; // its result, really none, is not looked at

enum class Wow
{
    EntryAbsent,
    CallFails,
    No,
    Yes,
};

constexpr WORD kIntel = 0;
constexpr WORD kAmd64 = 9;
constexpr WORD kArm64 = 12;
constexpr WORD kEntryAbsent = 0xFFFE;

struct WowCase
{
    const char* label;
    Wow wow;
    WORD nativeArchitecture; ///< what GetNativeSystemInfo says
    WORD architecture;       ///< what GetSystemInfo says
    bool isWow64;
    bool isRtos64;

    friend void PrintTo(const WowCase& c, std::ostream* out) { *out << c.label; }
};

constexpr WowCase kWowCases[] = {
    {"Process64On64", Wow::No, kArm64, kAmd64, false, true}, // the native entry is not asked
    {"Process32On64", Wow::Yes, kAmd64, kIntel, true, true},
    {"Process32On32", Wow::No, kAmd64, kIntel, false, false},
    {"Process32OnArm64", Wow::Yes, kArm64, kIntel, true, false},
    {"ProcessArm64", Wow::No, kAmd64, kArm64, false, false},
    {"WowEntryAbsent", Wow::EntryAbsent, kAmd64, kIntel, false, false},
    {"WowEntryAbsentOn64", Wow::EntryAbsent, kArm64, kAmd64, false, true},
    {"WowCallFails", Wow::CallFails, kAmd64, kIntel, false, false},
    {"NativeEntryAbsent", Wow::Yes, kEntryAbsent, kIntel, true, false},
    {"NativeEntryAbsentButAmd64", Wow::Yes, kEntryAbsent, kAmd64, true, true},
    {"BothEntriesAbsent", Wow::EntryAbsent, kEntryAbsent, kAmd64, false, true},
    {"Itanium", Wow::No, kAmd64, 6, false, false},
    {"UnknownArchitecture", Wow::Yes, 0xFFFF, kAmd64, true, false},
};

/// Stands for a system that says what the case says.
class WowIsolated : public testing::TestWithParam<WowCase>
{
protected:
    static BOOL WINAPI IsWow64Process(HANDLE process, PBOOL isWow64)
    {
        EXPECT_EQ(process, ::GetCurrentProcess());
        EXPECT_EQ(*isWow64, FALSE);
        *isWow64 = GetParam().wow == Wow::Yes;
        if (GetParam().wow == Wow::CallFails)
            *isWow64 = 5;
        return GetParam().wow != Wow::CallFails;
    }

    static void WINAPI GetNativeSystemInfo(LPSYSTEM_INFO info)
    {
        info->wProcessorArchitecture = GetParam().nativeArchitecture;
    }

    FARPROC Find(HMODULE library, LPCSTR entry)
    {
        const std::string name = entry;
        if (name == "IsWow64Process")
            return GetParam().wow == Wow::EntryAbsent ? nullptr : Entry(reinterpret_cast<void*>(&IsWow64Process));
        if (name == "GetNativeSystemInfo")
            return GetParam().nativeArchitecture == kEntryAbsent ? nullptr
                                                                 : Entry(reinterpret_cast<void*>(&GetNativeSystemInfo));
        return entry_.CallOriginal(library, entry);
    }

    [[nodiscard]] std::ptrdiff_t LookUps(const std::string& name) const
    {
        return std::count_if(entry_.Calls().begin(), entry_.Calls().end(),
                             [&](const EntryHook::Call& call) { return std::get<1>(call) == name; });
    }

    static FARPROC Entry(void* function) { return reinterpret_cast<FARPROC>(function); }

    EntryHook entry_{"GetProcAddress", [this](HMODULE library, LPCSTR entry) { return Find(library, entry); }};
    SystemInfoHook systemInfo_{"GetSystemInfo", [](LPSYSTEM_INFO info) {
                                   info->wProcessorArchitecture = GetParam().architecture;
                                   return std::intptr_t{0};
                               }};
};

TEST_P(WowIsolated, SaysWhatTheSystemSays)
{
    const ModuleHook module("GetModuleHandleW");
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(KelInsSys::IsRTOS64(), GetParam().isRtos64);
        EXPECT_EQ(KelInsSys::IsWOW64(), GetParam().isWow64);
    }
    EXPECT_EQ(LookUps("IsWow64Process"), 1);
    EXPECT_EQ(LookUps("GetNativeSystemInfo"), 1);
    EXPECT_THAT(module.Calls(), testing::ElementsAre(ModuleHook::Call(L"kernel32"), ModuleHook::Call(L"kernel32")));
    const bool asksNative = GetParam().isWow64 && GetParam().nativeArchitecture != kEntryAbsent;
    EXPECT_EQ(systemInfo_.Calls().size(), asksNative ? 0U : 3U);
}

INSTANTIATE_TEST_SUITE_P(Table, WowIsolated, testing::ValuesIn(kWowCases),
                         [](const auto& test) { return std::string(test.param.label); });

TEST(Wow, ThisProcessIs64BitOn64Bit)
{
    EXPECT_FALSE(KelInsSys::IsWOW64());
    EXPECT_TRUE(KelInsSys::IsRTOS64());
}

} // namespace
