#include <KelInsInfra/io/internal/LineReplacement.h>
#include <KelInsInfra/io/internal/TextLines.h>
#include <algorithm>

namespace KelInsIO {
namespace {

/// Whether a line holds the text just there. The carriage return before a line feed belongs to no line.
bool IsInLine(const char* next, const char* end, const std::string& text)
{
    const auto [differing, behind] = std::mismatch(text.begin(), text.end(), next, end); // no call, as a match is short
    return differing == text.end() && !(text.back() == '\r' && behind != end && *behind == '\n');
}

} // namespace

LineReplacement ReplaceInEachLine(std::string_view content, const std::string& from, const std::string& to)
{
    if (content.ends_with('\n'))
        content.remove_suffix(1);
    content = WithoutCarriageReturn(content);
    TextBuilder text(content.size());
    std::int32_t count = 0;
    const bool mayBeInLine = from.find('\n') == std::string::npos;
    const char* const end = content.data() + content.size();
    const char* kept = content.data(); // what stays as it is, and is not copied yet, begins here
    const char* next = kept;
    while ((next = KelInsString::FindByte(next, end, '\n', from.front())) != end) {
        if (mayBeInLine && IsInLine(next, end, from)) {
            text.Append({kept, next});
            text.Append(to);
            kept = next += from.size();
            ++count;
        } else if (IsLoneLineFeed(content, next)) {
            text.Append({kept, next});
            text.Append("\r\n");
            kept = ++next;
        } else {
            ++next;
        }
    }
    text.Append({kept, end});
    return {text.Take(), count};
}

} // namespace KelInsIO
