#include <KelInsInfra/io/KelInsIO.h>
#include <KelInsInfra/io/internal/TextLines.h>
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
        const std::size_t size = rest.find('\n');
        if (size != std::string_view::npos) {
            begin_ += size + 1;
            if (pieces_.empty())
                return WithoutCarriageReturn(rest.substr(0, size));
            return WithoutCarriageReturn(pieces_.append(rest, 0, size));
        }
        pieces_.append(rest);
    } while (ReadBlock());
    return pieces_.empty() ? std::nullopt : std::optional(WithoutCarriageReturn(pieces_));
}

bool LineReader::ReadBlock()
{
    stream_.read(block_.get(), kBlockSize);
    begin_ = 0;
    end_ = static_cast<std::size_t>(stream_.gcount());
    return end_ != 0;
}

} // namespace KelInsIO
