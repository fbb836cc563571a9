#include "../Install.h"
#include "../InstallList.h"
#include "../Undo.h"
#include "../Uninstall.h"

#include "../../../tests/support/TempDirectory.h"
#include <KelInsInfra/foundation/KelInsSys.h>
#include <KelInsInfra/io/FindFile.h>
#include <KelInsInfra/io/KelInsIO.h>
#include <gmock/gmock.h>

namespace {

using KelInsIO::Exists;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::ThrowsMessage;

const std::string kInUse = KelInsSys::GetLastErrorMessage(32); // ERROR_SHARING_VIOLATION

void Write(const std::string& file, const std::string& text)
{
    KelInsIO::CreateDir(KelInsIO::Path(file).GetParent().GetPath());
    KelInsIO::GetOutputFileStream(file, {}) << text;
}

class Installation : public testing::Test
{
protected:
    Installation()
    {
        Write(payload + "\\settings.ini", "[Paths]\n");
        Write(payload + "\\start.env", "");
        Write(payload + "\\app.properties", "");
        Write(payload + "\\docs\\read me.txt", "text");
        KelInsIO::CreateDir(payload + "\\empty");
    }

    TempDirectory place;
    const std::string payload = place / "payload";
    const std::string target = place / R"(a\b)";
    const std::string list = target + "\\" + Setup::InstallList::kFileName;
};

TEST_F(Installation, ComesAndGoes)
{
    Setup::Install(payload, target);
    EXPECT_TRUE(KelInsIO::IsFile(target + R"(\docs\read me.txt)"));
    EXPECT_TRUE(KelInsIO::IsDirectory(target + R"(\empty)"));
    EXPECT_TRUE(KelInsIO::IsFile(list));

    Setup::Uninstall(target);
    EXPECT_FALSE(Exists(target));
    EXPECT_TRUE(Exists(place / "a")); // others may have come to use it
}

TEST_F(Installation, KeepsAFolderThatWasThereBefore)
{
    KelInsIO::CreateDir(target);
    Setup::Install(payload, target);
    Setup::Uninstall(target);
    EXPECT_TRUE(KelInsIO::FindFile::IsDirectoryEmpty(target) && KelInsIO::IsDirectory(target));
}

TEST_F(Installation, CanBeUninstalledAgainOnceAFileIsNoLongerInUse)
{
    Setup::Install(payload, target);
    const std::string file = target + R"(\docs/read me.txt)";
    {
        const std::ifstream user = KelInsIO::GetInputFileStream(file, {});
        EXPECT_THAT([&] { Setup::Uninstall(target); },
                    ThrowsMessage<std::runtime_error>(
                        "Not everything could be removed:\n  DeleteFile - " + file + " - " + kInUse +
                        "\nClose the programs that use these files, and uninstall again."));
        EXPECT_TRUE(Exists(file));
        EXPECT_TRUE(Exists(list));
        EXPECT_FALSE(Exists(target + R"(\settings.ini)"));
        EXPECT_FALSE(Exists(target + R"(\empty)"));
    }
    Setup::Uninstall(target);
    EXPECT_FALSE(Exists(target));
}

TEST_F(Installation, FailureLeavesNothing)
{
    Write(payload + "\\start.env", "APP_HOME=x\n");
    EXPECT_THAT([&] { Setup::Install(payload, target); },
                ThrowsMessage<std::runtime_error>(
                    AllOf(HasSubstr("missing \"export APP_HOME\" at the end."),
                          HasSubstr("Nothing was installed: what had been copied is removed again."))));
    EXPECT_FALSE(Exists(place / "a"));
}

TEST_F(Installation, PayloadHeldByAnotherProgram)
{
    const std::string file = payload + R"(\docs\read me.txt)";
    std::ofstream user = KelInsIO::GetOutputFileStream(file, std::ios::app); // writes: nobody may forbid it that
    EXPECT_THAT(
        [&] { Setup::Install(payload, target); },
        ThrowsMessage<std::runtime_error>(AllOf(HasSubstr("Cannot read " + file), HasSubstr("Nothing was installed"))));
    EXPECT_FALSE(Exists(place / "a"));
}

TEST(UndoTest, RemovesWhatWasMadeLastThingFirst)
{
    const TempDirectory place;
    Setup::Undo undo;
    for (const char* name : {"a", R"(a\b)"}) {
        undo.WillMake(place / name);
        KelInsIO::CreateDir(place / name);
    }
    for (const char* name : {R"(a\file)", R"(a\b\file)", R"(a\never made)"})
        undo.WillMake(place / name);
    Write(place / R"(a\file)", "");
    Write(place / R"(a\b\file)", "");
    KelInsIO::SetReadOnly(place / R"(a\b\file)", true);

    EXPECT_THAT(undo.TakeBack(), ElementsAre());
    EXPECT_TRUE(KelInsIO::FindFile::IsDirectoryEmpty(place.Path()));
    EXPECT_THAT(undo.TakeBack(), ElementsAre()); // once is enough
}

TEST(UndoTest, TellsWhatIsLeft)
{
    const TempDirectory place;
    Setup::Undo undo;
    undo.WillMake(place / "a");
    undo.WillMake(place / R"(a\held)");
    undo.WillMake(place / R"(a\free)");
    Write(place / R"(a\held)", "");
    Write(place / R"(a\free)", "");
    const std::ifstream user = KelInsIO::GetInputFileStream(place / R"(a\held)", {});

    EXPECT_THAT(undo.TakeBack(),
                ElementsAre("DeleteFile - " + (place / R"(a\held)") + " - " + kInUse, (place / "a") + " is not empty"));
    EXPECT_TRUE(Exists(place / R"(a\held)"));
    EXPECT_FALSE(Exists(place / R"(a\free)"));
}

} // namespace
