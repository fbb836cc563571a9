// Sizes that installers do not meet, and attackers make: a program of its own, for the long runs.

#include "tests/support/Files.h"
#include "tests/support/HandleCount.h"
#include "tests/support/RegistryRoot.h"
#include "tests/support/TempDirectory.h"
#include "tests/system/Child.h"
#include <KelInsInfra/config/KelInsIniFile.h>
#include <KelInsInfra/io/FindFile.h>
#include <KelInsInfra/io/KelInsIO.h>
#include <KelInsInfra/registry/KelInsReg.h>
#include <KelInsInfra/system/KelInsSys.h>
#include <KelInsInfra/system/ProcessBuilder.h>
#include <chrono>
#include <gtest/gtest.h>

namespace {

constexpr auto kNoView = KelInsReg::RegistryView::DoNotForceRegView;

/// Prints how long a step takes.
template <typename Step>
void Timed(const char* what, const Step& step)
{
    const auto begin = std::chrono::steady_clock::now();
    step();
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - begin;
    std::printf("%-40s %8.2f s\n", what, seconds.count());
}

std::size_t CountFiles(const std::string& directory)
{
    std::size_t count = 0;
    for (KelInsIO::FindFile entry(directory, KelInsIO::Type::File | KelInsIO::Type::Directory); !entry.End();
         entry.Next())
        count += entry.IsFile() ? 1U : CountFiles(entry.GetPath());
    return count;
}

TEST(Scale, HundredThousandFiles)
{
    const TempDirectory directory;
    const std::size_t handles = HandleCount();
    Timed("make 100,000 files", [&] {
        for (int folder = 0; folder < 100; ++folder) {
            const std::string path = directory / ("tree\\" + std::to_string(folder));
            KelInsIO::CreateDir(path);
            for (int file = 0; file < 1000; ++file)
                MakeFile(path + '\\' + std::to_string(file));
        }
    });
    Timed("copy them", [&] { KelInsIO::Copy(directory / "tree", directory / "copy"); });
    Timed("walk the copy", [&] { EXPECT_EQ(CountFiles(directory / "copy"), 100'000U); });
    Timed("delete both", [&] {
        KelInsIO::Delete(directory / "tree");
        KelInsIO::Delete(directory / "copy");
    });
    EXPECT_EQ(TreeNames(directory.Path()), std::vector<std::string>());
    EXPECT_EQ(HandleCount(), handles);
}

TEST(Scale, TenThousandValuesAndFiveThousandKeys)
{
    const RegistryRoot root;
    const auto key = KelInsReg::CreateKey(KelInsReg::RootKey::CurrentUser, root.Path() + "\\many", kNoView);
    const std::size_t handles = HandleCount();
    Timed("make 10,000 values, 5,000 keys", [&] {
        for (int i = 0; i < 10'000; ++i)
            KelInsReg::SetValue(key, "value " + std::to_string(i), i);
        for (int i = 0; i < 5'000; ++i)
            KelInsReg::CreateKey(key, "key " + std::to_string(i), kNoView);
    });
    std::vector<std::string> names;
    Timed("list them", [&] {
        EXPECT_EQ(KelInsReg::GetValues(key, names), 10'000U);
        EXPECT_EQ(KelInsReg::GetSubkeys(key, names), 5'000U);
    });
    Timed("delete them",
          [&] { KelInsReg::DeleteKeyTree(KelInsReg::RootKey::CurrentUser, root.Path() + "\\many", kNoView); });
    EXPECT_EQ(HandleCount(), handles);
}

TEST(Scale, LineOf256MiB)
{
    const TempDirectory directory;
    const std::string file = directory / "large.ini";
    const std::string value(std::size_t{256} << 20, 'v');
    Timed("write a line of 256 MiB",
          [&] { KelInsIniFile::Write(file, "S", "K", value, KelInsIniFile::Where::Replace, ';', false); });
    Timed("write a key after it",
          [&] { KelInsIniFile::Write(file, "S", "L", "1", KelInsIniFile::Where::Replace, ';', false); });
    Timed("read both", [&] {
        EXPECT_TRUE(KelInsIniFile::ReadValueOfKey(file, "S", "K") == value);
        EXPECT_EQ(KelInsIniFile::ReadValueOfKey(file, "S", "L"), "1");
    });
}

/// Wine on a busy machine refuses one start in some thousand, with this code, whoever asks for it: then once more.
bool StartChild(KelInsSys::ProcessBuilder& child, int& refusals)
{
    while (!child.Start(false)) {
        const DWORD error = ::GetLastError();
        if (error != ERROR_INTERNAL_ERROR || ++refusals > 100)
            return false;
        ::Sleep(100);
    }
    return true;
}

TEST(Scale, ManyChildren)
{
    const char* wanted = std::getenv("KELINS_SCALE_CHILDREN");
    const int count = wanted != nullptr ? std::atoi(wanted) : 10'000;
    int refusals = 0;
    const auto run = [&](int code) {
        KelInsSys::ProcessBuilder child(ChildCommand("exit " + std::to_string(code)));
        return StartChild(child, refusals) ? child.Wait() : -1;
    };
    EXPECT_EQ(run(3), 3);
    const std::size_t handles = HandleCount();
    Timed("start children and wait for them", [&] {
        for (int i = 0; i < count; ++i)
            ASSERT_EQ(run(i % 200), i % 200) << "child " << i;
    });
    EXPECT_EQ(HandleCount(), handles);
    std::printf("%-40s %8d\n", "refused by the system, and repeated", refusals);
}

/// The last: the entries stay, and a child would inherit them.
TEST(Scale, EnvironmentOf30000Entries)
{
    const std::size_t before = KelInsSys::GetEnvironment().size();
    Timed("make 30,000 entries", [] {
        for (int i = 0; i < 30'000; ++i)
            ::SetEnvironmentVariableA(("KELINS_SCALE_" + std::to_string(i)).c_str(), "x");
    });
    Timed("list them", [&] { EXPECT_EQ(KelInsSys::GetEnvironment().size(), before + 30'000); });
}

} // namespace
