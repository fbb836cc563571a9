#include <KelInsInfra/io/KelInsIO.h>
#include <KelInsInfra/io/internal/TextLines.h>
#include <algorithm>
#include <new>
#include <sstream>
#include <utility>

namespace KelInsIO {
namespace {

template <typename Char>
std::basic_istream<Char>& ReadLine(std::basic_istream<Char>& stream, std::basic_string<Char>& line)
{
    if (std::getline(stream, line) && line.ends_with(stream.widen('\r')))
        line.pop_back();
    return stream;
}

} // namespace

std::istream& GetLine(std::istream& stream, std::string& line)
{
    return ReadLine(stream, line);
}

std::wistream& GetLine(std::wistream& stream, std::wstring& line)
{
    return ReadLine(stream, line);
}

std::string InputStreamToString(std::istream& stream)
{
    std::ostringstream text;
    text.exceptions(std::ios_base::failbit);
    try {
        text << stream.rdbuf();
    } catch (const std::bad_alloc&) {
        throw; // a part of the text must not pass for the whole
    } catch (...) {
        // nothing to read, or a failure of the stream: the text ends there
    }
    return std::move(text).str();
}

std::optional<std::string_view> LineReader::Next()
{
    pieces_.clear();
    do {
        const std::string_view rest(block_.get() + begin_, end_ - begin_);
        const char* const end = block_.get() + end_;
        const char* const feed = KelInsString::FindByte(rest.data(), end, '\n');
        if (feed != end) {
            const std::string_view line(rest.data(), feed);
            begin_ += line.size() + 1;
            if (pieces_.empty())
                return WithoutCarriageReturn(line);
            return WithoutCarriageReturn(pieces_.append(line));
        }
        pieces_.append(rest);
    } while (ReadBlock());
    if (pieces_.empty() || stream_.bad()) // after a read error, the part of a line must not pass for the whole
        return {};
    return WithoutCarriageReturn(pieces_);
}

bool LineReader::ReadBlock()
{
    begin_ = 0;
    end_ = 0;
    if (stream_.peek() == std::istream::traits_type::eof()) // fills the stream's buffer
        return false;
    // No more than is there: a read error would take the good bytes before it along.
    const std::streamsize available = std::clamp<std::streamsize>(stream_.rdbuf()->in_avail(), 1, kBlockSize);
    stream_.read(block_.get(), available);
    end_ = static_cast<std::size_t>(stream_.gcount());
    return end_ != 0;
}

} // namespace KelInsIO
