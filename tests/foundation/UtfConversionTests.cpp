#include <KelInsInfra/foundation/KelInsString.h>
#include <KelInsInfra/foundation/internal/UniqueHandle.h>
#include <climits>
#include <cstring>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using KelInsString::Narrow;
using KelInsString::Widen;

TEST(Narrow, NullAndEmptyAreEmpty)
{
    EXPECT_EQ(Narrow(static_cast<const wchar_t*>(nullptr)), "");
    EXPECT_EQ(Narrow(L""), "");
    EXPECT_EQ(Narrow(std::wstring()), "");
}

TEST(Widen, NullAndEmptyAreEmpty)
{
    EXPECT_EQ(Widen(static_cast<const char*>(nullptr)), L"");
    EXPECT_EQ(Widen(""), L"");
    EXPECT_EQ(Widen(std::string()), L"");
}

TEST(Narrow, StopsAtTheFirstNul)
{
    EXPECT_EQ(Narrow(std::wstring(L"ab\0cd", 5)), "ab");
    EXPECT_EQ(Narrow(L"ab\0cd"), "ab");
    EXPECT_EQ(Narrow(std::wstring(L"\0cd", 3)), "");
}

TEST(Widen, StopsAtTheFirstNul)
{
    EXPECT_EQ(Widen(std::string("ab\0cd", 5)), L"ab");
    EXPECT_EQ(Widen("ab\0cd"), L"ab");
    EXPECT_EQ(Widen(std::string("\0cd", 3)), L"");
}

struct Pair
{
    const char* label;
    const char* narrow;
    const wchar_t* wide;

    friend void PrintTo(const Pair& c, std::ostream* out) { *out << c.label; }
};

constexpr Pair kPairs[] = {
    {"Ascii", "abc", L"abc"},
    {"TwoBytes", "\xC3\xA9", L"\u00E9"},
    {"ThreeBytes", "\xE2\x82\xAC", L"\u20AC"},
    {"FourBytes", "\xF0\x9F\x8D\x8E", L"\U0001F34E"},
    {"LastBmp", "\xEF\xBF\xBF", L"\uFFFF"},
    {"LastCodePoint", "\xF4\x8F\xBF\xBF", L"\U0010FFFF"},
    {"ByteOrderMark", "\xEF\xBB\xBFx", L"\uFEFFx"},
};

class Utf : public testing::TestWithParam<Pair>
{};

TEST_P(Utf, RoundTrips)
{
    EXPECT_EQ(Widen(GetParam().narrow), GetParam().wide);
    EXPECT_EQ(Narrow(GetParam().wide), GetParam().narrow);
}

INSTANTIATE_TEST_SUITE_P(Table, Utf, testing::ValuesIn(kPairs),
                         [](const auto& test) { return std::string(test.param.label); });

/// Lengths around the limit up to which texts are converted on the stack.
TEST(Utf, EveryLengthRoundTrips)
{
    for (std::size_t length = 1; length <= 1100; ++length) {
        std::wstring wide;
        for (std::size_t i = 0; wide.size() < length; ++i)
            wide += i % 3 == 0 ? L"a" : i % 3 == 1 ? L"\u20AC" : L"\U0001F34E";
        const std::string narrow = Narrow(wide);
        ASSERT_EQ(Widen(narrow), wide) << length;
        const std::wstring worst(length, L'\u20AC'); // three bytes for each unit
        ASSERT_EQ(Narrow(worst).size(), 3 * length);
        ASSERT_EQ(Widen(Narrow(worst)), worst);
    }
}

/// One character outside ASCII at every place of texts of every length around the block sizes.
TEST(Utf, CharacterOutsideAsciiAnywhere)
{
    for (const std::size_t length : {1U, 2U, 15U, 16U, 17U, 31U, 32U, 33U, 64U, 511U, 512U, 513U, 600U}) {
        for (std::size_t place = 0; place < length; ++place) {
            for (const wchar_t unit : {L'\u007F', L'\u0080', L'\u00FF', L'\u0100', L'\u8041'}) {
                std::wstring wide(length, L'x');
                wide[place] = unit;
                const std::string narrow = Narrow(wide);
                ASSERT_EQ(narrow.size(), length - 1U + (unit < 0x80 ? 1U : unit < 0x800 ? 2U : 3U));
                ASSERT_EQ(Widen(narrow), wide) << length << ' ' << place;
            }
        }
    }
}

TEST(Utf, UnpairedSurrogatesAndInvalidBytesAreTheSystems)
{
    EXPECT_EQ(Narrow(L"a\xD800z"), "a\xEF\xBF\xBDz");
    EXPECT_EQ(Narrow(L"\xDC00"), "\xEF\xBF\xBD");
    EXPECT_EQ(Widen("a\xFFz"), L"a\xFFFDz");
    EXPECT_EQ(Widen("a\x80z"), L"a\xFFFDz");
}

/// A text of 'x', or of units of two of them, and a zero at its end. It takes the memory of one piece, which stands
/// there again and again.
class RepeatedText
{
public:
    explicit RepeatedText(std::size_t bytes)
        : piece_(::CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, kPieceSize, nullptr))
    {
        auto* const begin = static_cast<char*>(::VirtualAlloc(nullptr, bytes + kPieceSize, MEM_RESERVE, PAGE_NOACCESS));
        ::VirtualFree(begin, 0, MEM_RELEASE);
        for (std::size_t i = 0; i < bytes / kPieceSize; ++i)
            views_.push_back(::MapViewOfFileEx(piece_.Get(), FILE_MAP_WRITE, 0, 0, 0, begin + i * kPieceSize));
        end_ = ::VirtualAlloc(begin + bytes, kPieceSize, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE);
        if (views_.front() != begin || views_.back() == nullptr || end_ == nullptr)
            throw std::runtime_error("no room for the text");
        std::memset(begin, 'x', kPieceSize);
    }

    ~RepeatedText()
    {
        for (void* view : views_)
            ::UnmapViewOfFile(view);
        ::VirtualFree(end_, 0, MEM_RELEASE);
    }

    RepeatedText(const RepeatedText&) = delete;
    RepeatedText& operator=(const RepeatedText&) = delete;

    [[nodiscard]] const void* Get() const { return views_.front(); }

private:
    static constexpr DWORD kPieceSize = 1U << 26;

    UniqueHandle<HANDLE, ::CloseHandle> piece_;
    std::vector<void*> views_;
    void* end_ = nullptr;
};

/// More than the system's functions can be told.
TEST(Utf, TextOfTwoGiBIsNotConverted)
{
    const std::size_t units = std::size_t{1} << 31;
    const RepeatedText text(units * sizeof(wchar_t));
    EXPECT_EQ(Narrow(static_cast<const wchar_t*>(text.Get())), "");
    EXPECT_EQ(Widen(static_cast<const char*>(text.Get()) + units), L"");
}

TEST(Utf, LargeTextRoundTrips)
{
    const std::string text(3'000'000, 'x');
    EXPECT_EQ(Narrow(Widen(text)), text);
}

} // namespace
