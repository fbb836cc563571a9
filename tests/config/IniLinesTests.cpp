#include "IniModel.h"

#include <KelInsInfra/config/internal/IniLines.h>
#include <KelInsInfra/io/internal/TextLines.h>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <tests/support/ExpectThrowsText.h>
#include <vector>

namespace {

using namespace std::string_literals;
using KelInsIniFile::AssignKey;
using KelInsIniFile::ExtractSectionName;
using KelInsIniFile::ExtractValue;
using KelInsIniFile::KeyAssignment;
using KelInsIniFile::KeySearch;
using KelInsIniFile::Where;

struct HeaderCase
{
    const char* label;
    std::string line;
    std::string name;

    friend void PrintTo(const HeaderCase& c, std::ostream* out) { *out << testing::PrintToString(c.line); }
};

const HeaderCase kHeaderCases[] = {
    {"Plain", "[Main]", "Main"},
    {"BlanksAndTabsOutside", " \t[Main]\t ", "Main"},
    {"BlanksInsideStay", "[ Main\t]", " Main\t"},
    {"OnlyBlanksInside", "[ ]", " "},
    {"CommentAfterIt", "[Main] ; note", ""},
    {"TextBeforeIt", "x[Main]", ""},
    {"EmptyName", "[]", ""},
    {"EmptyNameBetweenBlanks", "  []  ", ""},
    {"OpeningBracketAlone", "[", ""},
    {"ClosingBracketAlone", "]", ""},
    {"OneLetter", "a", ""},
    {"WrongOrder", "][", ""},
    {"TwoOpeningBrackets", "[[", ""},
    {"TwoClosingBrackets", "]]", ""},
    {"NestedBrackets", "[[a]]", "[a]"},
    {"BracketsInTheName", "[a][b]", "a][b"},
    {"EqualsSignInTheName", "[a=b]", "a=b"},
    {"ClosedLater", "[Main", ""},
    {"Empty", "", ""},
    {"BlanksAndTabsAlone", " \t ", ""},
    {"CarriageReturnIsVisible", "[Main]\r", ""},
    {"VerticalTabIsVisible", "\v[Main]", ""},
    {"NoBreakSpaceIsVisible", "\xC2\xA0[Main]", ""},
    {"ByteOrderMarkIsVisible", "\xEF\xBB\xBF[Main]", ""},
    {"NonAscii",
     "[\xC3\x9C"
     "bung]",
     "\xC3\x9C"
     "bung"},
    {"ZeroByteInTheName", "[a\0b]"s, "a\0b"s},
};

class ExtractSectionNameTable : public testing::TestWithParam<HeaderCase>
{};

TEST_P(ExtractSectionNameTable, GivesName)
{
    EXPECT_EQ(ExtractSectionName(GetParam().line), GetParam().name);
}

INSTANTIATE_TEST_SUITE_P(Table, ExtractSectionNameTable, testing::ValuesIn(kHeaderCases),
                         [](const auto& test) { return std::string(test.param.label); });

TEST(ExtractValue, TellsNoValueFromAnEmptyOne)
{
    EXPECT_EQ(ExtractValue("A=", "A"), "");
    EXPECT_EQ(ExtractValue("A=1=2", "A"), "1=2");
    EXPECT_EQ(ExtractValue("A", "A"), std::nullopt);
    EXPECT_EQ(ExtractValue("", "A"), std::nullopt);
    EXPECT_EQ(ExtractValue("A =1", "A"), std::nullopt);
    EXPECT_EQ(ExtractValue("AB=1", "A"), std::nullopt);
    EXPECT_EQ(ExtractValue("a=1", "A"), std::nullopt);
    EXPECT_EQ(ExtractValue("A=B=1", "A=B"), std::nullopt); // a key with '=' in it cannot be found
}

std::string Search(std::string_view content, std::string_view section, std::string_view key)
{
    KeySearch search(section, key);
    while (!content.empty())
        if (const auto value = search.Examine(KelInsIO::TakeLine(content)))
            return std::string(*value);
    return "(not found)";
}

struct SearchCase
{
    const char* label;
    std::string content;
    std::string section;
    std::string key;
    std::string value;

