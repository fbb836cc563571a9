#include "tests/support/ExpectThrowsText.h"
#include <KelInsInfra/xml/Comment.h>
#include <KelInsInfra/xml/Exception.h>
#include <KelInsInfra/xml/Parser.h>
#include <KelInsInfra/xml/Text.h>
#include <gtest/gtest.h>
#include <sstream>
#include <string_view>

namespace {

using XML::Parser;
using namespace std::string_literals;

static_assert(static_cast<int>(Parser::AttributeValueDelimiter::SingleQuote) == 0);
static_assert(static_cast<int>(Parser::AttributeValueDelimiter::DoubleQuote) == 1);
static_assert(std::is_base_of_v<std::runtime_error, XML::Exception>);

std::unique_ptr<XML::Document> Parse(const std::string& text)
{
    std::istringstream input(text);
    return Parser(input).Parse();
}

/// A tree on one line: elements as name(attribute=value ...)[content], texts in quotes, comments in braces.
std::string Sketch(const XML::ContentList& content);

std::string Sketch(const XML::Content& node)
{
    if (const auto* text = dynamic_cast<const XML::Text*>(&node))
        return "'" + text->GetText() + "'";
    if (const auto* comment = dynamic_cast<const XML::Comment*>(&node))
        return "{" + comment->GetComment() + "}";
    const auto& element = dynamic_cast<const XML::Element&>(node);
    std::string attributes;
    for (const auto& [name, value] : element.GetAttributes())
        attributes += (attributes.empty() ? "" : " ") + name + "=" + value;
    return element.GetName() + (attributes.empty() ? "" : "(" + attributes + ")") + "[" + Sketch(element.GetContent()) +
           "]";
}

std::string Sketch(const XML::ContentList& content)
{
    std::string text;
    for (const auto& node : content)
        text += (text.empty() ? "" : " ") + Sketch(*node);
    return text;
}

struct TreeCase
{
    const char* label;
    std::string input;
    std::string tree;

