#include <KelInsInfra/config/KelInsJavaProperties.h>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <string_view>

namespace {

using KelInsJavaProperties::loadConvert;
using KelInsJavaProperties::saveConvert;
using namespace std::string_literals;

std::string AllBytes()
{
    std::string bytes;
    for (int byte = 0; byte < 256; ++byte)
        bytes += static_cast<char>(byte);
    return bytes;
}

/// What one byte becomes where it is not the first of its text.
std::string ExpectedEscape(int byte, bool escapeSpace)
{
    const std::string itself(1, static_cast<char>(byte));
    switch (byte) {
    case 0x09:
        return "\\t";
    case 0x0A:
        return "\\n";
    case 0x0C:
        return "\\f";
    case 0x0D:
        return "\\r";
    case 0x20:
        return escapeSpace ? "\\ " : " ";
    case 0x21:
    case 0x23:
    case 0x3A:
    case 0x3D:
    case 0x5C:
        return '\\' + itself;
    default:
        return itself;
    }
}

TEST(SaveConvert, EveryByteAsFirstOfItsText)
{
    for (int byte = 0; byte < 256; ++byte) {
        const std::string text(1, static_cast<char>(byte));
        EXPECT_EQ(saveConvert(text, false), ExpectedEscape(byte, true)) << byte; // a leading blank always counts
        EXPECT_EQ(saveConvert(text, true), ExpectedEscape(byte, true)) << byte;
    }
}

TEST(SaveConvert, EveryByteInsideItsText)
{
    for (int byte = 0; byte < 256; ++byte) {
        const std::string text = 'x' + std::string(1, static_cast<char>(byte)) + 'y';
        EXPECT_EQ(saveConvert(text, false), 'x' + ExpectedEscape(byte, false) + 'y') << byte;
        EXPECT_EQ(saveConvert(text, true), 'x' + ExpectedEscape(byte, true) + 'y') << byte;
    }
}

struct SaveCase
{
    const char* label;
    std::string text;
    std::string value; // without escapeSpace
    std::string key;   // with it