    friend void PrintTo(const SearchCase& c, std::ostream* out) { *out << testing::PrintToString(c.content); }
};

const SearchCase kSearchCases[] = {
    {"EmptyValue", "[S]\nA=\n", "S", "A", ""},
    {"KeyIsTakenVerbatim", "[S]\nA = 1\n", "S", "A", "(not found)"},
    {"KeyWithItsBlankIsFound", "[S]\nA = 1\n", "S", "A ", " 1"},
    {"SecondEqualsSignBelongsToTheValue", "[S]\nA=1=2\n", "S", "A", "1=2"},
    {"EmptySectionEndsAtTheFirstHeader", "A=1\n[S]\nB=2\n", "", "B", "(not found)"},
    {"EmptySectionFindsLinesBefore", "A=1\n[S]\nA=2\n", "", "A", "1"},
    {"EmptySectionWithoutHeaders", "A=1\nB=2", "", "B", "2"},
    {"EmptySectionIsNotOpenedAgain", "[S]\nA=2\n[]\nA=3\n", "", "A", "(not found)"},
    {"BlanksAndTabsAroundTheHeader", "\t [Main] \t\nA=1\n", "Main", "A", "1"},
    {"HeaderWithCommentIsNone", "[Main] ; note\nA=1\n", "Main", "A", "(not found)"},
    {"HeaderWithCommentDoesNotCloseASection", "[S]\n[Main] ; note\nA=1\n", "S", "A", "1"},
    {"EmptyBracketsDoNotCloseASection", "[S]\n[]\nA=1\n", "S", "A", "1"},
    {"CommentLookingLines", "[S]\n;A=1\n#A=2\n", "S", "A", "(not found)"},
    {"CommentLookingKeys", "[S]\n;A=1\n#A=2\n", "S", "#A", "2"},
    {"RepeatedSection", "[S]\nA=1\n[T]\nB=2\n[S]\nB=3\n", "S", "B", "3"},
    {"FirstOfTwoLinesWins", "[S]\nA=1\nA=2\n", "S", "A", "1"},
    {"FirstOfTwoPlacesWins", "[S]\nA=1\n[T]\n[S]\nA=2\n", "S", "A", "1"},
    {"SectionCaseMatters", "[main]\nA=1\n", "Main", "A", "(not found)"},
    {"KeyCaseMatters", "[S]\na=1\n", "S", "A", "(not found)"},
    {"OtherSection", "[S]\nA=1\n", "T", "A", "(not found)"},
    {"AfterTheNextHeader", "[S]\n[T]\nA=1\n", "S", "A", "(not found)"},
    {"SectionNameWithBlanks", "[ Main ]\nA=1\n", " Main ", "A", "1"},
    {"SectionNameWithBlanksIsAnother", "[ Main ]\nA=1\n", "Main", "A", "(not found)"},
    {"ShellFile", "K=1\r\nexport K\r\nL=2\r\nexport L\r\n", "", "L", "2"},
    {"ShellFileWithBracketedLine", "[ -f x ]\r\nK=1\r\nexport K\r\n", "", "K", "(not found)"},
    {"HeaderWithEqualsSign", "[a=b]\nA=1\n", "", "[a", "(not found)"},
    {"ByteOrderMarkHidesAHeader", "\xEF\xBB\xBF[S]\nA=1\n", "S", "A", "(not found)"},
    {"ByteOrderMarkBelongsToAKey",
     "\xEF\xBB\xBF"
     "A=1\n",
     "",
     "\xEF\xBB\xBF"
     "A",
     "1"},
    {"CrCrLf", "[S]\r\nA=1\r\r\n", "S", "A", "1\r"},
    {"CrCrLfHidesAHeader", "[S]\r\r\nA=1\r\n", "S", "A", "(not found)"},
    {"NoFinalLineEnd", "[S]\nA=1", "S", "A", "1"},
    {"FinalCarriageReturn", "[S]\nA=1\r", "S", "A", "1"},
    {"NonAscii", "[\xC3\x9C]\n\xC3\xA4=\xE6\x97\xA5\n", "\xC3\x9C", "\xC3\xA4", "\xE6\x97\xA5"},
    {"ValueWithBlanks", "[S]\nA= 1 \t\n", "S", "A", " 1 \t"},
    {"EmptyKeyLine", "[S]\n=1\nA=2\n", "S", "A", "2"},
};

class KeySearchTable : public testing::TestWithParam<SearchCase>
{};

TEST_P(KeySearchTable, FindsTheValue)
{
    EXPECT_EQ(Search(GetParam().content, GetParam().section, GetParam().key), GetParam().value);
}

INSTANTIATE_TEST_SUITE_P(Table, KeySearchTable, testing::ValuesIn(kSearchCases),
                         [](const auto& test) { return std::string(test.param.label); });

struct JoinCase
{
    const char* label;
    Where where;
    std::string oldValue;
    std::string value;
    std::string result;

