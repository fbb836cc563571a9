#include <KelInsInfra/foundation/KelInsString.h>
#include <KelInsInfra/io/internal/LineReplacement.h>
#include <KelInsInfra/io/internal/TextLines.h>

namespace KelInsIO {

LineReplacement ReplaceInEachLine(std::string_view content, const std::string& from, const std::string& to)
{
    LineReplacement result;
    result.text.reserve(content.size());
    bool first = true;
    for (std::string line; !content.empty(); first = false) {
        line = TakeLine(content);
        result.count += KelInsString::ReplaceAll(line, from, to);
        if (!first)
            result.text += "\r\n";
        result.text += line;
    }
    return result;
}

} // namespace KelInsIO
