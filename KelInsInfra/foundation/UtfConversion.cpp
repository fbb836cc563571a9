#include <KelInsInfra/foundation/KelInsString.h>
#include <KelInsInfra/foundation/internal/WindowsApi.h>
#include <array>
#include <climits>
#include <cstring>
#include <cwchar>
#include <emmintrin.h>

namespace KelInsString {
namespace {

constexpr std::size_t kShortUnits = 512;    // texts up to this length are converted on the stack, in one call
constexpr std::size_t kMaxBytesPerUnit = 3; // a unit outside a surrogate pair takes at most three bytes of UTF-8
constexpr std::size_t kVectorBytes = 16;

/// Widens text up to the first byte that is NUL or not ASCII, and says how many bytes that were. Most names are ASCII,
/// and for them the system's conversion gives the same units at a multiple of the cost.
std::size_t WidenAscii(const char* bytes, std::size_t byteCount, wchar_t* units)
{
    const __m128i zero = _mm_setzero_si128();
    std::size_t i = 0;
    for (; i + kVectorBytes <= byteCount; i += kVectorBytes) {
        const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes + i));
        if (_mm_movemask_epi8(_mm_cmpgt_epi8(block, zero)) != 0xFFFF) // signed: what is not ASCII is negative
            break;
        _mm_storeu_si128(reinterpret_cast<__m128i*>(units + i), _mm_unpacklo_epi8(block, zero));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(units + i + kVectorBytes / 2), _mm_unpackhi_epi8(block, zero));
    }
    for (; i<byteCount&& static_cast<signed char>(bytes[i])> 0; ++i)
        units[i] = static_cast<wchar_t>(bytes[i]);
    return i;
}

/// The reverse of WidenAscii.
std::size_t NarrowAscii(const wchar_t* units, std::size_t unitCount, char* bytes)
{
    const __m128i zero = _mm_setzero_si128();
    std::size_t i = 0;
    for (; i + kVectorBytes <= unitCount; i += kVectorBytes) {
        const __m128i low = _mm_loadu_si128(reinterpret_cast<const __m128i*>(units + i));
        const __m128i high = _mm_loadu_si128(reinterpret_cast<const __m128i*>(units + i + kVectorBytes / 2));
        const __m128i packed = _mm_packus_epi16(low, high); // units above 0xFF become 0xFF, or 0 when negative
        if (_mm_movemask_epi8(_mm_cmpgt_epi8(packed, zero)) != 0xFFFF)
            break;
        _mm_storeu_si128(reinterpret_cast<__m128i*>(bytes + i), packed);
    }
    for (; i < unitCount && units[i] > 0 && units[i] < 0x80; ++i)
        bytes[i] = static_cast<char>(units[i]);
    return i;
}

/// @param bound  where a NUL stands, at the latest.
std::string NarrowUnits(const wchar_t* units, std::size_t bound)
{
    if (bound <= kShortUnits) {
        std::array<char, kShortUnits * kMaxBytesPerUnit> buffer; // filled below
        const std::size_t ascii = NarrowAscii(units, bound, buffer.data());
        if (units[ascii] == L'\0')
            return {buffer.data(), ascii};
        const int length = static_cast<int>(ascii + std::wcslen(units + ascii));
        const int written = ::WideCharToMultiByte(CP_UTF8, 0, units, length, buffer.data(),
                                                  static_cast<int>(buffer.size()), nullptr, nullptr);
        return written < 1 ? std::string() : std::string(buffer.data(), static_cast<std::size_t>(written));
    }
    const std::size_t unitCount = std::wcslen(units);
    if (unitCount > INT_MAX)
        return {};
    std::string text(unitCount, '\0');
    if (NarrowAscii(units, unitCount, text.data()) == unitCount)
        return text;
    const int length = static_cast<int>(unitCount);
    const int needed = ::WideCharToMultiByte(CP_UTF8, 0, units, length, nullptr, 0, nullptr, nullptr);
    if (needed < 1)
        return {};
    text.resize(static_cast<std::size_t>(needed));
    const int written = ::WideCharToMultiByte(CP_UTF8, 0, units, length, text.data(), needed, nullptr, nullptr);
    return written == needed ? text : std::string();
}

/// @param bound  where a NUL stands, at the latest.
std::wstring WidenBytes(const char* bytes, std::size_t bound)
{
    if (bound <= kShortUnits) {
        std::array<wchar_t, kShortUnits> buffer; // never more units than bytes; filled below
        const std::size_t ascii = WidenAscii(bytes, bound, buffer.data());
        if (bytes[ascii] == '\0')
            return {buffer.data(), ascii};
        const int length = static_cast<int>(ascii + std::strlen(bytes + ascii));
        const int written =
            ::MultiByteToWideChar(CP_UTF8, 0, bytes, length, buffer.data(), static_cast<int>(buffer.size()));
        return written < 1 ? std::wstring() : std::wstring(buffer.data(), static_cast<std::size_t>(written));
    }
    const std::size_t byteCount = std::strlen(bytes);
    if (byteCount > INT_MAX)
        return {};
    std::wstring text(byteCount, L'\0');
    if (WidenAscii(bytes, byteCount, text.data()) == byteCount)
        return text;
    const int length = static_cast<int>(byteCount);
    const int needed = ::MultiByteToWideChar(CP_UTF8, 0, bytes, length, nullptr, 0);
    if (needed < 1)
        return {};
    text.resize(static_cast<std::size_t>(needed));
    const int written = ::MultiByteToWideChar(CP_UTF8, 0, bytes, length, text.data(), needed);
    return written == needed ? text : std::wstring();
}

} // namespace

std::string Narrow(const std::wstring& text)
{
    return NarrowUnits(text.c_str(), text.size());
}

std::string Narrow(const wchar_t* text)
{
    return text == nullptr ? std::string() : NarrowUnits(text, std::wcslen(text));
}

std::wstring Widen(const std::string& text)
{
    return WidenBytes(text.c_str(), text.size());
}

std::wstring Widen(const char* text)
{
    return text == nullptr ? std::wstring() : WidenBytes(text, std::strlen(text));
}

} // namespace KelInsString
