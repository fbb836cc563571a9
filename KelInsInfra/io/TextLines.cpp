#include <KelInsInfra/io/internal/TextLines.h>

namespace KelInsIO {
namespace {

/// The first line feed at or after a byte of the text that is alone, or the end of the text.
const char* FindLoneLineFeed(std::string_view text, const char* next)
{
    const char* const end = text.data() + text.size();
    for (;; ++next) {
        next = KelInsString::FindByte(next, end, '\n');
        if (next == end || IsLoneLineFeed(text, next))
            return next;
    }
}

} // namespace

bool IsEachLineEndCrLf(std::string_view text)
{
    return (text.empty() || text.ends_with('\n')) && FindLoneLineFeed(text, text.data()) == text.data() + text.size();
}

std::size_t CountLoneLineFeeds(std::string_view text)
{
    std::size_t count = 0;
    const char* const end = text.data() + text.size();
    for (const char* next = text.data(); (next = FindLoneLineFeed(text, next)) != end; ++next)
        ++count;
    return count;
}

void AppendLines(std::string& text, std::string_view lines)
{
    const char* const end = lines.data() + lines.size();
    const char* copied = lines.data();
    for (const char* next = copied; (next = FindLoneLineFeed(lines, next)) != end; copied = ++next)
        text.append(copied, next).append("\r\n");
    text.append(copied, end);
    if (!lines.empty() && !lines.ends_with('\n'))
        text.append(lines.ends_with('\r') ? "\n" : "\r\n");
}

} // namespace KelInsIO