    friend void PrintTo(const JoinCase& c, std::ostream* out) { *out << c.oldValue << " and " << c.value; }
};

const JoinCase kJoinCases[] = {
    {"Replace", Where::Replace, "a", "b", "b"},
    {"ReplaceByNothing", Where::Replace, "a", "", ""},
    {"Append", Where::Append, "a", "b", "a;b"},
    {"AppendToSeparator", Where::Append, "a;", "b", "a;b"},
    {"AppendSeparatorFirst", Where::Append, "a", ";b", "a;b"},
    {"AppendBothSeparators", Where::Append, "a;", ";b", "a;;b"},
    {"AppendToNothing", Where::Append, "", "b", "b"},
    {"AppendNothing", Where::Append, "a", "", "a"},
    {"AppendNothingToNothing", Where::Append, "", "", ""},
    {"AppendNothingToSeparator", Where::Append, "a;", "", "a;"},
    {"AppendSeparatorToNothing", Where::Append, "", ";b", ";b"},
    {"AppendOnlyTheSeparator", Where::Append, "a", ";", "a;"},
    {"AppendLooksAtTheNearEndsOnly", Where::Append, ";a", "b;", ";a;b;"},
    {"Prepend", Where::Prepend, "a", "b", "b;a"},
    {"PrependWithSeparator", Where::Prepend, "a", "b;", "b;a"},
    {"PrependBeforeSeparator", Where::Prepend, ";a", "b", "b;a"},
    {"PrependBothSeparators", Where::Prepend, ";a", "b;", "b;;a"},
    {"PrependToNothing", Where::Prepend, "", "b", "b"},
    {"PrependNothing", Where::Prepend, "a", "", "a"},
    {"PrependNothingToNothing", Where::Prepend, "", "", ""},
    {"PrependNothingBeforeSeparator", Where::Prepend, ";a", "", ";a"},
    {"PrependLooksAtTheNearEndsOnly", Where::Prepend, "a;", ";b", ";b;a;"},
    {"UnknownThree", static_cast<Where>(3), "a", "b", "b"},
    {"UnknownNegative", static_cast<Where>(-1), "a", "b", "b"},
    {"UnknownLargest", static_cast<Where>(0x7FFFFFFF), "a", "b", "b"},
};

class AssignKeyJoin : public testing::TestWithParam<JoinCase>
{};

TEST_P(AssignKeyJoin, CombinesOldAndNewValue)
{
    const JoinCase& c = GetParam();
    const KeyAssignment assignment{
        .fileName = "f", .section = {}, .key = "K", .value = c.value, .where = c.where, .separator = ';'};
    EXPECT_EQ(AssignKey("K=" + c.oldValue, assignment), "K=" + c.result + "\r\n");
}

TEST_P(AssignKeyJoin, ANewKeyGetsTheNewValueAlone)
{
    const JoinCase& c = GetParam();
    const KeyAssignment assignment{
        .fileName = "f", .section = {}, .key = "K", .value = c.value, .where = c.where, .separator = ';'};
    EXPECT_EQ(AssignKey("L=" + c.oldValue, assignment), "L=" + c.oldValue + "\r\nK=" + c.value + "\r\n");
}

INSTANTIATE_TEST_SUITE_P(Table, AssignKeyJoin, testing::ValuesIn(kJoinCases),
                         [](const auto& test) { return std::string(test.param.label); });

TEST(AssignKey, TheSeparatorMayBeAnyByte)
{
    KeyAssignment assignment{
        .fileName = "f", .section = {}, .key = "K", .value = "b", .where = Where::Append, .separator = '\0'};
    EXPECT_EQ(AssignKey("K=a\n", assignment), "K=a\0b\r\n"s);
    assignment.separator = '=';
    EXPECT_EQ(AssignKey("K=a\n", assignment), "K=a=b\r\n");
    assignment.separator = '\xE9';
    EXPECT_EQ(AssignKey("K=a\xE9\n", assignment), "K=a\xE9"
                                                  "b\r\n");
}

struct AssignCase
{
    const char* label;
    std::string content;
    std::string section;
    std::string key;
    std::string result; // of the value "v"

