#include <KelInsInfra/foundation/KelInsString.h>
#include <KelInsInfra/io/Path.h>
#include <algorithm>
#include <string_view>
#include <utility>

namespace KelInsIO {
namespace {

constexpr char kSeparator = '\\';
constexpr std::size_t kNotFound = std::string::npos;

bool IsAsciiLetter(char c)
{
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

/// In a text of at least two characters.
bool BeginsAsUnc(const std::string& text)
{
    return text[0] == kSeparator && text[1] == kSeparator;
}

bool IsEnclosedBy(const std::string& text, char c)
{
    return !text.empty() && text.front() == c && text.back() == c;
}

/// Removes one pair of enclosing quotes, double or single. A single quote alone is a pair of itself.
void StripQuotes(std::string& text)
{
    const bool quoted = text.size() > 1 && IsEnclosedBy(text, '"');
    if (!quoted && !IsEnclosedBy(text, '\''))
        return;
    text.pop_back();
    if (!text.empty())
        text.erase(0, 1);
}

void CollapseSeparators(std::string& text)
{
    if (text.empty())
        return;
    const auto bothSeparators = [](char a, char b) { return a == kSeparator && b == kSeparator; };
    // from index 1: keeps the leading pair of a UNC path
    text.erase(std::unique(text.begin() + 1, text.end(), bothSeparators), text.end());
}

void StripTrailingSeparators(std::string& text)
{
    text.resize(text.find_last_not_of(kSeparator) + 1); // only separators: npos + 1 is 0
}

void Clean(std::string& text)
{
    StripQuotes(text);
    std::replace(text.begin(), text.end(), '/', kSeparator);
    CollapseSeparators(text);
    StripTrailingSeparators(text);
}

/// Index of the last character of a UNC root, or kNotFound where server or share are missing.
/// In a cleaned text, which does not end in a separator.
std::size_t FindUncRootEnd(const std::string& text)
{
    const std::size_t afterServer = text.find(kSeparator, 2);
    if (afterServer == kNotFound)
        return kNotFound;
    return std::min(text.find(kSeparator, afterServer + 1), text.size()) - 1;
}

std::size_t CountSeparators(const std::string& text, std::size_t begin)
{
    return static_cast<std::size_t>(
        std::count(text.begin() + static_cast<std::ptrdiff_t>(begin), text.end(), kSeparator));
}

std::string Repeat(const std::string& text, std::size_t times)
{
    std::string result;
    result.reserve(text.size() * times);
    for (std::size_t i = 0; i < times; ++i)
        result += text;
    return result;
}

/// Start of the component after the one that ends at this separator.
std::size_t AfterSeparator(std::size_t separator)
{
    return separator == kNotFound ? kNotFound : separator + 1;
}

/// The component that begins at an index; empty beyond the end.
std::string_view ComponentAt(std::string_view text, std::size_t begin)
{
    text.remove_prefix(std::min(begin, text.size()));
    return text.substr(0, text.find(kSeparator));
}

/// other from the first component on that differs, after one ".." for each component of base from there on. Both texts
/// have their sub-path at their begin index.
std::string RelativeText(const std::string& base, std::size_t baseBegin, const std::string& other,
                         std::size_t otherBegin)
{
    std::size_t p = baseBegin;
    std::size_t q = otherBegin;
    // Both components are read at p: p and q differ only where one path is a bare root. Kept for existing callers.
    while (p != kNotFound && q != kNotFound && ComponentAt(base, p) == ComponentAt(other, p)) {
        q = AfterSeparator(other.find(kSeparator, p));
        p = AfterSeparator(base.find(kSeparator, p));
    }
    std::string text;
    if (p != kNotFound && p != base.size())
        text = Repeat("..\\", CountSeparators(base, p) + 1);
    if (q != kNotFound)
        text.append(other, q);
    return text;
}

} // namespace

const char Path::SepC = kSeparator;
const char Path::ConcatSepC = ';';
const char Path::AltSepC = '/';
const char Path::AltConcatSepC = ':';
const std::string Path::Sep(1, kSeparator);
const std::string Path::ConcatSep = ";";
const std::string Path::AltSep = "/";
const std::string Path::AltConcatSep = ":";

Path::Path() = default;

Path::Path(std::string path) : path_(std::move(path))
{
    Clean(path_);
    rootEnd_ = FindRootEnd(path_);
    if (rootEnd_ == kUndetermined) // looks like a root and is none
        Clear();
}

Path::Path(const Path& other) = default;
Path& Path::operator=(const Path& other) = default;

Path::Path(Path&& other) noexcept
    : path_(std::exchange(other.path_, {})), rootEnd_(std::exchange(other.rootEnd_, kUndetermined))
{}

Path& Path::operator=(Path&& other) noexcept
{
    if (this != &other) {
        path_ = std::exchange(other.path_, {});
        rootEnd_ = std::exchange(other.rootEnd_, kUndetermined);
    }
    return *this;
}

Path::~Path() = default;

std::int64_t Path::FindRootEnd(const std::string& text)
{
    if (text.size() < 2)
        return kNoRoot;
    if (text[1] == ':')
        return IsAsciiLetter(text[0]) ? 1 : kUndetermined;
    if (!BeginsAsUnc(text))
        return kNoRoot;
    const std::size_t end = FindUncRootEnd(text);
    return end == kNotFound ? kUndetermined : static_cast<std::int64_t>(end);
}

const std::string& Path::GetPath() const
{
    return path_;
}

bool Path::IsEmpty() const
{
    return path_.empty();
}

bool Path::IsAbsolute() const
{
    return rootEnd_ >= 0;
}

std::string Path::GetRoot() const
{
    return IsAbsolute() ? path_.substr(0, static_cast<std::size_t>(rootEnd_) + 1) : std::string();
}

/// Index at which the sub-path begins: after the root and its separator.
std::size_t Path::SubPathBegin() const
{
    return IsAbsolute() ? std::min(path_.size(), static_cast<std::size_t>(rootEnd_) + 2) : 0;
}

std::string Path::GetSubPath() const
{
    return path_.substr(SubPathBegin());
}

std::string Path::GetFileName() const
{
    const std::string subPath = GetSubPath();
    return subPath.substr(subPath.rfind(kSeparator) + 1); // no separator: npos + 1 is 0
}

Path Path::GetParent() const
{
    const std::size_t separator = path_.rfind(kSeparator);
    if (separator == kNotFound || static_cast<std::int64_t>(separator) < rootEnd_)
        return {}; // the separator inside a UNC root ends no parent
    return Path(path_.substr(0, separator));
}

void Path::Clear()
{
    path_.clear();
    rootEnd_ = kNoRoot;
}

bool Path::operator==(const Path& other) const
{
    return path_ == other.path_;
}

bool Path::operator!=(const Path& other) const
{
    return path_ != other.path_;
}

bool Path::operator==(const std::string& other) const
{
    return path_ == other;
}

bool Path::operator!=(const std::string& other) const
{
    return path_ != other;
}

Path Path::operator+(const Path& other) const
{
    return *this + other.path_;
}

Path Path::operator+(const std::string& other) const
{
    return Path(path_ + kSeparator + other);
}

Path& Path::operator+=(const Path& other)
{
    return *this += other.path_;
}

Path& Path::operator+=(const std::string& other)
{
    Append(other);
    return *this;
}

void Path::Append(const std::string& text)
{
    std::string joined = path_ + kSeparator + text;
    Clean(joined);
    path_ = std::move(joined);
}

std::string Path::CleanPath(std::string text)
{
    Clean(text);
    return text;
}

std::string Path::NormalizePathSeparator(const std::string& text)
{
    std::string result = text;
    KelInsString::ReplaceAll(result, AltSepC, SepC);
    return result;
}

std::string Path::Slashify(const std::string& text)
{
    std::string result = text;
    KelInsString::ReplaceAll(result, SepC, AltSepC);
    return result;
}

std::string Path::NormalizeConcatSeparator(const std::string& text)
{
    std::string result = text;
    std::size_t sinceSeparator = 0;
    for (std::size_t i = 0; i < result.size(); ++i) {
        char& c = result[i];
        const bool afterDriveLetter = sinceSeparator == 1 && IsAsciiLetter(result[i - 1]);
        if (c == AltConcatSepC && !afterDriveLetter)
            c = ConcatSepC;
        sinceSeparator = c == ConcatSepC ? 0 : sinceSeparator + 1;
    }
    return result;
}

Path Path::Resolve(const Path& other) const
{
    if (other.IsAbsolute())
        return other;
    return other.IsEmpty() ? *this : *this + other;
}

Path Path::Relativize(const Path& other) const
{
    if (other.IsEmpty() || IsAbsolute() != other.IsAbsolute())
        return {};
    if (!IsAbsolute()) { // no common beginning is looked for: callers rely on one ".." per component of this path
        Path result(".." + Repeat("\\..", CountSeparators(path_, 0)));
        result.Append(other.path_);
        return result;
    }
    const auto rootLength = static_cast<std::size_t>(rootEnd_); // but for its last character: kept for existing callers
    if (rootEnd_ != other.rootEnd_ || path_.compare(0, rootLength, other.path_, 0, rootLength) != 0)
        return {};
    return Path(RelativeText(path_, SubPathBegin(), other.path_, other.SubPathBegin()));
}

} // namespace KelInsIO
