#include "../Checks.h"
#include "../Install.h"
#include "../InstallList.h"
#include "../Receipt.h"
#include "../Registration.h"
#include "../Uninstall.h"
#include "../Upgrade.h"
#include "SamplePayload.h"
#include <KelInsInfra/config/KelInsIniFile.h>
#include <KelInsInfra/foundation/KelInsSys.h>
#include <KelInsInfra/io/FindFile.h>
#include <KelInsInfra/io/KelInsIO.h>
#include <KelInsInfra/registry/KelInsReg.h>
#include <KelInsInfra/system/KelInsSys.h>
#include <gmock/gmock.h>

namespace {

using KelInsIO::Exists;
using KelInsReg::RegistryView;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;
using testing::ThrowsMessage;

const std::string kProduct = "Orchard Server";
const std::string kInUse = KelInsSys::GetLastErrorMessage(32); // ERROR_SHARING_VIOLATION

/// A value of the product's entry among the installed programs; empty where there is none.
std::string EntryText(const std::string& name, RegistryView view)
{
    std::string text;
    try {
        KelInsReg::GetValue(KelInsReg::RootKey::LocalMachine,
                            R"(Software\Microsoft\Windows\CurrentVersion\Uninstall\Orchard Server)", name, text, view);
    } catch (const std::runtime_error&) { // no entry: empty
    }
    return text;
}

class Installation : public testing::Test
{
protected:
    void Install(const Setup::Properties& options = {})
    {
        Setup::Install(sample.root, sample.target, options, sample.log);
    }

    void Uninstall() { Setup::Uninstall(sample.target, sample.log); }

    /// Fails with a text, and leaves nothing.
    template <typename Matcher>
    void ExpectRefused(const Matcher& text, const Setup::Properties& options = {})
    {
        EXPECT_THAT([&] { Install(options); }, ThrowsMessage<std::runtime_error>(text));
        EXPECT_FALSE(Exists(sample.place / "a"));
        EXPECT_FALSE(Setup::FindRegistration(kProduct));
    }

