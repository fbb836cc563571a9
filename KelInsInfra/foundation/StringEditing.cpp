#include <KelInsInfra/foundation/KelInsString.h>
#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <sstream>

namespace KelInsString {
namespace {

template <typename Delimiter>
std::size_t LengthOf(const Delimiter& delimiter)
{
    if constexpr (std::is_same_v<Delimiter, char>)
        return 1;
    else
        return delimiter.size();
}

template <typename Delimiter>
std::vector<std::string> SplitAt(const std::string& text, const Delimiter& delimiter, bool keepEmpty)
{
    std::vector<std::string> pieces;
    if (text.empty())
        return pieces;
    std::size_t begin = 0;
    for (;;) {
        const std::size_t end = std::min(text.find(delimiter, begin), text.size());
        if (keepEmpty || end != begin)
            pieces.push_back(text.substr(begin, end - begin));
        if (end == text.size())
            return pieces;
        begin = end + LengthOf(delimiter);
    }
}

} // namespace

std::int32_t RemoveAll(std::string& text, char c)
{
    return static_cast<std::int32_t>(std::erase(text, c));
}

std::int32_t ReplaceAll(std::string& text, const std::string& from, const std::string& to, std::uint64_t start)
{
    if (from.empty())
        return 0; // found everywhere, without end
    std::size_t found = text.find(from, start);
    if (found == std::string::npos)
        return 0;
    std::int32_t count = 0;
    std::string result; // built aside: replacing in place would move the rest of the text at every occurrence
    std::size_t copied = 0;
    for (; found != std::string::npos; found = text.find(from, copied)) {
        result.append(text, copied, found - copied).append(to);
        copied = found + from.size();
        ++count;
    }
    result.append(text, copied);
    text = std::move(result);
    return count;
}

std::int32_t ReplaceAll(std::string& text, char from, char to, std::uint64_t start)
{
    std::int32_t count = 0;
    for (std::size_t i = start; i < text.size(); ++i) {
        if (text[i] == from) {
            text[i] = to;
            ++count;
        }
    }
    return count;
}

std::vector<std::string> Split(const std::string& text, const std::string& delimiter, bool keepEmpty)
{
    if (!delimiter.empty())
        return SplitAt(text, delimiter, keepEmpty);
    if (text.empty())
        return {};
    return {text};
}

std::vector<std::string> Split(const std::string& text, char delimiter, bool keepEmpty)
{
    return SplitAt(text, delimiter, keepEmpty);
}

std::string ToFixedPrecision(double value, std::int32_t decimals)
{
    constexpr std::int32_t mostDecimals =
        1074; // of any double; the stream needs a stack that grows with what it writes
    std::ostringstream stream;
    stream.exceptions(std::ios_base::badbit); // or it would keep std::bad_alloc to itself, and a part of the text
    stream.setf(std::ios_base::fixed, std::ios_base::floatfield);
    stream.precision(std::min(decimals, mostDecimals));
    stream << value;
    std::string text = std::move(stream).str();
    if (decimals > mostDecimals && std::isfinite(value))
        text.append(static_cast<std::size_t>(decimals - mostDecimals), '0');
    return text;
}

std::int32_t ToInt(const std::string& text, std::int32_t defaultValue)
{
    using Limits = std::numeric_limits<std::int32_t>;
    const int errnoBefore = errno;
    errno = 0;
    char* end = nullptr;
    const long value = std::strtol(text.c_str(), &end, 10);
    const int error = errno;
    errno = errnoBefore;
    const bool converted = end != text.c_str() && error != ERANGE;
    return converted && value >= Limits::min() && value <= Limits::max() ? static_cast<std::int32_t>(value)
                                                                         : defaultValue;
}

std::uint64_t ToSize_t(const std::string& text, std::uint64_t defaultValue)
{
    const int errnoBefore = errno;
    char* end = nullptr;
    const std::uint64_t value = std::strtoull(text.c_str(), &end, 10); // a number that does not fit is the largest one
    errno = errnoBefore;
    return end != text.c_str() ? value : defaultValue;
}

} // namespace KelInsString