    friend void PrintTo(const TreeCase& c, std::ostream* out) { *out << testing::PrintToString(c.input); }
};

class XmlParserTree : public testing::TestWithParam<TreeCase>
{};

TEST_P(XmlParserTree, IsBuilt)
{
    EXPECT_EQ(Sketch(Parse(GetParam().input)->GetContent()), GetParam().tree);
}

std::string Label(const testing::TestParamInfo<TreeCase>& test)
{
    return test.param.label;
}

const TreeCase kTagTrees[] = {
    {"EmptyElement", "<a/>", "a[]"},
    {"OpenedAndClosed", "<a></a>", "a[]"},
    {"Nested", "<a><b><c/></b><d></d></a>", "a[b[c[]] d[]]"},
    {"Attributes", "<a x='1' y='2'/>", "a(x=1 y=2)[]"},
    {"DuplicateAttributesAreKept", "<a x='1' x='2'/>", "a(x=1 x=2)[]"},
    {"BothKindsOfQuotes", R"(<a x="it's" y='say "x"'/>)", "a(x=it's y=say \"x\")[]"},
    {"NoBlankBetweenAttributes", "<a x='1'y=\"2\"z='3'/>", "a(x=1 y=2 z=3)[]"},
    {"BlanksAroundEquals", "<a x = '1' y\r\n=\t'2'/>", "a(x=1 y=2)[]"},
    {"BlanksBeforeTheEndOfTags", "<a \t\r\n><b x='1' /></a \n>", "a[b(x=1)[]]"},
    {"GreaterInAValue", "<a x='>'/>", "a(x=>)[]"},
    {"ValueKeepsItsBlanks", "<a x=' \t\r\n b '/>", "a(x= \t\r\n b )[]"},
    {"EmptyValue", "<a x=''/>", "a(x=)[]"},
    {"ReferencesInAValue", "<a x='&lt;&#65;&quot;b&apos;&gt;&amp;'/>", "a(x=<A\"b'>&)[]"},
    {"ReferenceToTheDelimiterDoesNotEndTheValue", "<a x='&#39;&apos;'/>", "a(x='')[]"},
    {"NameBytes", "<_a-b.C9/>", "_a-b.C9[]"},
    {"NameOfUtf8", "<\xC3\xA9t\xC3\xA9/>", "\xC3\xA9t\xC3\xA9[]"},
    {"ExcludedStartBytesInsideAName", "<a\x97\xB7/>", "a\x97\xB7[]"},
    {"ClosingTagOfUtf8", "<\x80></\x80>", "\x80[]"},
};

INSTANTIATE_TEST_SUITE_P(Tags, XmlParserTree, testing::ValuesIn(kTagTrees), Label);

const TreeCase kTextTrees[] = {
    {"References", "<a> hi &amp; &#65;&#x42; </a>", "a[' hi & AB ']"},
    {"AllNamedReferences", "<a>&amp;&lt;&gt;&quot;&apos;</a>", "a['&<>\"'']"},
    {"OnlyBlanksAreDropped", "<a>\n  <b/>\n</a>", "a[b[]]"},
    {"BlanksMadeByReferencesAreDroppedToo", "<a>&#32;&#x9;\n</a>", "a[]"},
    {"UntrimmedBesideElements", "<a> x <b/>\ty\n</a>", "a[' x ' b[] '\ty\n']"},
    {"CommentSplits", "<a>x<!--c-->y</a>", "a['x' {c} 'y']"},
    {"ProcessingInstructionSplits", "<a>x<?p?>y</a>", "a['x' 'y']"},
    {"DeclarationSplits", "<a>x<!d>y</a>", "a['x' 'y']"},
    {"CarriageReturnsStay", "<a>x\r\ny\rz</a>", "a['x\r\ny\rz']"},
    {"GreaterAndQuotesAreText", "<a>]]> \"'</a>", "a[']]> \"'']"},
    {"OtherWhitespaceIsText", "<a>\f</a>", "a['\f']"},
    {"ZeroBytesAreText", "<a>x\0y</a>"s, "a['x\0y']"s},
    {"InvalidUtf8PassesThrough", "<a>\xFF\xC0\x80</a>", "a['\xFF\xC0\x80']"},
    {"TextBeforeTheFirstMarkupIsIgnored", "x<a/>", "a[]"},
    {"ReferenceBeforeTheFirstMarkupIsIgnored", "&nonsense &#0; & <a/>", "a[]"},
    {"ByteOrderMarkIsIgnored", "\xEF\xBB\xBF<?xml version='1.0'?><a/>", "a[]"},
    {"ZeroBytesBeforeTheFirstMarkupAreIgnored", "\0\0<a/>"s, "a[]"},
    {"BlanksOutsideTheRoot", "<!--c--> \r\n\t<a/> \r\n\t", "{c} a[]"},
    {"BlankReferencesBetweenTopLevelMarkup", "<a/>&#32;<!--c-->", "a[] {c}"},
};

INSTANTIATE_TEST_SUITE_P(Texts, XmlParserTree, testing::ValuesIn(kTextTrees), Label);

const TreeCase kOtherTrees[] = {
    {"EmptyInput", "", ""},
    {"NoMarkup", "hello", ""},
    {"NoMarkupOnlyZeroBytes", "\0\0"s, ""},
    {"NoMarkupWithReference", "&nonsense", ""},
    {"OnlyDeclarations", "<?xml?><!DOCTYPE a>\n", ""},
    {"OnlyComments", "<!--a--><!--b-->", "{a} {b}"},
    {"CommentsAroundTheRoot", "<?xml version='1.0'?><!DOCTYPE a><!--c--><a/><!--d-->", "{c} a[] {d}"},
    {"CommentKeepsEverything", "<a><!-- &amp; <b> - -> \n--></a>", "a[{ &amp; <b> - -> \n}]"},
    {"CommentEndsAtTheFirstEnd", "<a><!--x--->y</a>", "a[{x-} 'y']"},
    {"CommentOfNothing", "<!---->", "{}"},
    {"CommentOfDashes", "<!------>", "{--}"},
    {"CommentThatStartsLikeItsEnd", "<!--->-->", "{->}"},
    {"OneDashIsADeclaration", "<a><!-x-->y</a>", "a['y']"},
    {"CDataIsLost", "<a><![CDATA[x]]></a>", "a[]"},
    {"CDataEndsAtTheFirstGreater", "<a><![CDATA[x>y]]></a>", "a['y]]>']"},
    {"DeclarationOfNothing", "<a><!></a>", "a[]"},
    {"DoctypeEndsAtTheFirstGreater", "<!DOCTYPE a SYSTEM '<x'><a/>", "a[]"},
    {"ProcessingInstructionAnywhere", "<?p?><a><?p <b> > ? ?></a><?p?>", "a[]"},
    {"ProcessingInstructionOfNothing",
     "<?"
     "?><a/>",
     "a[]"},
    {"QuestionMarkOfTheStartIsNotThatOfTheEnd", "<?>?><a/>", "a[]"},
};

INSTANTIATE_TEST_SUITE_P(Others, XmlParserTree, testing::ValuesIn(kOtherTrees), Label);

const TreeCase kReferenceTrees[] = {
    {"Decimal", "<a>&#65;</a>", "a['A']"},
    {"HexadecimalOfBothCases", "<a>&#x4a;&#x4B;</a>", "a['JK']"},
    {"LeadingZeros", "<a>&#0000065;&#x00041;</a>", "a['AA']"},
    {"LastOfOneByte", "<a>&#x7F;</a>", "a['\x7F']"},
    {"FirstOfTwoBytes", "<a>&#x80;</a>", "a['\xC2\x80']"},
    {"LastOfTwoBytes", "<a>&#x7FF;</a>", "a['\xDF\xBF']"},
    {"FirstOfThreeBytes", "<a>&#x800;</a>", "a['\xE0\xA0\x80']"},
    {"LastOfThreeBytes", "<a>&#xFFFF;</a>", "a['\xEF\xBF\xBF']"},
    {"FirstOfFourBytes", "<a>&#x10000;</a>", "a['\xF0\x90\x80\x80']"},
    {"LastCodePoint", "<a>&#x10FFFF;</a>", "a['\xF4\x8F\xBF\xBF']"},
    {"FirstSurrogateInThreeBytes", "<a>&#xD800;</a>", "a['\xED\xA0\x80']"},
    {"LastSurrogateInThreeBytes", "<a>&#xDFFF;</a>", "a['\xED\xBF\xBF']"},
    {"WrapsAt32Bits", "<a>&#4294967361;&#x100000042;</a>", "a['AB']"},
    {"NotDecodedTwice", "<a>&amp;lt;&#38;lt;</a>", "a['&lt;&lt;']"},
};

INSTANTIATE_TEST_SUITE_P(References, XmlParserTree, testing::ValuesIn(kReferenceTrees), Label);

struct ErrorCase
{
    const char* label;
    std::string input;
    std::string message;
    unsigned line = 1;