    friend void PrintTo(const SaveCase& c, std::ostream* out) { *out << c.text; }
};

const SaveCase kSaveCases[] = {
    {"Empty", "", "", ""},
    {"LeadingAndInnerBlank", " a b", R"(\ a b)", R"(\ a\ b)"},
    {"TwoLeadingBlanks", "  a", R"(\  a)", R"(\ \ a)"},
    {"BlankAtTheEnd", "a ", "a ", R"(a\ )"},
    {"OneBlank", " ", R"(\ )", R"(\ )"},
    {"BlankAfterAnEscapedByte", "\t a", R"(\t a)", R"(\t\ a)"},
    {"Delimiters", "a=b:c#d!e", R"(a\=b\:c\#d\!e)", R"(a\=b\:c\#d\!e)"},
    {"WindowsPath", R"(C:\Program Files)", R"(C\:\\Program Files)", R"(C\:\\Program\ Files)"},
    {"AccentedLetters", "caf\xC3\xA9", "caf\xC3\xA9", "caf\xC3\xA9"},
    {"BeyondTheBasicPlane", "\xF0\x9F\x8D\x8E", "\xF0\x9F\x8D\x8E", "\xF0\x9F\x8D\x8E"},
    {"PunctuationThatStays", "<;>\"'$%&()*+,-./?@[]^_`{|}~", "<;>\"'$%&()*+,-./?@[]^_`{|}~",
     "<;>\"'$%&()*+,-./?@[]^_`{|}~"},
    {"ControlBytesThatStay", "\x01\x08\x0B\x0E\x1F\x7F", "\x01\x08\x0B\x0E\x1F\x7F", "\x01\x08\x0B\x0E\x1F\x7F"},
    {"ZeroByte", "a\0b"s, "a\0b"s, "a\0b"s},
    {"InvalidUtf8", "\xFF\xC3", "\xFF\xC3", "\xFF\xC3"},
    {"LineEnds", "a\r\nb\fc\td", R"(a\r\nb\fc\td)", R"(a\r\nb\fc\td)"},
};

class SaveConvertTable : public testing::TestWithParam<SaveCase>
{};

TEST_P(SaveConvertTable, EscapesValueAndKey)
{
    EXPECT_EQ(saveConvert(GetParam().text, false), GetParam().value);
    EXPECT_EQ(saveConvert(GetParam().text, true), GetParam().key);
}

TEST_P(SaveConvertTable, IsUndoneByLoadConvert)
{
    EXPECT_EQ(loadConvert(GetParam().value), GetParam().text);
    EXPECT_EQ(loadConvert(GetParam().key), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(Table, SaveConvertTable, testing::ValuesIn(kSaveCases),
                         [](const auto& test) { return std::string(test.param.label); });

TEST(LoadConvert, EveryByteAfterABackslash)
{
    for (int byte = 0; byte < 256; ++byte) {
        const char c = static_cast<char>(byte);
        const char expected = c == 'f' ? '\f' : c == 'n' ? '\n' : c == 'r' ? '\r' : c == 't' ? '\t' : c;
        EXPECT_EQ(loadConvert(R"(x\)" + std::string(1, c) + 'y'), 'x' + std::string(1, expected) + 'y') << byte;
    }
}

TEST(LoadConvert, EveryByteAloneButTheBackslashStaysItself)
{
    for (int byte = 0; byte < 256; ++byte) {
        const std::string text(1, static_cast<char>(byte));
        if (text != "\\") {
            EXPECT_EQ(loadConvert(text), text) << byte;
        }
    }
}

struct LoadCase
{
    const char* label;
    std::string text;
    std::string loaded;

    friend void PrintTo(const LoadCase& c, std::ostream* out) { *out << c.text; }
};

const LoadCase kLoadCases[] = {
    {"Empty", "", ""},
    {"NoEscapes", "plain text", "plain text"},
    {"UnicodeEscapeIsNotDecoded", R"(\u0041)", "u0041"},
    {"TwoBackslashes", R"(\\)", R"(\)"},
    {"ThreeBackslashesAndLetter", R"(\\\n)", "\\\n"},
    {"Delimiters", R"(\=\:\#\!\ )", "=:#! "},
    {"UpperCaseLettersAreThemselves", R"(\N\T\R\F)", "NTRF"},
    {"LoneBackslash", "\\", "\0"s},
    {"BackslashAtTheEnd", "abc\\", "abc\0"s},
    {"ThreeBackslashesAtTheEnd", R"(a\\\)", "a\\\0"s},
    {"ZeroByteInside", "a\0b"s, "a\0b"s},
    {"BackslashBeforeZeroByte", "a\\\0b"s, "a\0b"s},
    {"LineContinuationIsNotHandled", "a\\\nb", "a\nb"},
    {"HighBytesAfterABackslash", "\\\xC3\xA9", "\xC3\xA9"},
};

class LoadConvertTable : public testing::TestWithParam<LoadCase>
{};

TEST_P(LoadConvertTable, RemovesEscapes)
{
    EXPECT_EQ(loadConvert(GetParam().text), GetParam().loaded);
}

INSTANTIATE_TEST_SUITE_P(Table, LoadConvertTable, testing::ValuesIn(kLoadCases),
                         [](const auto& test) { return std::string(test.param.label); });

TEST(JavaProperties, LoadUndoesSaveForAllBytesInOneText)
{
    EXPECT_EQ(loadConvert(saveConvert(AllBytes(), false)), AllBytes());
    EXPECT_EQ(loadConvert(saveConvert(AllBytes(), true)), AllBytes());
}

TEST(JavaProperties, LoadUndoesSaveForRandomText)
{
    std::mt19937 random(20261121);
    constexpr std::string_view special = "\\ \t\n\f\r!#:=fnrtu";
    for (int round = 0; round < 2000; ++round) {
        std::string text(random() % 64, '\0');
        for (char& c : text)
            c = random() % 2 == 0 ? special[random() % special.size()] : static_cast<char>(random());
        EXPECT_EQ(loadConvert(saveConvert(text, false)), text);
        EXPECT_EQ(loadConvert(saveConvert(text, true)), text);
    }
}

TEST(JavaProperties, LargeTextIsConverted)
{
    const std::size_t count = 4 * 1024 * 1024;
    const std::string saved = saveConvert(std::string(count, '='), false);
    EXPECT_EQ(saved.size(), 2 * count);
    EXPECT_EQ(loadConvert(saved), std::string(count, '='));
}

} // namespace
