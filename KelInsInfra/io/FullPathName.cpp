#include <KelInsInfra/foundation/KelInsString.h>
#include <KelInsInfra/foundation/internal/WindowsApi.h>
#include <KelInsInfra/io/Path.h>
#include <string_view>

namespace KelInsIO {
namespace {

constexpr std::wstring_view kExtendedPrefix = LR"(\\?\)";
constexpr std::wstring_view kExtendedUncPrefix = LR"(\\?\UNC)";

bool IsSlash(char c)
{
    return c == '\\' || c == '/';
}

bool BeginsWithDrive(const std::string& text)
{
    return text.size() >= 2 && text[1] == ':' &&
           ((text[0] >= 'A' && text[0] <= 'Z') || (text[0] >= 'a' && text[0] <= 'z'));
}

bool BeginsWithTwoSlashes(const std::string& text)
{
    return text.size() >= 2 && IsSlash(text[0]) && IsSlash(text[1]);
}

/// The rule of Windows: a drive alone names the current directory of that drive, so it needs a separator after it; any
/// other text needs a server or device name ("\\server", "\\.\x", "\??\x").
bool IsAbsoluteName(const std::string& text)
{
    if (BeginsWithDrive(text))
        return text.size() >= 3 && IsSlash(text[2]);
    if (BeginsWithTwoSlashes(text))
        return text.size() >= 3 && !IsSlash(text[2]);
    return text.starts_with(R"(\??\)");
}

/// Empty when the system cannot tell.
std::wstring AskFullPathName(const std::wstring& name)
{
    const DWORD unitsWithNul = ::GetFullPathNameW(name.c_str(), 0, nullptr, nullptr);
    if (unitsWithNul == 0)
        return {};
    std::wstring full(unitsWithNul, L'\0');
    const DWORD units = ::GetFullPathNameW(name.c_str(), unitsWithNul, full.data(), nullptr);
    full.resize(units < unitsWithNul ? units : 0);
    return full;
}

} // namespace

// NOLINTNEXTLINE(performance-unnecessary-value-param): by value, as callers of the first release were compiled
std::wstring Path::GetFullPathNameW(std::string text)
{
    std::wstring name = KelInsString::Widen(text);
    if (!IsAbsoluteName(text) || text.starts_with(R"(\\?)"))
        return name;
    std::wstring full = AskFullPathName(name);
    if (BeginsWithTwoSlashes(text)) // "\\server\share": one of the two leading backslashes stays
        return full.replace(0, full.empty() ? 0 : 1, kExtendedUncPrefix);
    return full.insert(0, kExtendedPrefix);
}

} // namespace KelInsIO