    friend void PrintTo(const ErrorCase& c, std::ostream* out) { *out << testing::PrintToString(c.input); }
};

class XmlParserError : public testing::TestWithParam<ErrorCase>
{};

TEST_P(XmlParserError, TellsWhatAndWhere)
{
    ExpectThrowsText<XML::Exception>([] { Parse(GetParam().input); },
                                     GetParam().message + " (line " + std::to_string(GetParam().line) + ")\n");
}

std::string ErrorLabel(const testing::TestParamInfo<ErrorCase>& test)
{
    return test.param.label;
}

const std::string kEndOfFile = "Unexpected end of file";

const ErrorCase kEndOfFileErrors[] = {
    {"AfterLess", "<", kEndOfFile},
    {"InTheNameOfAnOpeningTag", "<a", kEndOfFile},
    {"InTheNameOfAnAttribute", "<a b", kEndOfFile},
    {"AfterEquals", "<a b=", kEndOfFile},
    {"AfterTheOpeningQuote", "<a b='", kEndOfFile},
    {"AfterTheClosingQuote", "<a b='1'", kEndOfFile},
    {"AfterTheSlashOfAnEmptyElement", "<a/", kEndOfFile},
    {"AfterTheSlashOfAClosingTag", "<a></", kEndOfFile},
    {"InTheNameOfAClosingTag", "<a></a", kEndOfFile},
    {"AfterAmpersandInText", "<a>&", kEndOfFile},
    {"AfterAmpersandInAValue", "<a b='&", kEndOfFile},
    {"AfterTheNumberSign", "<a>&#", kEndOfFile},
    {"AfterTheXOfANumber", "<a>&#x", kEndOfFile},
    {"AfterExclamationMark", "<!", kEndOfFile},
    {"AfterOneDash", "<!-", kEndOfFile},
    {"AfterTwoDashes", "<!--", kEndOfFile},
    {"CommentWhoseDashesAreShared", "<!--->", kEndOfFile},
    {"CommentWithoutEnd", "<!--\n--\n", kEndOfFile, 3},
    {"DeclarationWithoutEnd", "<!DOCTYPE\na\n", kEndOfFile, 3},
    {"AfterQuestionMark", "<?", kEndOfFile},
    {"InstructionWhoseQuestionMarkIsShared", "<?>", kEndOfFile},
    {"InstructionWithoutEnd", "<?xml\n?\n>", kEndOfFile, 3},
    {"LineCountedBefore", "\n\n<a b='\n'", kEndOfFile, 4},
};

INSTANTIATE_TEST_SUITE_P(EndOfFile, XmlParserError, testing::ValuesIn(kEndOfFileErrors), ErrorLabel);

const std::string kOutside = "Text found outside of the root Element";
const std::string kTooLong = "Buffer too long. Make sure the file was opened in binary mode";

const ErrorCase kOutsideErrors[] = {
    {"AtTheEnd", "<a/>x", kOutside},
    {"BeforeAComment", "<a/>x<!--c-->", kOutside},
    {"BeforeTheRoot", "<!--c-->x<a/>", kOutside},
    {"BeforeALastLess", "<a/>x<", kOutside},
    {"LinesOfTheTextCount", "<a/>\nx\n\n<!--c-->", kOutside, 4},
    {"LinesAtTheEndCount", "<a/>\nx\n\n", kOutside, 4},
    {"ReferenceAsTheOnlyTextAtTheEnd", "<a/>&amp; ", kOutside},
    {"BlankReferenceAtTheEnd", "<a/>&#32;", kOutside},
    {"ReferenceAndZeroBytesAtTheEnd", "<a/>&amp;\0\0"s, kOutside},
    {"ReferenceBeforeAComment", "<a/>&amp;<!--c-->", kOutside},
    {"ZeroBytesBeforeAComment", "<a/>\0<!--c-->"s, kOutside},
    {"TextAndZeroBytesAtTheEnd", "<a/>x\0"s, kOutside},
    {"ZeroBytesAtTheEnd", "<a/>\n\0\0\0"s, kTooLong, 2},
    {"ZeroBytesAfterBlanksAtTheEnd", "<a/> \r\n\t \0x"s, kTooLong, 2},
    {"ZeroBytesAfterAComment", "<!--c-->\0"s, kTooLong},
};

INSTANTIATE_TEST_SUITE_P(Outside, XmlParserError, testing::ValuesIn(kOutsideErrors), ErrorLabel);

const ErrorCase kTagErrors[] = {
    {"NoName", "<>", "Malformed opening tag"},
    {"BlankBeforeTheName", "< a/>", "Malformed opening tag"},
    {"LineFeedBeforeTheNameIsNotCounted", "\n<\na/>", "Malformed opening tag", 2},
    {"LessTwice", "<a><<", "Malformed opening tag"},
    {"NameStartsWithADigit", "<1/>", "Malformed opening tag"},
    {"NameStartsWithAColon", "<:a/>", "Malformed opening tag"},
    {"NameStartsWithADash", "<-/>", "Malformed opening tag"},
    {"NameStartsWithADot", "<./>", "Malformed opening tag"},
    {"NameStartsWith97", "<\x97/>", "Malformed opening tag"},
    {"NameStartsWithB7", "<\xB7/>", "Malformed opening tag"},
    {"NameStartsWithAt", "<@/>", "Malformed opening tag"},
    {"NameStartsWithAZeroByte", "<\0/>"s, "Malformed opening tag"},
    {"Prefix", "<ns:a/>", "Malformed opening tag: ns. Missing closing >"},
    {"NotClosed", "<a b='1'?>", "Malformed opening tag: a. Missing closing >"},
    {"SlashNotFollowedByGreater", "<a/ >", "Malformed opening tag: a. Missing closing >"},
    {"BlankAtTheEnd", "<a ", "Malformed opening tag: a. Missing closing >"},
    {"LineFeedAtTheEndIsNotSteppedOver", "<a\n\n", "Malformed opening tag: a. Missing closing >", 2},
    {"BlankAfterAValueAtTheEnd", "<a b='1' ", "Malformed opening tag: a. Missing closing >"},
    {"AttributeStartsWithADigit", "<a 1='1'/>", "Malformed opening tag: a. Missing closing >"},
    {"MiddleOfATagOverLines", "<a\n b='\n'\n c='1'\n ?\n>", "Malformed opening tag: a. Missing closing >", 5},
    {"AttributeWithoutValue", "<a b/>", "Malformed attribute: b"},
    {"AttributeWithPrefix", "<a xml:lang='en'/>", "Malformed attribute: xml"},
    {"AttributeBeforeTheEnd", "<a b ", "Malformed attribute: b"},
    {"AttributeOnTheThirdLine", "<a\n\nb>", "Malformed attribute: b", 3},
    {"ValueWithoutQuotes", "<a b=1/>", "Opening delimiter not found for attribute b"},
    {"ValueOfNothing", "<a b=>", "Opening delimiter not found for attribute b"},
    {"ValueOnTheThirdLine", "<a b\n=\n1>", "Opening delimiter not found for attribute b", 3},
    {"BlankAfterEqualsAtTheEnd", "<a b= ", "Opening delimiter not found for attribute b"},
    {"LineFeedAfterEqualsAtTheEnd", "<a b=\n", "Opening delimiter not found for attribute b"},
    {"ValueEndsAtLess", "<a b='1</a>", "Closing delimiter not found for attribute b"},
    {"ValueEndsWithTheInput", "<a b='1", "Closing delimiter not found for attribute b"},
    {"ValueEndsAtTheOtherQuote", "<a b='1\"/>", "Closing delimiter not found for attribute b"},
    {"ValueOverLines", "<a b='1\n\n<", "Closing delimiter not found for attribute b", 3},
    {"ValueWithALastLineFeed", "<a b='1\n", "Closing delimiter not found for attribute b", 2},
    {"ValueThatEndsInANumber", "<a b='&#65", "Closing delimiter not found for attribute b"},
    {"ValueThatEndsInAReference", "<a b='&#65;", "Closing delimiter not found for attribute b"},
    {"SecondRoot", "<a/><b/>", "Unexpected opening tag b after end of XML tree"},
    {"SecondRootIsToldBeforeItsEnd", "<a/>\n<b/", "Unexpected opening tag b after end of XML tree", 2},
    {"SecondRootIsToldBeforeItsMissingEnd", "<a/><b ?", "Unexpected opening tag b after end of XML tree"},
    {"AttributesAreReadBeforeASecondRootIsTold", "<a/><b c", kEndOfFile},
};

INSTANTIATE_TEST_SUITE_P(Tags, XmlParserError, testing::ValuesIn(kTagErrors), ErrorLabel);

const ErrorCase kClosingErrors[] = {
    {"NoName", "<a></>", "Malformed closing tag"},
    {"BlankBeforeTheName", "<a></ a>", "Malformed closing tag"},
    {"NameStartsWithADigit", "</1>", "Malformed closing tag"},
    {"NameStartsWith97", "</\x97>", "Malformed closing tag"},
    {"Attribute", "<a></a b>", "Malformed closing tag: a"},
    {"Prefix", "</ns:a>", "Malformed closing tag: ns"},
    {"BlankAtTheEnd", "<a></a ", "Malformed closing tag: a"},
    {"LineFeedAtTheEnd", "<a></a\n", "Malformed closing tag: a"},
    {"MalformedBeforeNotOpen", "</a/>", "Malformed closing tag: a"},
    {"NotOpen", "</a>", "Closing tag for a is not open"},
    {"NotOpenOnTheThirdLine", "\n\n</b>", "Closing tag for b is not open", 3},
    {"NotOpenAnyMore", "<a></a></a>", "Closing tag for a is not open"},
    {"OfAnEmptyElement", "<a/></a>", "Closing tag for a is not open"},
    {"OfAnother", "<a><b></a>", "Unexpected closing tag: a instead of b"},
    {"OfAnotherCase", "<a></A>", "Unexpected closing tag: A instead of a"},
    {"OfALongerName", "<a></aa>", "Unexpected closing tag: aa instead of a"},
    {"OfAnotherOnTheFourthLine", "<a>\n<b>\n</a\n>", "Unexpected closing tag: a instead of b", 4},
    {"TwoAreOpen", "<a><b>", "Not all opened tags are closed (2 remaining)"},
    {"OneIsOpen", "<a>\ntext\n", "Not all opened tags are closed (1 remaining)", 3},
    {"OpenBeforeTextOutside", "<a>x", "Not all opened tags are closed (1 remaining)"},
    {"OpenBeforeZeroBytes", "<a>\0\0"s, "Not all opened tags are closed (1 remaining)"},
    {"NumberThatEndsWithTheInput", "<a>&#65", "Not all opened tags are closed (1 remaining)"},
    {"ZeroThatEndsWithTheInput", "<a>&#0", "Not all opened tags are closed (1 remaining)"},
    {"NumberWhoseEndIsTheEnd", "<a>&#x41;", "Not all opened tags are closed (1 remaining)"},
};

INSTANTIATE_TEST_SUITE_P(Closing, XmlParserError, testing::ValuesIn(kClosingErrors), ErrorLabel);

const ErrorCase kReferenceErrors[] = {
    {"Zero", "<a>&#0;</a>", "Unexpected character ';' found in character reference"},
    {"NoDigits", "<a>&#;</a>", "Unexpected character ';' found in character reference"},
    {"NoHexadecimalDigits", "<a>&#x;</a>", "Unexpected character ';' found in character reference"},
    {"WrapsToZero", "<a>&#4294967296;</a>", "Unexpected character ';' found in character reference"},
    {"UpperCaseX", "<a>&#X41;</a>", "Unexpected character 'X' found in character reference"},
    {"HexadecimalDigitInDecimal", "<a>&#6A;</a>", "Unexpected character 'A' found in character reference"},
    {"NotADigit", "<a>&#x4G;</a>", "Unexpected character 'G' found in character reference"},
    {"Sign", "<a>&#-1;</a>", "Unexpected character '-' found in character reference"},
    {"LineFeedIsNotCounted", "<a>\n&#6\n5;</a>", "Unexpected character '\n' found in character reference", 2},
    {"InAValue", "<a b='\n&#65<'/>", "Unexpected character '<' found in character reference", 2},
    {"Unknown", "<a>&nbsp;</a>", "Unknown reference starting with n"},
    {"UnknownInAValue", "<a b='\n\n&nbsp;'/>", "Unknown reference starting with n", 3},
    {"UnknownOutsideOfTheRoot", "<a/>&nbsp;", "Unknown reference starting with n"},
    {"AmpAsTheLastBytes", "<a/>&amp;", "Unknown reference starting with a"},
    {"ReferencesAreReadBeforeTextOutsideIsTold", "<a/>x&nbsp;", "Unknown reference starting with n"},
    {"WithoutSemicolon", "<a>&amp </a>", "Unknown reference starting with a"},
    {"UpperCase", "<a>&AMP;</a>", "Unknown reference starting with A"},
    {"Alone", "<a>& </a>", "Unknown reference starting with  "},
    {"SemicolonAlone", "<a>&;</a>", "Unknown reference starting with ;"},
    {"LineFeed", "<a>&\n</a>", "Unknown reference starting with \n"},
    {"AmpersandTwice", "<a>&&amp;</a>", "Unknown reference starting with &"},
    {"AmpEndsWithTheInput", "<a>&amp;", "Unknown reference starting with a"},
    {"LtEndsWithTheInput", "<a>&lt;", "Unknown reference starting with l"},
    {"GtEndsWithTheInput", "<a>&gt;", "Unknown reference starting with g"},
    {"QuotEndsWithTheInput", "<a>&quot;", "Unknown reference starting with q"},
    {"AposEndsWithTheInput", "<a>&apos;", "Unknown reference starting with a"},
    {"AposEndsWithTheInputInAValue", "<a b='&apos;", "Unknown reference starting with a"},
};

INSTANTIATE_TEST_SUITE_P(References, XmlParserError, testing::ValuesIn(kReferenceErrors), ErrorLabel);

const ErrorCase kNamesBeforeTheEnd[] = {
    {"Amp", "<a>&amp; ", "Not all opened tags are closed (1 remaining)"},
    {"Lt", "<a>&lt; ", "Not all opened tags are closed (1 remaining)"},
    {"Gt", "<a>&gt; ", "Not all opened tags are closed (1 remaining)"},
    {"Quot", "<a>&quot; ", "Not all opened tags are closed (1 remaining)"},
    {"Apos", "<a>&apos; ", "Not all opened tags are closed (1 remaining)"},
};

INSTANTIATE_TEST_SUITE_P(ReferencesFollowedByOneByte, XmlParserError, testing::ValuesIn(kNamesBeforeTheEnd),
                         ErrorLabel);

TEST(XmlParserError, CarriageReturnsAreNotCounted)
{
    ExpectThrowsText<XML::Exception>([] { Parse("\r\n\r\r\n</a>"); }, "Closing tag for a is not open (line 3)\n");
}

TEST(XmlParserError, LinesAreCountedInEveryConstruct)
{
    // one line feed each: before the markup, in an instruction, a declaration, a comment, between attributes, in a
    // value, in text, in a closing tag
    const std::string text = "x\n<?\n?><!\n><!--\n--><a\nb='\n'>\n<c></c\n>&x";
    ExpectThrowsText<XML::Exception>([&] { Parse(text); }, "Unknown reference starting with x (line 9)\n");
}

TEST(XmlParserError, MessageWithAZeroByteIsKeptWhole)
{
    try {
        Parse("<a>&\0"s);
        FAIL();
    } catch (const XML::Exception& error) { // its text ends for the eye where the byte is
        EXPECT_EQ(error.what(), "Unknown reference starting with "s);
        EXPECT_EQ(std::string_view(error.what(), 43), "Unknown reference starting with \0 (line 1)\n"s);
    }
}

class XmlParserBadConversion : public testing::TestWithParam<const char*>
{};

TEST_P(XmlParserBadConversion, IsARangeErrorWithoutALine)
{
    ExpectThrowsText<std::range_error>([] { Parse(GetParam()); }, "bad conversion");
    try {
        Parse(GetParam());
    } catch (const std::runtime_error& error) {
        EXPECT_EQ(typeid(error), typeid(std::range_error));
    }
}

INSTANTIATE_TEST_SUITE_P(Table, XmlParserBadConversion,
                         testing::Values("<a>&#x110000;</a>", "<a>&#xFFFFFFFF;</a>", "<a b='&#1114112;'/>",
                                         "<a>&#x110000" /* the input ends in the digits */));

TEST(XmlException, TextIsMessageLineAndLineFeed)
{
    const XML::Exception error("Message", 4294967295U);
    EXPECT_STREQ(error.what(), "Message (line 4294967295)\n");
}

// Every byte, as the first and as a later one of a name.

TEST(XmlParserNames, EveryByteAsTheFirst)
{
    const std::string excluded = "[\\]^`{|}~\x7F\x97\xB7";
    for (int i = 0; i < 256; ++i) {
        const char c = static_cast<char>(i);
        if (c == '/' || c == '!' || c == '?')
            continue;
        const std::string text = "<"s + c + "/>";
        if (i > 64 && excluded.find(c) == std::string::npos)
            EXPECT_EQ(Parse(text)->GetRootElement()->GetName(), std::string(1, c)) << i;
        else
            ExpectThrowsText<XML::Exception>([&] { Parse(text); }, "Malformed opening tag (line 1)\n");
    }
}

TEST(XmlParserNames, EveryByteAsALaterOne)
{
    const std::string ascii = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-._";
    for (int i = 0; i < 256; ++i) {
        const char c = static_cast<char>(i);
        const std::string text = "<n"s + c + "/>";
        if (i >= 0x80 || (i > 0 && ascii.find(c) != std::string::npos))
            EXPECT_EQ(Parse(text)->GetRootElement()->GetName(), "n"s + c) << i;
        else if (c == ' ' || c == '\t' || c == '\r' || c == '\n')
            EXPECT_EQ(Parse(text)->GetRootElement()->GetName(), "n") << i;
        else if (c == '>')
            ExpectThrowsText<XML::Exception>([&] { Parse(text); },
                                             "Not all opened tags are closed (1 remaining) (line 1)\n");
        else
            ExpectThrowsText<XML::Exception>([&] { Parse(text); },
                                             "Malformed opening tag: n. Missing closing > (line 1)\n");
    }
}

TEST(XmlParser, RootIsSetOnlyByAnElement)
{
    EXPECT_EQ(Parse("")->GetRootElement(), nullptr);
    EXPECT_EQ(Parse("hello")->GetRootElement(), nullptr);
    EXPECT_EQ(Parse("<!--c-->")->GetRootElement(), nullptr);
    EXPECT_EQ(Parse("<!--c--><a/>")->GetRootElement()->GetName(), "a");
}

TEST(XmlParser, DocumentOutlivesParserAndStream)
{
    std::unique_ptr<XML::Document> document;
    {
        std::istringstream input("<a>text</a>");
        Parser parser(input);
        document = parser.Parse();
    }
    EXPECT_EQ(document->GetRootElement()->GetText(), "text");
}

} // namespace
