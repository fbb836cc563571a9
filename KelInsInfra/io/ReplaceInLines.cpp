#include <KelInsInfra/io/KelInsIO.h>
#include <KelInsInfra/io/internal/LineReplacement.h>
#include <KelInsInfra/io/internal/RewriteFile.h>
#include <stdexcept>

namespace KelInsIO {

std::int32_t ReplaceInLines(const std::string& fileName, const std::string& from, const std::string& to)
{
    const MessageFrame frame{"KelInsIO::ReplaceInLines: ", "\nReplaced: " + from + "\nReplacing: " + to};
    if (fileName.empty())
        throw std::runtime_error(frame.before + "Filename is empty" + frame.after);
    if (from.empty())
        return 0;
    const std::string name = Path::NormalizePathSeparator(fileName);
    std::ifstream file = GetInputFileStream(name, std::ios_base::in);
    const LineReplacement replacement = ReplaceInEachLine(ReadForRewriting(file, name, frame), from, to);
    file.close();
    RewriteFile(name, name + "_TmpRIL", replacement.text, frame);
    return replacement.count;
}

} // namespace KelInsIO
