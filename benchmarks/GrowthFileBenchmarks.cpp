// How the time of rewriting a file grows with its size.

#include "Growth.h"
#include "Workplace.h"

#include <KelInsInfra/config/KelInsIniFile.h>
#include <KelInsInfra/io/KelInsIO.h>

namespace {

using Work = std::function<void()>;

const bool kRegistered = [] {
    RegisterGrowth("ReplaceInLines", [](std::size_t megabytes) -> Work {
        const std::string content =
            TextOfMegabytes(megabytes, "", "directory = C:\\OldPlace\\files, and so on\r\n", "");
        return [file = Workplace::InMemory().MakeFile("growth.txt", content)] {
            KelInsIO::ReplaceInLines(file, "OldPlace", "OldPlace");
        };
    });
    RegisterGrowth("INI write", [](std::size_t megabytes) -> Work {
        const std::string content = TextOfMegabytes(megabytes, "[Section]\r\n", "Key=C:\\Program Files\\Orchard\r\n",
                                                    "[Last]\r\nKey=value\r\n");
        return [file = Workplace::InMemory().MakeFile("growth.ini", content)] {
            KelInsIniFile::Write(file, "Last", "Key", "value", KelInsIniFile::Where::Replace, ';', false);
        };
    });
    return true;
}();

} // namespace
