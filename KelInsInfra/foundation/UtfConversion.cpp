#include <KelInsInfra/foundation/KelInsString.h>
#include <KelInsInfra/foundation/internal/WindowsApi.h>
#include <array>
#include <climits>
#include <cstring>
#include <cwchar>

namespace KelInsString {
namespace {

constexpr std::size_t kShortUnits = 512;    // texts up to this length are converted on the stack, in one call
constexpr std::size_t kMaxBytesPerUnit = 3; // a unit outside a surrogate pair takes at most three bytes of UTF-8

std::string NarrowUnits(const wchar_t* units, std::size_t unitCount)
{
    if (unitCount == 0 || unitCount > INT_MAX)
        return {};
    const int length = static_cast<int>(unitCount);
    if (unitCount <= kShortUnits) {
        std::array<char, kShortUnits * kMaxBytesPerUnit> buffer; // filled by the call
        const int written = ::WideCharToMultiByte(CP_UTF8, 0, units, length, buffer.data(),
                                                  static_cast<int>(buffer.size()), nullptr, nullptr);
        return written < 1 ? std::string() : std::string(buffer.data(), static_cast<std::size_t>(written));
    }
    const int needed = ::WideCharToMultiByte(CP_UTF8, 0, units, length, nullptr, 0, nullptr, nullptr);
    if (needed < 1)
        return {};
    std::string text(static_cast<std::size_t>(needed), '\0');
    const int written = ::WideCharToMultiByte(CP_UTF8, 0, units, length, text.data(), needed, nullptr, nullptr);
    return written == needed ? text : std::string();
}

std::wstring WidenBytes(const char* bytes, std::size_t byteCount)
{
    if (byteCount == 0 || byteCount > INT_MAX)
        return {};
    const int length = static_cast<int>(byteCount);
    if (byteCount <= kShortUnits) {
        std::array<wchar_t, kShortUnits> buffer; // never more units than bytes; filled by the call
        const int written =
            ::MultiByteToWideChar(CP_UTF8, 0, bytes, length, buffer.data(), static_cast<int>(buffer.size()));
        return written < 1 ? std::wstring() : std::wstring(buffer.data(), static_cast<std::size_t>(written));
    }
    const int needed = ::MultiByteToWideChar(CP_UTF8, 0, bytes, length, nullptr, 0);
    if (needed < 1)
        return {};
    std::wstring text(static_cast<std::size_t>(needed), L'\0');
    const int written = ::MultiByteToWideChar(CP_UTF8, 0, bytes, length, text.data(), needed);
    return written == needed ? text : std::wstring();
}

} // namespace

std::string Narrow(const std::wstring& text)
{
    return Narrow(text.c_str()); // up to the first NUL
}

std::string Narrow(const wchar_t* text)
{
    return text == nullptr ? std::string() : NarrowUnits(text, std::wcslen(text));
}

std::wstring Widen(const std::string& text)
{
    return Widen(text.c_str()); // up to the first NUL
}

std::wstring Widen(const char* text)
{
    return text == nullptr ? std::wstring() : WidenBytes(text, std::strlen(text));
}

} // namespace KelInsString
