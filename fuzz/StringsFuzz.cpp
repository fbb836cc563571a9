// String utilities, line replacement, numbers, saving of properties and unpacking of GUIDs beside models that take each
// rule literally, one character at a time.

#include <KelInsInfra/config/KelInsJavaProperties.h>
#include <KelInsInfra/foundation/KelInsString.h>
#include <KelInsInfra/io/internal/LineReplacement.h>
#include <KelInsInfra/registry/KelInsMSI.h>
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

using Pieces = std::vector<std::string>;

void Expect(const char* what, const std::string& actual, const std::string& expected)
{
    if (actual == expected)
        return;
    std::fprintf(stderr, "%s: [%s], expected [%s]\n", what, actual.c_str(), expected.c_str());
    std::abort();
}

void Expect(const char* what, bool holds)
{
    Expect(what, holds ? "true" : "false", "true");
}

std::string TakeText(std::string& input)
{
    const std::size_t end = std::min(input.find('\n'), input.size());
    const std::string text = input.substr(0, end);
    input.erase(0, end + 1);
    return text;
}

bool StandsAt(const std::string& text, std::size_t i, const std::string& wanted)
{
    return i + wanted.size() <= text.size() && text.compare(i, wanted.size(), wanted) == 0;
}

/// @return the text; count is added to.
std::string ModelReplace(const std::string& text, const std::string& from, const std::string& to, std::uint64_t start,
                         std::int32_t& count)
{
    std::string result;
    for (std::size_t i = 0; i < text.size();) {
        if (i >= start && !from.empty() && StandsAt(text, i, from)) {
            result += to;
            i += from.size();
            ++count;
        } else {
            result += text[i++];
        }
    }
    return result;
}

void CheckReplacing(const std::string& text, const std::string& from, const std::string& to, std::uint64_t start)
{
    std::int32_t expected = 0;
    const std::string result = ModelReplace(text, from, to, start, expected);
    std::string edited = text;
    Expect("count of texts", KelInsString::ReplaceAll(edited, from, to, start) == expected);
    Expect("ReplaceAll", edited, result);
    if (from.empty() || to.empty())
        return;
    expected = 0;
    const std::string ofLetters = ModelReplace(text, from.substr(0, 1), to.substr(0, 1), start, expected);
    edited = text;
    Expect("count of letters", KelInsString::ReplaceAll(edited, from[0], to[0], start) == expected);
    Expect("ReplaceAll of letters", edited, ofLetters);
    expected = 0;
    const std::string without = ModelReplace(text, from.substr(0, 1), "", 0, expected);
    edited = text;
    Expect("count of removed", KelInsString::RemoveAll(edited, from[0]) == expected);
    Expect("RemoveAll", edited, without);
}

Pieces ModelSplit(const std::string& text, const std::string& delimiter, bool keepEmpty)
{
    Pieces pieces(1);
    for (std::size_t i = 0; i < text.size();) {
        if (!delimiter.empty() && StandsAt(text, i, delimiter)) {
            pieces.emplace_back();
            i += delimiter.size();
        } else {
            pieces.back() += text[i++];
        }
    }
    if (!keepEmpty || text.empty())
        std::erase(pieces, "");
    return pieces;
}

void CheckSplitting(const std::string& text, const std::string& delimiter)
{
    for (const bool keepEmpty : {false, true}) {
        Expect("Split", KelInsString::Split(text, delimiter, keepEmpty) == ModelSplit(text, delimiter, keepEmpty));
        if (!delimiter.empty())
            Expect("Split at a letter", KelInsString::Split(text, delimiter[0], keepEmpty) ==
                                            ModelSplit(text, delimiter.substr(0, 1), keepEmpty));
    }
}

/// Sign and digits of the number at the beginning; no digits where there is none.
struct Number
{
    bool negative = false;
    std::string digits{};
};

Number ModelNumber(const std::string& text)
{
    Number number;
    std::size_t i = 0;
    while (i < text.size() && std::string(" \t\n\v\f\r").find(text[i]) != std::string::npos)
        ++i;
    if (i < text.size() && (text[i] == '+' || text[i] == '-'))
        number.negative = text[i++] == '-';
    for (; i < text.size() && text[i] >= '0' && text[i] <= '9'; ++i)
        number.digits += text[i];
    return number;
}