    friend void PrintTo(const AssignCase& c, std::ostream* out) { *out << testing::PrintToString(c.content); }
};

const AssignCase kSectionCases[] = {
    {"NoContent", "", "S", "K", "[S]\r\nK=v\r\n"},
    {"NoContentNoSection", "", "", "K", "K=v\r\n"},
    {"BeforeTheFirstHeader", "[A]\nK=1\n", "", "K", "K=v\r\n[A]\r\nK=1\r\n"},
    {"BeforeTheNextHeader", "[S]\r\n[T]\r\n", "S", "K", "[S]\r\nK=v\r\n[T]\r\n"},
    {"AfterBlankAndCommentLines", "[S]\r\nA=1\r\n\r\n; note\r\n\r\n[T]\r\n", "S", "K",
     "[S]\r\nA=1\r\n\r\n; note\r\n\r\nK=v\r\n[T]\r\n"},
    {"AtTheEnd", "[S]\r\nA=1\r\n", "S", "K", "[S]\r\nA=1\r\nK=v\r\n"},
    {"AtTheEndWithoutLineEnd", "[S]\r\nA=1", "S", "K", "[S]\r\nA=1\r\nK=v\r\n"},
    {"NewSectionAtTheEnd", "A=1\r\n[T]\r\nB=2\r\n", "S", "K", "A=1\r\n[T]\r\nB=2\r\n[S]\r\nK=v\r\n"},
    {"ReplacesTheValue", "[S]\r\nK=old\r\nL=2\r\n", "S", "K", "[S]\r\nK=v\r\nL=2\r\n"},
    {"ReplacesTheFirstMatchOnly", "[S]\nK=1\nK=2\n", "S", "K", "[S]\r\nK=v\r\nK=2\r\n"},
    {"OnlyInItsSection", "K=0\n[R]\nK=1\n[S]\nK=2\n", "S", "K", "K=0\r\n[R]\r\nK=1\r\n[S]\r\nK=v\r\n"},
    {"OnlyTheFirstSectionOfTheName", "[S]\nA=1\n[T]\n[S]\nK=2\n", "S", "K",
     "[S]\r\nA=1\r\nK=v\r\n[T]\r\n[S]\r\nK=2\r\n"},
    {"SecondHeaderOfTheNameEndsTheSection", "[S]\n[S]\nK=2\n", "S", "K", "[S]\r\nK=v\r\n[S]\r\nK=2\r\n"},
    {"SectionCaseMatters", "[s]\nK=1\n", "S", "K", "[s]\r\nK=1\r\n[S]\r\nK=v\r\n"},
    {"KeyIsTakenVerbatim", "[S]\nK = 1\n", "S", "K", "[S]\r\nK = 1\r\nK=v\r\n"},
    {"LfBecomesCrLf", "; a\n\n[S]\nK=1\n", "S", "K", "; a\r\n\r\n[S]\r\nK=v\r\n"},
    {"CrCrLfKeepsOne", "[S]\r\nA=1\r\r\n", "S", "K", "[S]\r\nA=1\r\r\nK=v\r\n"},
    {"InnerCarriageReturnStays", "A=\r1\n", "", "K", "A=\r1\r\nK=v\r\n"},
    {"NewSectionAfterALineWithoutLineEnd", "A=1", "S", "K", "A=1\r\n[S]\r\nK=v\r\n"},
    {"NewSectionAfterACarriageReturn", "A=1\r\nB=2\r", "S", "K", "A=1\r\nB=2\r\n[S]\r\nK=v\r\n"},
    {"ReplacesTheLastLineWithoutLineEnd", "A=1\r\nK=1", "", "K", "A=1\r\nK=v\r\n"},
    {"FinalEmptyLineStays", "A=1\n\n", "", "K", "A=1\r\n\r\nK=v\r\n"},
    {"HeaderWithBlanksIsKept", "  [S]\t\nK=1\n", "S", "K", "  [S]\t\r\nK=v\r\n"},
    {"HeaderWithCommentIsNone", "[S] ; x\nK=1\n", "S", "K", "[S] ; x\r\nK=1\r\n[S]\r\nK=v\r\n"},
    {"EmptyBracketsEndNoSection", "[S]\n[]\nK=1\n", "S", "K", "[S]\r\n[]\r\nK=v\r\n"},
    {"HeaderWithEqualsSignIsNoKeyLine", "[K=x]\n", "", "[K", "[K=v\r\n[K=x]\r\n"},
    {"ByteOrderMarkHidesTheFirstHeader", "\xEF\xBB\xBF[S]\nK=1\n", "S", "K",
     "\xEF\xBB\xBF[S]\r\nK=1\r\n[S]\r\nK=v\r\n"},
    {"ByteOrderMarkStaysFirst", "\xEF\xBB\xBF\n[S]\n", "", "K", "\xEF\xBB\xBF\r\nK=v\r\n[S]\r\n"},
    {"ByteOrderMarkBelongsToTheFirstKey", "\xEF\xBB\xBFK=1\n", "", "K", "\xEF\xBB\xBFK=1\r\nK=v\r\n"},
    {"EqualsSignInTheKeyIsNeverFound", "A=B=1\n", "", "A=B", "A=B=1\r\nA=B=v\r\n"},
    {"ZeroBytesStay", "A=\0\n[S]\n"s, "S", "K", "A=\0\r\n[S]\r\nK=v\r\n"s},
    {"NonAscii", "[\xC3\x9C]\n\xC3\xA4=1\n", "\xC3\x9C", "\xC3\xA4", "[\xC3\x9C]\r\n\xC3\xA4=v\r\n"},
};

class AssignKeySection : public testing::TestWithParam<AssignCase>
{};

TEST_P(AssignKeySection, EditsTheLines)
{
    const AssignCase& c = GetParam();
    EXPECT_EQ(AssignKey(c.content, {.fileName = "f", .section = c.section, .key = c.key, .value = "v"}), c.result);
}

INSTANTIATE_TEST_SUITE_P(Table, AssignKeySection, testing::ValuesIn(kSectionCases),
                         [](const auto& test) { return std::string(test.param.label); });

const AssignCase kShellCases[] = {
    {"NoContent", "", "", "K", "K=v\r\nexport K\r\n"},
    {"Replaces", "K=1\r\nexport K\r\n", "", "K", "K=v\r\nexport K\r\n"},
    {"NewKeyAtTheEnd", "K=1\r\nexport K\r\n", "", "L", "K=1\r\nexport K\r\nL=v\r\nexport L\r\n"},
    {"SectionIsIgnored", "K=1\nexport K\n", "S", "K", "K=v\r\nexport K\r\n"},
    {"SectionIsNotCreated", "", "S", "K", "K=v\r\nexport K\r\n"},
    {"BracketedLinesAreOrdinary", "[S]\nA=1\nexport A\n[T]\nK=1\nexport K\n", "", "K",
     "[S]\r\nA=1\r\nexport A\r\n[T]\r\nK=v\r\nexport K\r\n"},
    {"NewKeyAfterBracketedLines", "[S]\n", "", "K", "[S]\r\nK=v\r\nexport K\r\n"},
    {"BracketedLineAssignsAKey", "[K=1]\nexport [K\n", "", "[K", "[K=v\r\nexport [K\r\n"},
    {"OnlyTheFirstMatch", "K=1\nexport K\nK=2\nexport K\n", "", "K", "K=v\r\nexport K\r\nK=2\r\nexport K\r\n"},
    {"LaterMatchIsNotChecked", "K=1\nexport K\nK=2\n", "", "K", "K=v\r\nexport K\r\nK=2\r\n"},
    {"ExportLinesAloneAreOrdinary", "export K\n", "", "K", "export K\r\nK=v\r\nexport K\r\n"},
    {"AssigningExportIsAnotherKey", "export K=1\n", "", "K", "export K=1\r\nK=v\r\nexport K\r\n"},
};

class AssignKeyShell : public testing::TestWithParam<AssignCase>
{};

TEST_P(AssignKeyShell, EditsTheLines)
{
    const AssignCase& c = GetParam();
    const KeyAssignment assignment{
        .fileName = "f", .section = c.section, .key = c.key, .value = "v", .shellExport = true};
    EXPECT_EQ(AssignKey(c.content, assignment), c.result);
}

INSTANTIATE_TEST_SUITE_P(Table, AssignKeyShell, testing::ValuesIn(kShellCases),
                         [](const auto& test) { return std::string(test.param.label); });

TEST(AssignKey, AppendsAndPrependsInAShellFile)
{
    KeyAssignment assignment{.fileName = "f",
                             .section = {},
                             .key = "K",
                             .value = "b",
                             .where = Where::Append,
                             .separator = ':',
                             .shellExport = true};
    EXPECT_EQ(AssignKey("K=a\nexport K\n", assignment), "K=a:b\r\nexport K\r\n");
    assignment.where = Where::Prepend;
    EXPECT_EQ(AssignKey("K=a\nexport K\n", assignment), "K=b:a\r\nexport K\r\n");
}

struct BadShellCase
{
    const char* label;
    std::string content;
    std::string message;

