// Path beside a model that takes each rule literally and slowly, one character at a time.

#include <KelInsInfra/io/Path.h>
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

struct Model
{
    std::string text;
    std::ptrdiff_t rootEnd = -1;
};

std::string ModelClean(std::string text)
{
    const std::size_t size = text.size();
    const bool quotes = size > 1 && text[0] == '"' && text[size - 1] == '"';
    const bool apostrophes = size > 0 && text[0] == '\'' && text[size - 1] == '\'';
    if (quotes || apostrophes)
        text = size < 2 ? "" : text.substr(1, size - 2);
    for (char& c : text)
        if (c == '/')
            c = '\\';
    for (std::size_t i = 1; i + 1 < text.size();)
        if (text[i] == '\\' && text[i + 1] == '\\')
            text.erase(i, 1);
        else
            ++i;
    while (!text.empty() && text[text.size() - 1] == '\\')
        text.erase(text.size() - 1);
    return text;
}

bool IsModelLetter(char c)
{
    return std::string("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz").find(c) != std::string::npos;
}

/// -2 where the text looks like a root and is none.
std::ptrdiff_t ModelRootEnd(const std::string& text)
{
    if (text.size() < 2)
        return -1;
    if (text[1] == ':')
        return IsModelLetter(text[0]) ? 1 : -2;
    if (text[0] != '\\' || text[1] != '\\')
        return -1;
    std::size_t i = 2;
    while (i < text.size() && text[i] != '\\')
        ++i;
    if (i + 1 >= text.size())
        return -2;
    std::size_t j = i + 1;
    while (j < text.size() && text[j] != '\\')
        ++j;
    return static_cast<std::ptrdiff_t>(j) - 1;
}

Model ModelPath(const std::string& input)
{
    Model model{ModelClean(input)};
    model.rootEnd = ModelRootEnd(model.text);
    return model.rootEnd == -2 ? Model() : model;
}

constexpr std::ptrdiff_t kNone = -1;

std::ptrdiff_t FindSeparator(const std::string& text, std::ptrdiff_t from)
{
    for (std::size_t i = static_cast<std::size_t>(from); i < text.size(); ++i)
        if (text[i] == '\\')
            return static_cast<std::ptrdiff_t>(i);
    return kNone;
}

std::string Between(const std::string& text, std::ptrdiff_t from, std::ptrdiff_t to)
{
    std::string piece;
    const auto end = to == kNone ? static_cast<std::ptrdiff_t>(text.size()) : to;
    for (std::ptrdiff_t i = from; i < end; ++i)
        piece += text[static_cast<std::size_t>(i)];
    return piece;
}

std::string ModelRelativeOfRelatives(const std::string& base, const std::string& other)
{
    std::string text = "..";
    for (const char c : base)
        if (c == '\\')
            text += "\\..";
    return ModelClean(text + '\\' + other);
}

std::string ModelRelativize(const Model& base, const Model& other)
{
    if (other.text.empty() || (base.rootEnd < 0) != (other.rootEnd < 0))
        return "";
    if (base.rootEnd < 0)
        return ModelRelativeOfRelatives(base.text, other.text);
    if (Between(base.text, 0, base.rootEnd) != Between(other.text, 0, other.rootEnd))
        return "";
    std::ptrdiff_t p = std::min(static_cast<std::ptrdiff_t>(base.text.size()), base.rootEnd + 2);
    std::ptrdiff_t q = std::min(static_cast<std::ptrdiff_t>(other.text.size()), other.rootEnd + 2);
    std::ptrdiff_t a = FindSeparator(base.text, p);
    std::ptrdiff_t b = FindSeparator(other.text, p);
    while (Between(base.text, p, a) == Between(other.text, p, b)) {
        p = a == kNone ? kNone : a + 1;
        q = b == kNone ? kNone : b + 1;
        if (p == kNone || q == kNone)
            break;
        a = FindSeparator(base.text, p + 1);
        b = FindSeparator(other.text, p + 1);
    }
    std::string text;
    if (p != kNone && p != static_cast<std::ptrdiff_t>(base.text.size())) {
        text = "..\\";
        for (std::ptrdiff_t i = FindSeparator(base.text, p); i != kNone; i = FindSeparator(base.text, i + 1))
            text += "..\\";
    }
    if (q != kNone)
        text += Between(other.text, q, kNone);
    return ModelPath(text).text;
}

std::string ModelList(const std::string& input)
{
    std::string text;
    int counter = 0;
    char before = '\0';
    for (const char c : input) {
        char kept = c;
        if (c != ':') {
            counter = c == ';' ? 0 : std::min(counter + 1, 100);
        } else if (counter == 1 && IsModelLetter(before)) {
            counter = 2;
        } else {
            kept = ';';
            counter = 0;
        }
        before = c;
        text += kept;
    }
    return text;
}

void Expect(const char* what, const std::string& actual, const std::string& expected)
{
    if (actual == expected)
        return;
    std::fprintf(stderr, "%s: [%s], expected [%s]\n", what, actual.c_str(), expected.c_str());
    std::abort();
}

void CheckPath(const std::string& input)
{
    using KelInsIO::Path;
    const Model model = ModelPath(input);
    Path path(input);
    Expect("path", path.GetPath(), model.text);
    Expect("root", path.GetRoot(), Between(model.text, 0, model.rootEnd + 1));
    Expect("CleanPath", Path::CleanPath(input), ModelClean(input));
    Expect("NormalizeConcatSeparator", Path::NormalizeConcatSeparator(input), ModelList(input));
    const std::string name = path.GetFileName();
    const std::string subPath = path.GetSubPath();
    Expect("file name", name, subPath.substr(subPath.size() - name.size()));
    path.GetParent();
}

void CheckPair(const std::string& left, const std::string& right)
{
    using KelInsIO::Path;
    const Model base = ModelPath(left);
    const Model other = ModelPath(right);
    Expect("Relativize", Path(left).Relativize(Path(right)).GetPath(), ModelRelativize(base, other));
    Expect("+", (Path(left) + right).GetPath(), ModelPath(base.text + '\\' + right).text);
    Path appended(left);
    appended += right;
    Expect("+=", appended.GetPath(), ModelClean(base.text + '\\' + right));
    Expect("root after +=", appended.GetRoot(), Path(left).GetRoot());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

/// Two texts, parted by a line feed.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string input(reinterpret_cast<const char*>(data), size);
    const std::size_t end = std::min(input.find('\n'), input.size());
    const std::string left = input.substr(0, end);
    const std::string right = input.substr(std::min(end + 1, input.size()));
    CheckPath(left);
    CheckPath(right);
    CheckPair(left, right);
    return 0;
}