    SamplePayload sample;
    const std::string& payload = sample.root;
    const std::string& target = sample.target;
    const std::string server = target + R"(\server\server.ini)";
    const std::string list = target + "\\" + Setup::InstallList::kFileName;
};

TEST_F(Installation, ComesAndGoes)
{
    Install();
    EXPECT_TRUE(KelInsIO::IsFile(target + R"(\docs\read me.txt)"));
    EXPECT_TRUE(KelInsIO::IsDirectory(target + R"(\empty)"));
    EXPECT_TRUE(KelInsIO::IsFile(list));
    EXPECT_TRUE(KelInsIO::IsFile(server));
    EXPECT_FALSE(Exists(target + R"(\server\orchard.msi)"));

    Uninstall();
    EXPECT_FALSE(Exists(target));
    EXPECT_TRUE(Exists(sample.place / "a")); // others may have come to use it
}

TEST_F(Installation, StandsAmongTheInstalledProgramsInBothViews)
{
    Install();
    for (const RegistryView view : {RegistryView::Force32RegView, RegistryView::Force64RegView}) {
        EXPECT_EQ(EntryText("DisplayName", view), kProduct);
        EXPECT_EQ(EntryText("DisplayVersion", view), "1.0.0");
        EXPECT_EQ(EntryText("Publisher", view), "Orchard Company");
        EXPECT_EQ(EntryText("InstallLocation", view), target);
        EXPECT_EQ(EntryText("UninstallString", view),
                  '"' + KelInsSys::GetExecutablePath() + "\" uninstall \"" + target + '"');
    }
    Uninstall();
    for (const RegistryView view : {RegistryView::Force32RegView, RegistryView::Force64RegView})
        EXPECT_EQ(EntryText("DisplayName", view), "");
}

TEST_F(Installation, IsNotMadeTwice)
{
    Install();
    EXPECT_THAT([&] { Setup::Install(payload, sample.place / "other", {}, sample.log); },
                ThrowsMessage<std::runtime_error>("Orchard Server 1.0.0 is installed in " + target +
                                                  ".\nUninstall it first: setup uninstall \"" + target + '"'));
    EXPECT_FALSE(Exists(sample.place / "other"));
}

TEST_F(Installation, UninstallsWhatIsRegisteredElsewhereOnlyThere)
{
    Install();
    KelInsIO::Copy(target, sample.place / "copy");
    Setup::Uninstall(sample.place / "copy", sample.log);
    EXPECT_FALSE(Exists((sample.place / "copy") + R"(\docs)"));
    EXPECT_TRUE(Exists(server));
    EXPECT_EQ(EntryText("InstallLocation", RegistryView::Force64RegView), target);
}

TEST_F(Installation, BrokenReceiptStopsTheUninstallation)
{
    Install();
    const std::string receipt = target + R"(\state.json)";
    const std::string text = ReadFile(receipt);
    WriteFile(receipt, text.substr(0, 40));
    EXPECT_THAT(
        [&] { Uninstall(); },
        ThrowsMessage<std::runtime_error>(
            AllOf(StartsWith("The file " + receipt + " is not JSON: it was damaged or cut off.\nNothing was changed."),
                  HasSubstr("or delete it, and try again"))));
    EXPECT_TRUE(Exists(target + R"(\docs\read me.txt)"));

    KelInsIO::Delete(receipt); // as it says
    Uninstall();
    EXPECT_FALSE(Exists(target + R"(\docs\read me.txt)"));
    EXPECT_TRUE(Exists(server));
    EXPECT_TRUE(Setup::FindRegistration(kProduct));
}

TEST_F(Installation, KeepsAFolderThatWasThereBefore)
{
    KelInsIO::CreateDir(target);
    Install();
    Uninstall();
    EXPECT_TRUE(KelInsIO::FindFile::IsDirectoryEmpty(target) && KelInsIO::IsDirectory(target));
}

TEST_F(Installation, CanBeUninstalledAgainOnceAFileIsNoLongerInUse)
{
    Install();
    const std::string file = target + R"(\docs/read me.txt)";
    {
        const std::ifstream user = KelInsIO::GetInputFileStream(file, {});
        EXPECT_THAT([&] { Uninstall(); },
                    ThrowsMessage<std::runtime_error>(
                        "Not everything could be removed:\n  DeleteFile - " + file + " - " + kInUse +
                        "\nClose the programs that use these files, and uninstall again."));
        EXPECT_TRUE(Exists(file));
        EXPECT_TRUE(Exists(list));
        EXPECT_TRUE(Setup::FindRegistration(kProduct));
        EXPECT_FALSE(Exists(target + R"(\settings.ini)"));
        EXPECT_FALSE(Exists(target + R"(\empty)"));
    }
    Uninstall();
    EXPECT_FALSE(Exists(target));
    EXPECT_FALSE(Setup::FindRegistration(kProduct));
}

TEST_F(Installation, FailureLeavesNothing)
{
    sample.Write("start.env", "APP_HOME=x\n");
    ExpectRefused(AllOf(HasSubstr("missing \"export APP_HOME\" at the end."),
                        HasSubstr("Nothing was installed: what had been copied is removed again.")));
}

TEST_F(Installation, FailureOfThePackageLeavesNothing)
{
    ExpectRefused(AllOf(StartsWith("The installation of the package " + sample.package +
                                   " failed with 1603: " + KelInsSys::GetLastErrorMessage(1603)),
                        HasSubstr("Nothing was installed")),
                  {{"SERVERPORT", "65536"}});
    std::ifstream logFile(sample.log.GetFile()); // the log is still open for writing: others must allow that
    EXPECT_THAT(KelInsIO::InputStreamToString(logFile), HasSubstr("ended with 1603 "));
}

TEST_F(Installation, PayloadHeldByAnotherProgram)
{
    std::ofstream user = KelInsIO::GetOutputFileStream(payload + R"(\docs\read me.txt)", std::ios::app); // writes
    ExpectRefused("Failed to read " + payload + R"(\docs\read me.txt)");
}

TEST_F(Installation, DamagedFile)
{
    WriteFile(payload + R"(\docs\read me.txt)", "abc");
    ExpectRefused("The file " + payload + R"(\docs\read me.txt)" + " was changed: its SHA-256 digest is\n  " +
                  "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad, it should be\n  " +
                  "982d9e3eb996f559e633f4d194def3761d909f5a3b647d1a851fead67c32c9d1" +
                  "\nGet the payload again from where it came.");
}

TEST_F(Installation, MissingFile)
{
    KelInsIO::Delete(payload + R"(\docs\read me.txt)");
    ExpectRefused("The payload lacks the file docs\\read me.txt.\nGet the payload again from where it came.");
}

TEST_F(Installation, FileOutsideTheManifest)
{
    WriteFile(payload + R"(\docs\more.txt)", "");
    ExpectRefused("The payload holds a file that is not in its manifest: docs\\more.txt\n"
                  "Get the payload again from where it came.");
}

TEST_F(Installation, UnknownOption)
{
    ExpectRefused("Orchard Server has no option PORT. Its options are: SERVERPORT SITENAME", {{"PORT", "1"}});
}

TEST_F(Installation, ChecksChangeNothing)
{
    const Setup::Checked checked = Setup::CheckInstallation(payload, target, {{"SERVERPORT", "80"}}, sample.log);
    EXPECT_EQ(checked.manifest.version, "1.0.0");
    EXPECT_FALSE(Exists(sample.place / "a"));
    EXPECT_FALSE(Setup::FindRegistration(kProduct));
}

TEST_F(Installation, TheServerIsUpgradedAndKeepsItsOptions)
{
    Install({{"SERVERPORT", "8090"}, {"SITENAME", "Gr\xC3\xBCn & Co"}});
    const SamplePayload newer("2.0.0");
    Setup::Upgrade(newer.root, target, {{"SERVERPORT", "8091"}}, sample.log);

    EXPECT_EQ(KelInsIniFile::ReadValueOfKey(server, "Listen", "Port"), "8091");
    EXPECT_THAT(ReadFile(target + R"(\server\welcome.html)"), HasSubstr("<h1>Gr\xC3\xBCn & Co</h1>"));
    EXPECT_FALSE(Exists(target + R"(\server\release notes 1.0.0.txt)"));
    EXPECT_TRUE(Exists(target + R"(\server\release notes 2.0.0.txt)"));
    for (const RegistryView view : {RegistryView::Force32RegView, RegistryView::Force64RegView})
        EXPECT_EQ(EntryText("DisplayVersion", view), "2.0.0");
    Uninstall();
    EXPECT_FALSE(Exists(target));
}

TEST_F(Installation, AFailingUpgradeLeavesTheEntryAsItWas)
{
    Install();
    const SamplePayload newer("2.0.0");
    EXPECT_THAT(
        [&] {
            Setup::Upgrade(newer.root, target, {{"SERVERPORT", "0"}}, sample.log);
        },
        ThrowsMessage<std::runtime_error>(HasSubstr("failed with 1603")));
    for (const RegistryView view : {RegistryView::Force32RegView, RegistryView::Force64RegView}) {
        EXPECT_EQ(EntryText("DisplayVersion", view), "1.0.0");
        EXPECT_EQ(EntryText("PackageProductCode", view), "{A0000001-4B1D-4E0B-9C3C-1F2E3D4C5B60}");
    }
    EXPECT_THAT(ReadFile(target + R"(\state.json)"), HasSubstr(R"("version": "1.0.0")"));
}

TEST_F(Installation, IsNotUpgradedWhereItIsNot)
{
    const SamplePayload newer("2.0.0");
    EXPECT_THAT([&] { Setup::Upgrade(newer.root, target, {}, sample.log); },
                ThrowsMessage<std::runtime_error>("Orchard Server is not installed in " + target +
                                                  ".\nInstall it: setup install"));
    Install();
    EXPECT_THAT([&] { Setup::Upgrade(newer.root, newer.place.Path(), {}, sample.log); },
                ThrowsMessage<std::runtime_error>("Orchard Server is not installed in " + newer.place.Path() +
                                                  ".\nIt is in " + target + '.'));
    EXPECT_TRUE(Exists(target + R"(\server\release notes 1.0.0.txt)"));
}

TEST_F(Installation, IsNotUpgradedToTheSameVersion)
{
    Install();
    EXPECT_THAT([&] { Setup::Upgrade(payload, target, {}, sample.log); },
                ThrowsMessage<std::runtime_error>("Orchard Server 1.0.0 is installed already.\nUninstall it first."));
}

TEST_F(Installation, GivesWayToANewerVersion)
{
    const SamplePayload newer("2.0.0");
    Setup::InstallServer(newer.package, newer.target, {}, sample.log);
    ExpectRefused("Orchard Server 2.0.0 is installed, which is newer than 1.0.0.\n"
                  "Uninstall it first, if you really want to go back to the older version.");
    EXPECT_TRUE(Exists(newer.target + R"(\server\server.ini)"));
    Setup::RemovePackage("{A0000002-4B1D-4E0B-9C3C-1F2E3D4C5B60}", sample.log);
}

} // namespace
