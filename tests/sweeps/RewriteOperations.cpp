#include "Operation.h"

#include "tests/support/Files.h"
#include <KelInsInfra/config/KelInsIniFile.h>
#include <KelInsInfra/io/KelInsIO.h>

namespace Sweeps {
namespace {

using KelInsIniFile::Where;

std::string File(const Place& place)
{
    return place.directory + "\\file";
}

/// More than two blocks of 64 KiB.
std::string Content()
{
    std::string text = "K=old\nexport K\n[S]\nA=1\n";
    while (text.size() < 140'000)
        text += "; a line that is there to fill the file: " + std::string(5000, 'x') + "\n";
    return text;
}

/// Read-only, so that the attribute's changes are among the calls.
void MakeOldReadOnly(const Place& place)
{
    MakeFile(File(place), Content());
    KelInsIO::SetReadOnly(File(place), true);
}

/// What both make of failures on the way.
std::vector<std::string> Texts(const std::string& suffix, const std::string& before, const std::string& after)
{
    const std::string temporary = "$\\file" + suffix;
    return {before + "Failed to open $\\file" + after,
            before + "Failed to read $\\file" + after,
            before + "Failed to open " + temporary + after,
            before + "Failed to write " + temporary + after,
            before + "Failed to write $\\file" + after,
            "GetType - " + temporary + " - ",
            "CreateDirectory - $ - ",
            "Cannot stat " + temporary + " - ",
            "Cannot read " + temporary + " - ",
            "Cannot write into $\\file - "};
}

Operation Writing(const std::string& name, const std::string& file, const std::function<void(const Place&)>& prepare,
                  const std::string& section, bool shellExport)
{
    Operation operation{.name = name,
                        .exports = {"KelInsIniFile::Write"},
                        .prepare = prepare,
                        .run =
                            [=](const Place& p) {
                                KelInsIniFile::Write(p.directory + "\\" + file, section, "K", "new", Where::Append, ';',
                                                     shellExport);
                                return "";
                            },
                        .texts = Texts("_TmpIniW", "", ""),
                        .leaves = Leaves::Rewrite};
    operation.texts.push_back("GetType - $\\file - ");
    return operation;
}

} // namespace

void AddRewriteOperations(std::vector<Operation>& operations)
{
    operations.push_back({.name = "ReadValueOfKey",
                          .exports = {"KelInsIniFile::ReadValueOfKey"},
                          .prepare = [](const Place& p) { MakeFile(File(p), Content() + "[T]\nX=found\n"); },
                          .run = [](const Place& p) { return KelInsIniFile::ReadValueOfKey(File(p), "T", "X"); },
                          .texts = {"Failed to open $\\file",
                                    "The key X was not found in section T in file $\\file"}}); // a read error ends it
    operations.push_back(Writing("WriteKey", "file", MakeOldReadOnly, "S", false));
    Operation newFile = Writing("WriteNewFile", "new\\file", {}, "S", false);
    newFile.texts = {"Failed to open $\\new\\file_TmpIniW", "Failed to write $\\new\\file_TmpIniW",
                     "Failed to write $\\new\\file",        "GetType - $\\new\\file_TmpIniW - ",
                     "CreateDirectory - $\\new - ",         "Cannot stat $\\new\\file_TmpIniW - ",
                     "Cannot read $\\new\\file_TmpIniW - ", "Cannot write into $\\new\\file - "};
    operations.push_back(newFile);
    operations.push_back(
        {.name = "ReplaceInLines",
         .exports = {"KelInsIO::ReplaceInLines"},
         .prepare = MakeOldReadOnly,
         .run = [](const Place& p) { return std::to_string(KelInsIO::ReplaceInLines(File(p), "line", "x")); },
         .texts = Texts("_TmpRIL", "KelInsIO::ReplaceInLines: ", "\nReplaced: line\nReplacing: x"),
         .leaves = Leaves::Rewrite});
}

} // namespace Sweeps