/// The value of digits, or the limit if that is less, which is too large then.
std::uint64_t Value(const std::string& digits, std::uint64_t limit, bool& tooLarge)
{
    std::uint64_t value = 0;
    for (const char c : digits) {
        const auto digit = static_cast<std::uint64_t>(c - '0');
        tooLarge = value > (limit - digit) / 10;
        if (tooLarge)
            return limit;
        value = value * 10 + digit;
    }
    return value;
}

void CheckNumbers(const std::string& text)
{
    constexpr std::int32_t kDefault = 12345;
    const Number number = ModelNumber(text);
    std::int64_t integer = kDefault;
    std::uint64_t size = kDefault;
    bool tooLarge = false;
    if (!number.digits.empty()) {
        const auto magnitude = static_cast<std::int64_t>(Value(number.digits, std::uint64_t{1} << 40, tooLarge));
        integer = number.negative ? -magnitude : magnitude;
        if (integer < INT32_MIN || integer > INT32_MAX)
            integer = kDefault;
        size = Value(number.digits, UINT64_MAX, tooLarge);
        size = number.negative && !tooLarge ? 0 - size : size; // too large is the largest one, whatever its sign
    }
    Expect("ToInt", std::to_string(KelInsString::ToInt(text, kDefault)), std::to_string(integer));
    Expect("ToSize_t", std::to_string(KelInsString::ToSize_t(text, kDefault)), std::to_string(size));
}

void CheckLines(const std::string& content, const std::string& from, const std::string& to)
{
    if (from.empty())
        return;
    Pieces lines = ModelSplit(content, "\n", true);
    if (!lines.empty() && lines.back().empty()) // no line follows the last line feed
        lines.pop_back();
    std::string expected;
    std::int32_t count = 0;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        std::string line = lines[i];
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        expected += (i > 0 ? "\r\n" : "") + ModelReplace(line, from, to, 0, count);
    }
    const KelInsIO::LineReplacement actual = KelInsIO::ReplaceInEachLine(content, from, to);
    Expect("lines", actual.text, expected);
    Expect("count in lines", actual.count == count);
}

void CheckSaving(const std::string& text)
{
    const std::string special = "\\\t\n\f\r!#:=";
    const std::string letters = "\\tnfr!#:=";
    for (const bool isKey : {false, true}) {
        std::string expected;
        for (std::size_t i = 0; i < text.size(); ++i) {
            const std::size_t place = special.find(text[i]);
            if (place != std::string::npos)
                (expected += '\\') += letters[place];
            else if (text[i] == ' ' && (isKey || i == 0))
                expected += "\\ ";
            else
                expected += text[i];
        }
        Expect("saveConvert", KelInsJavaProperties::saveConvert(text, isKey), expected);
    }
}

/// Digit by digit, where each stands in the GUID.
void CheckUnpacking(std::string key)
{
    key.resize(32, '0');
    const std::string shape = "{87654321-cba9-gfed-ihkj-mlonqpsrutwv}"; // 1 to 9, then letters: places in the key
    std::string expected;
    for (const char c : shape) {
        if (c >= '1' && c <= '9')
            expected += key[static_cast<std::size_t>(c - '1')];
        else if (c >= 'a' && c <= 'w')
            expected += key[static_cast<std::size_t>(c - 'a') + 9];
        else
            expected += c;
    }
    Expect("RegistryKeyToUUID", KelInsMSI::RegistryKeyToUUID(key), expected);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

/// A byte for the start, two short texts, each ended by a line feed, and the text that is worked on.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0)
        return 0;
    std::string text(reinterpret_cast<const char*>(data) + 1, size - 1);
    const std::string from = TakeText(text);
    const std::string to = TakeText(text);
    CheckReplacing(text, from, to, data[0] % 16);
    CheckSplitting(text, from);
    CheckNumbers(from.substr(0, from.find('\0')));
    CheckLines(text, from, to);
    CheckSaving(text);
    CheckUnpacking(text);
    return 0;
}
