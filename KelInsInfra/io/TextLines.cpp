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

void AppendLines(TextBuilder& text, std::string_view lines)
{
    const char* const end = lines.data() + lines.size();
    const char* kept = lines.data();
    for (const char* next = kept; (next = FindLoneLineFeed(lines, next)) != end; kept = ++next) {
        text.Append({kept, next});
        text.Append("\r\n");
    }
    text.Append({kept, end});
    if (!lines.empty() && !lines.ends_with('\n'))
        text.Append(lines.ends_with('\r') ? "\n" : "\r\n");
}

} // namespace KelInsIO
