// DLLs of an attacker beside the program, under the names of those that the library loads on first use.

#include "tests/support/TempDirectory.h"
#include "tests/system/Child.h"
#include <KelInsInfra/io/KelInsIO.h>
#include <KelInsInfra/system/ProcessBuilder.h>
#include <gtest/gtest.h>

namespace {

TEST(PlantedLibrary, IsNotLoaded)
{
    const std::string programs = ChildPath().substr(0, ChildPath().rfind('\\') + 1);
    const TempDirectory directory;
    KelInsIO::Copy(programs + "planted_program.exe", directory / "program.exe");
    for (const char* name : {"msi.dll", "secur32.dll", "shell32.dll", "planted.dll"})
        KelInsIO::Copy(programs + "planted_library.dll", directory / name);
    KelInsSys::ProcessBuilder program('"' + (directory / "program.exe") + '"');
    ASSERT_TRUE(program.Start(false));
    EXPECT_EQ(program.Wait(), 0);
    KelInsSys::ProcessBuilder control('"' + (directory / "program.exe") + "\" control");
    ASSERT_TRUE(control.Start(false));
    EXPECT_EQ(control.Wait(), 1);
}

} // namespace
