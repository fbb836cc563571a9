#include <KelInsInfra/io/internal/LineReplacement.h>
#include <KelInsInfra/io/internal/TextLines.h>
#include <algorithm>
#include <cstring>

namespace KelInsIO {
namespace {

/// Whether a line holds the text (not empty) just there. The carriage return before a line feed belongs to no line.
bool IsInLine(const char* next, const char* end, const std::string& text)
{
    constexpr std::size_t kShort = 32; // up to which a loop is quicker than the C runtime's call
    const std::size_t size = text.size();
    if (size > static_cast<std::size_t>(end - next) || next[size - 1] != text.back())
        return false;
    if (text.back() == '\r' && next + size != end && next[size] == '\n')
        return false;
    return size <= kShort ? std::mismatch(text.begin(), text.end(), next).first == text.end()
                          : std::memcmp(next, text.data(), size) == 0;
}

} // namespace

LineReplacement ReplaceInEachLine(std::string_view content, const std::string& from, const std::string& to)
{
    if (content.ends_with('\n'))
        content.remove_suffix(1);
    content = WithoutCarriageReturn(content);
    TextBuilder text(content.size());
    std::uint32_t count = 0; // one that overflows is wrong, but no more than that
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
    return {text.Take(), static_cast<std::int32_t>(count)};
}

} // namespace KelInsIO
