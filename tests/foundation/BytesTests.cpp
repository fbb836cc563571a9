#include <KelInsInfra/foundation/internal/Bytes.h>
#include <gtest/gtest.h>
#include <string>

namespace {

using KelInsString::CopyBytes;
using KelInsString::FindByte;

constexpr std::size_t kSizes = 70; // several times 16, and each rest

/// In memory of just that size, so that a sanitizer sees what is read beyond it.
TEST(FindByte, FindsTheFirstAtEachPlaceInEachSize)
{
    for (std::size_t size = 0; size < kSizes; ++size) {
        for (std::size_t place = 0; place < size; ++place) {
            std::string text(size, 'x');
            text[place] = '\n';
            const char* const end = text.data() + size;
            ASSERT_EQ(FindByte(text.data(), end, '\n'), text.data() + place) << size;
            ASSERT_EQ(FindByte(text.data() + place + 1, end, '\n'), end) << size;
            text.back() = 'y';
            ASSERT_EQ(FindByte(text.data(), end, 'y', '\n'), text.data() + place) << size;
            ASSERT_EQ(FindByte(text.data(), text.data() + place, 'y', '\n'), text.data() + place) << size;
        }
    }
}

TEST(FindByte, FindsAnyByte)
{
    std::string text;
    for (int byte = 0; byte < 256; ++byte)
        text += static_cast<char>(byte);
    for (const char& byte : text)
        EXPECT_EQ(FindByte(text.data(), text.data() + text.size(), byte), &byte);
}

TEST(FindByte, OfNothingIsItsEnd)
{
    EXPECT_EQ(FindByte(nullptr, nullptr, 'x'), nullptr);
}

TEST(CopyBytes, CopiesEachSizeAndNoMore)
{
    std::string text;
    for (std::size_t size = 0; size < kSizes; text += static_cast<char>('0' + size++)) {
        std::string copy(size + 2, '-');
        CopyBytes(copy.data() + 1, text);
        ASSERT_EQ(copy, '-' + text + '-');
    }
}

} // namespace
