// Each system call of the strings, the environment and the error texts fails once.

#include "../support/ImportHook.h"

#include <KelInsInfra/foundation/KelInsEnv.h>
#include <KelInsInfra/foundation/KelInsString.h>
#include <KelInsInfra/foundation/KelInsSys.h>
#include <cerrno>
#include <cstring>
#include <cwchar>
#include <gtest/gtest.h>
#include <new>

namespace {

using WidenSignature = int(UINT, DWORD, LPCCH, int, LPWSTR, int);
using NarrowSignature = int(UINT, DWORD, LPCWCH, int, LPSTR, int, LPCCH, LPBOOL);
using FormatSignature = DWORD(DWORD, LPCVOID, DWORD, DWORD, LPWSTR, DWORD, char**);

const std::string kShort = "\xC3\xA9"; // not ASCII, so that the system is asked
const std::string kLong(2000, '\xC3'); // asked twice: for the size, then for the text
const std::wstring kWideLong(2000, L'\u00E9');

TEST(WidenFailure, GivesEmptyText)
{
    ImportHook<WidenSignature> hook("MultiByteToWideChar");
    hook.FailCall(1, 0, LastError(ERROR_NO_UNICODE_TRANSLATION)); // short
    hook.FailCall(2, 0, LastError(ERROR_NO_UNICODE_TRANSLATION)); // long, the size
    hook.FailCall(4, 0, LastError(ERROR_NO_UNICODE_TRANSLATION)); // long, the text
    EXPECT_EQ(KelInsString::Widen(kShort), L"");
    EXPECT_EQ(KelInsString::Widen(kLong), L"");
    EXPECT_EQ(KelInsString::Widen(kLong), L"");
    EXPECT_EQ(hook.Calls().size(), 4U);
    EXPECT_EQ(KelInsString::Widen(kShort), L"\u00E9");
}

TEST(GetErrnoMessage, WithoutMemoryForTheText)
{
    ImportHook<char*(int)> hook("strerror");
    hook.FailCall(1, nullptr, NoCode());
    EXPECT_THROW(KelInsSys::GetErrnoMessage(EACCES), std::bad_alloc);
    EXPECT_NE(KelInsSys::GetErrnoMessage(EACCES), "");
}

TEST(NarrowFailure, GivesEmptyText)
{
    ImportHook<NarrowSignature> hook("WideCharToMultiByte");
    hook.FailCall(1, 0, LastError(ERROR_NO_UNICODE_TRANSLATION));
    hook.FailCall(2, 0, LastError(ERROR_NO_UNICODE_TRANSLATION));
    hook.FailCall(4, 0, LastError(ERROR_NO_UNICODE_TRANSLATION));
    EXPECT_EQ(KelInsString::Narrow(L"\u00E9"), "");
    EXPECT_EQ(KelInsString::Narrow(kWideLong), "");
    EXPECT_EQ(KelInsString::Narrow(kWideLong), "");
    EXPECT_EQ(hook.Calls().size(), 4U);
    EXPECT_EQ(KelInsString::Narrow(L"\u00E9"), "\xC3\xA9");
}

TEST(Conversion, AsksForUtf8WithoutFlags)
{
    ImportHook<WidenSignature> widen("MultiByteToWideChar");
    ImportHook<NarrowSignature> narrow("WideCharToMultiByte");
    KelInsString::Widen(kShort);
    KelInsString::Narrow(L"\u00E9");
    EXPECT_EQ(std::get<0>(widen.Calls().at(0)), 65001U);
    EXPECT_EQ(std::get<1>(widen.Calls().at(0)), 0U);
    EXPECT_EQ(std::get<0>(narrow.Calls().at(0)), 65001U);
    EXPECT_EQ(std::get<1>(narrow.Calls().at(0)), 0U);
    EXPECT_EQ(std::get<7>(narrow.Calls().at(0)), nullptr);
}

TEST(ErrorText, CodeZeroDoesNotAskTheSystem)
{
    const ImportHook<FormatSignature> hook("FormatMessageW");
    EXPECT_EQ(KelInsSys::GetLastErrorMessage(0), "");
    EXPECT_TRUE(hook.Calls().empty());
}

TEST(ErrorText, IsAskedForAsDocumented)
{
    const ImportHook<FormatSignature> hook("FormatMessageW");
    KelInsSys::GetLastErrorMessage(ERROR_FILE_NOT_FOUND);
    ASSERT_EQ(hook.Calls().size(), 1U);
    const auto& [flags, source, code, language, buffer, size, arguments] = hook.Calls().front();
    EXPECT_EQ(flags, 0x1300U);
    EXPECT_EQ(source, nullptr);
    EXPECT_EQ(code, 2U);
    EXPECT_EQ(language, 0U);
    EXPECT_NE(buffer, nullptr);
    EXPECT_EQ(size, 0U);
    EXPECT_EQ(arguments, nullptr);
}

TEST(ErrorText, IsEmptyWhenTheSystemFails)
{
    ImportHook<FormatSignature> hook("FormatMessageW");
    hook.FailCall(1, 0, LastError(ERROR_NOT_ENOUGH_MEMORY));
    EXPECT_EQ(KelInsSys::GetLastErrorMessage(ERROR_FILE_NOT_FOUND), "");
}

/// Lets the system answer with a text of ours, in a buffer that is released as the system's own.
DWORD Answer(const wchar_t* text, LPWSTR buffer)
{
    const std::size_t bytes = (std::wcslen(text) + 1) * sizeof(wchar_t);
    auto* copy = static_cast<wchar_t*>(::LocalAlloc(LMEM_FIXED, bytes));
    std::memcpy(copy, text, bytes);
    std::memcpy(buffer, &copy, sizeof(copy));
    return static_cast<DWORD>(std::wcslen(text));
}

TEST(ErrorText, LosesOneFinalLineEndAlone)
{
    const struct
    {
        const wchar_t* answer;
        const char* text;
    } cases[] = {
        {L"Gone.\r\n", "Gone."},
        {L"Gone.\r\n\r\n", "Gone.\r\n"},
        {L"Gone. \n", "Gone. \n"},
        {L"Gone.\r", "Gone.\r"},
        {L"\r\n", ""},
        {L"\n", "\n"},
        {L"Two\r\nlines.\r\n", "Two\r\nlines."},
        {L"Caf\u00E9.\r\n", "Caf\xC3\xA9."},
    };

    for (const auto& c : cases) {
        ImportHook<FormatSignature> format("FormatMessageW", [&](DWORD, LPCVOID, DWORD, DWORD, LPWSTR buffer, DWORD,
                                                                 char**) { return Answer(c.answer, buffer); });
        const ImportHook<HLOCAL(HLOCAL)> release("LocalFree");
        EXPECT_EQ(KelInsSys::GetLastErrorMessage(5), c.text);
        EXPECT_EQ(release.Calls().size(), 1U) << "the system's buffer is released once";
    }
}

TEST(ToSizeT, NeedsNoMemory)
{
    ImportHook<void*(std::size_t)> memory("malloc");
    memory.FailFrom(1, nullptr, Errno(ENOMEM));
    EXPECT_EQ(KelInsString::ToSize_t("34y", 5), 34U);
}

TEST(EnvironmentFailure, IsNotReported)
{
    KelInsEnv::PutEnv("KELINS_TEST_FAILURE", "before"); // the stubs are looked up by now
    ImportHook<errno_t(const wchar_t*, const wchar_t*)> put("_wputenv_s");
    put.FailCall(1, EINVAL, Errno(EINVAL));
    EXPECT_NO_THROW(KelInsEnv::PutEnv("KELINS_TEST_FAILURE", "after"));
    EXPECT_EQ(KelInsEnv::GetEnv("KELINS_TEST_FAILURE"), "before");
    ImportHook<wchar_t*(const wchar_t*)> get("_wgetenv");
    get.FailCall(1, nullptr, NoCode());
    EXPECT_EQ(KelInsEnv::GetEnv("KELINS_TEST_FAILURE"), "");
}

} // namespace
