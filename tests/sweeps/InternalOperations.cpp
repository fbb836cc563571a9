#include "Operation.h"

#include <KelInsInfra/config/internal/IniLines.h>
#include <KelInsInfra/io/internal/LineReplacement.h>

namespace Sweeps {
namespace {

const std::string kLong = "a text that is longer than small ones";

} // namespace

void AddInternalOperations(std::vector<Operation>& operations)
{
    operations.push_back({.name = "IniLines", .exports = {}, .run = [](const Place&) {
                              const std::string content = "[" + kLong + "]\nK=" + kLong + "\n[x]\n";
                              return KelInsIniFile::AssignKey(content, {.fileName = "f",
                                                                        .section = kLong,
                                                                        .key = "K",
                                                                        .value = kLong,
                                                                        .where = KelInsIniFile::Where::Append,
                                                                        .separator = ';',
                                                                        .shellExport = false});
                          }});
    operations.push_back({.name = "LineReplacement", .exports = {}, .run = [](const Place&) {
                              return KelInsIO::ReplaceInEachLine(kLong + "\n" + kLong, "text", kLong).text;
                          }});
}

} // namespace Sweeps
