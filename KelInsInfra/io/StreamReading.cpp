#include <KelInsInfra/io/KelInsIO.h>
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

} // namespace KelInsIO
