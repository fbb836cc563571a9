#include "../Undo.h"

#include "SamplePayload.h"
#include <KelInsInfra/foundation/KelInsSys.h>
#include <KelInsInfra/io/FindFile.h>
#include <KelInsInfra/io/KelInsIO.h>
#include <gmock/gmock.h>

namespace {

using KelInsIO::Exists;
using testing::ElementsAre;

const std::string kInUse = KelInsSys::GetLastErrorMessage(32); // ERROR_SHARING_VIOLATION

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
    WriteFile(place / R"(a\file)", "");
    WriteFile(place / R"(a\b\file)", "");
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
    WriteFile(place / R"(a\held)", "");
    WriteFile(place / R"(a\free)", "");
    const std::ifstream user = KelInsIO::GetInputFileStream(place / R"(a\held)", {});

    EXPECT_THAT(undo.TakeBack(),
                ElementsAre("DeleteFile - " + (place / R"(a\held)") + " - " + kInUse, (place / "a") + " is not empty"));
    EXPECT_TRUE(Exists(place / R"(a\held)"));
    EXPECT_FALSE(Exists(place / R"(a\free)"));
}

TEST(UndoTest, ActionsAreTakenBackInTheirOrderEvenWhenOneFails)
{
    std::string done;
    Setup::Undo undo;
    undo.WillDo([&] { done += 'a'; });
    undo.WillDo([] { throw std::runtime_error("no way\n"); });
    undo.WillDo([&] { done += 'b'; });
    EXPECT_THAT(undo.TakeBack(), ElementsAre("no way"));
    EXPECT_EQ(done, "ba");
}

} // namespace
