#include <KelInsInfra/foundation/internal/ByteSearch.h>
#include <KelInsInfra/io/internal/LineReplacement.h>
#include <KelInsInfra/io/internal/TextLines.h>

namespace KelInsIO {
namespace {

/// Whether a line holds the text just there, which must not be empty. The carriage return before a line feed belongs to
/// no line, the line feed neither.
bool IsInLine(std::string_view rest, std::string_view text)
{
    return rest.starts_with(text) && !(text.ends_with('\r') && rest.substr(text.size()).starts_with('\n')) &&
           text.find('\n') == std::string_view::npos;
}

} // namespace

LineReplacement ReplaceInEachLine(std::string_view content, const std::string& from, const std::string& to)
{
    LineReplacement result;
    if (content.ends_with('\n'))
        content.remove_suffix(1);
    content = WithoutCarriageReturn(content);
    result.text.reserve(content.size() + CountLoneLineFeeds(content));
    const char* const end = content.data() + content.size();
    const char* kept = content.data(); // what stays as it is, and is not copied yet, begins here
    const char* next = kept;
    while ((next = KelInsString::FindByte(next, end, '\n', from.front())) != end) {
        std::string_view replacement = to;
        std::size_t replaced = from.size();
        if (IsInLine({next, end}, from)) {
            ++result.count;
        } else if (IsLoneLineFeed(content, next)) {
            replacement = "\r\n";
            replaced = 1;
        } else {
            ++next;
            continue;
        }
        result.text.append(kept, next).append(replacement);
        kept = next += replaced;
    }
    result.text.append(kept, end);
    return result;
}

} // namespace KelInsIO
