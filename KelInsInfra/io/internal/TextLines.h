#pragma once

#include <KelInsInfra/foundation/internal/Bytes.h>
#include <KelInsInfra/io/internal/TextBuilder.h>
#include <istream>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace KelInsIO {

/// A line without the one carriage return that may end it.
inline std::string_view WithoutCarriageReturn(std::string_view line)
{
    if (line.ends_with('\r'))
        line.remove_suffix(1);
    return line;
}

/// Takes the next line off a text that is not empty, as GetLine takes it off a stream: without its line feed, and
/// without the one carriage return before that. No further line follows a final line feed.
inline std::string_view TakeLine(std::string_view& rest)
{
    const char* const end = rest.data() + rest.size();
    const char* const feed = KelInsString::FindByte(rest.data(), end, '\n');
    const std::string_view line(rest.data(), feed);
    rest = {feed == end ? end : feed + 1, end};
    return WithoutCarriageReturn(line);
}

/// Whether this byte of a text is a line feed without a carriage return before it.
inline bool IsLoneLineFeed(std::string_view text, const char* byte)
{
    return *byte == '\n' && (byte == text.data() || byte[-1] != '\r');
}

/// Whether a text is lines with CR LF after each.
bool IsEachLineEndCrLf(std::string_view text);

/// Adds lines to a text, CR LF after each, also after a last one that has no line end.
void AppendLines(TextBuilder& text, std::string_view lines);

/// Gives the lines of a stream one by one, cut as GetLine cuts them, but reads the stream in blocks: it takes more from
/// it than the lines it gave.
class LineReader
{
public:
    /// The stream must outlive the reader.
    explicit LineReader(std::istream& stream)
        : stream_(stream), block_(std::make_unique_for_overwrite<char[]>(kBlockSize))
    {}

    /// The next line, valid until the next call; nothing after the last one.
    std::optional<std::string_view> Next();

private:
    static constexpr std::size_t kBlockSize = 16384;

    /// False when the stream has no more.
    bool ReadBlock();

    std::istream& stream_;
    std::unique_ptr<char[]> block_;
    std::size_t begin_ = 0; ///< of what was not given yet
    std::size_t end_ = 0;
    std::string pieces_; ///< of a line that began in an earlier block
};

} // namespace KelInsIO
