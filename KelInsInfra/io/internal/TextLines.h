#pragma once

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
    const std::size_t end = rest.find('\n');
    const std::string_view line = rest.substr(0, end);
    rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
    return WithoutCarriageReturn(line);
}

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