    friend void PrintTo(const BadShellCase& c, std::ostream* out) { *out << testing::PrintToString(c.content); }
};

const BadShellCase kBadShellCases[] = {
    {"MatchIsTheLastLine", "A=1\nK=1\n", R"(dir\f: bad format: missing "export K" at the end.)"},
    {"MatchIsTheLastLineWithoutLineEnd", "K=1", R"(dir\f: bad format: missing "export K" at the end.)"},
    {"OtherNextLine", "K=1=2 \nexport L\n", "dir\\f: bad format: missing \"export K\" after line\nK=1=2 "},
    {"EmptyNextLine", "K=1\n\n", "dir\\f: bad format: missing \"export K\" after line\nK=1"},
    {"EmptyLineBetween", "K=1\n\nexport K\n", "dir\\f: bad format: missing \"export K\" after line\nK=1"},
    {"BlankAfterTheName", "K=1\nexport K \n", "dir\\f: bad format: missing \"export K\" after line\nK=1"},
    {"TwoBlanks", "K=1\nexport  K\n", "dir\\f: bad format: missing \"export K\" after line\nK=1"},
    {"BlankBefore", "K=1\n export K\n", "dir\\f: bad format: missing \"export K\" after line\nK=1"},
    {"CarriageReturnTooMany", "K=1\r\nexport K\r\r\n", "dir\\f: bad format: missing \"export K\" after line\nK=1"},
    {"FirstMatchCounts", "K=1\nx\nK=2\nexport K\n", "dir\\f: bad format: missing \"export K\" after line\nK=1"},
};

class AssignKeyBadShell : public testing::TestWithParam<BadShellCase>
{};

TEST_P(AssignKeyBadShell, Throws)
{
    const KeyAssignment assignment{
        .fileName = R"(dir\f)", .section = {}, .key = "K", .value = "v", .shellExport = true};
    ExpectThrowsText<std::runtime_error>([&] { AssignKey(GetParam().content, assignment); }, GetParam().message);
}

INSTANTIATE_TEST_SUITE_P(Table, AssignKeyBadShell, testing::ValuesIn(kBadShellCases),
                         [](const auto& test) { return std::string(test.param.label); });

TEST(AssignKey, AMissingExportDoesNotMatterOutsideShellFiles)
{
    EXPECT_EQ(AssignKey("K=1\n", {.fileName = "f", .section = {}, .key = "K", .value = "v"}), "K=v\r\n");
}

TEST(AssignKey, KeepsHugeLines)
{
    const std::string huge(4 * 1024 * 1024, 'x');
    const std::string content = huge + "\n[S]\nK=" + huge + "\n";
    const KeyAssignment assignment{
        .fileName = "f", .section = "S", .key = "K", .value = "v", .where = Where::Append, .separator = ';'};
    EXPECT_TRUE(AssignKey(content, assignment) == huge + "\r\n[S]\r\nK=" + huge + ";v\r\n");
}

std::string RandomPiece(std::mt19937& random)
{
    constexpr const char* pieces[] = {"[S]", "[T]", "[",  "]",  "=",  "K",    "L",  "K=",       "K=;a", ";",
                                      " ",   "\t",  "\n", "\n", "\n", "\r\n", "\r", "export K", "a",    "[]"};
    return pieces[random() % std::size(pieces)];
}

TEST(AssignKey, AgreesWithTheLiteralRulesOnRandomFiles)
{
    std::mt19937 random(3);
    for (int round = 0; round < 20000; ++round) {
        std::string content;
        for (auto count = random() % 24; count > 0; --count)
            content += RandomPiece(random);
        if (round % 2 == 0) // as Write itself leaves a file
            content = IniModel::Save(IniModel::Lines(content));
        IniModel::Request request{.section = random() % 3 == 0 ? "" : "S", .key = random() % 4 == 0 ? "L" : "K"};
        request.value = random() % 4 == 0 ? "" : random() % 2 == 0 ? ";v" : "v;";
        request.where = static_cast<int>(random() % 4);
        request.shellExport = random() % 3 == 0;
        const KeyAssignment assignment{.fileName = "",
                                       .section = request.section,
                                       .key = request.key,
                                       .value = request.value,
                                       .where = static_cast<Where>(request.where),
                                       .separator = request.separator,
                                       .shellExport = request.shellExport};
        std::string expected;
        std::string actual;
        try {
            expected = IniModel::Write(content, request);
        } catch (const std::runtime_error& error) {
            expected = error.what();
        }
        try {
            actual = AssignKey(content, assignment);
        } catch (const std::runtime_error& error) {
            actual = error.what();
        }
        ASSERT_EQ(actual, expected) << testing::PrintToString(content);
    }
}

TEST(KeySearch, AgreesWithTheLiteralRulesOnRandomFiles)
{
    std::mt19937 random(4);
    for (int round = 0; round < 20000; ++round) {
        std::string content;
        for (auto count = random() % 24; count > 0; --count)
            content += RandomPiece(random);
        const std::string section = random() % 3 == 0 ? "" : "S";
        std::string expected = "(not found)";
        try {
            expected = IniModel::Read(content, section, "K");
        } catch (const IniModel::NotFound&) {
        }
        ASSERT_EQ(Search(content, section, "K"), expected) << testing::PrintToString(content);
    }
}

} // namespace
