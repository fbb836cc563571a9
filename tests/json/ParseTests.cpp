#include <KelInsInfra/json/Driver.h>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <tests/json/EchoCapture.h>

namespace {

using JSON::Driver;
using JSON::Type;

/// A text, and what becomes of it. No document: a syntax error.
struct Case
{
    const char* label;
    std::string text;
    const char* json;
    std::string echo = {};

    friend void PrintTo(const Case& c, std::ostream* out) { *out << testing::PrintToString(c.text); }
};

const char* const kError = nullptr;

class JsonParse : public testing::TestWithParam<Case>
{
protected:
    static void Expect(Driver& driver, bool parsed, const EchoCapture& echo)
    {
        EXPECT_EQ(echo.Text(), GetParam().echo);
        EXPECT_EQ(parsed, GetParam().json != kError);
        EXPECT_EQ(driver.GetJSON(), parsed ? GetParam().json : "");
        EXPECT_EQ(driver.GetValue() != nullptr, parsed);
        EXPECT_EQ(driver.AddToArray(Driver::CreateNull()) || driver.AddToObject("k", Driver::CreateNull()), parsed);
    }
};

TEST_P(JsonParse, FromAString)
{
    Driver driver;
    const EchoCapture echo;
    const bool parsed = driver.Parse(GetParam().text);
    Expect(driver, parsed, echo);
}

TEST_P(JsonParse, FromAStream)
{
    Driver driver;
    std::istringstream in(GetParam().text);
    const EchoCapture echo;
    const bool parsed = driver.Parse(in);
    Expect(driver, parsed, echo);
}

TEST_P(JsonParse, AfterAnotherDocument)
{
    Driver driver;
    ASSERT_TRUE(driver.Parse(R"({"former":["document"]})"));
    const EchoCapture echo;
    const bool parsed = driver.Parse(GetParam().text);
    Expect(driver, parsed, echo);
}

using namespace std::string_literals;

const Case kGrammar[] = {
    {"EmptyObject", "{}", "{}"},
    {"EmptyArray", "[]", "[]"},
    {"Member", R"({"a":1})", R"({"a": 1})"},
    {"Members", R"({"a":1,"b":2,"c":3})", R"({"a": 1, "b": 2, "c": 3})"},
    {"Element", "[1]", "[1]"},
    {"Elements", "[1,2,3]", "[1, 2, 3]"},
    {"Literals", "[true,false,null]", "[true, false, null]"},
    {"ValueObject", R"([{"a":{"b":{}}}])", R"([{"a": {"b": {}}}])"},
    {"ValueArray", "[[[]],[[],[]]]", "[[[]], [[], []]]"},
    {"String", R"(["text"])", R"(["text"])"},
    {"NoText", "", kError},
    {"WhiteSpaceOnly", " \t\n", kError},
    {"NumberAlone", "1", kError},
    {"StringAlone", R"("text")", kError},
    {"TrueAlone", "true", kError},
    {"FalseAlone", "false", kError},
    {"NullAlone", "null", kError},
    {"CommaAlone", ",", kError},
    {"TrailingCommaInObject", R"({"a":1,})", kError},
    {"TrailingCommaInArray", "[1,]", kError},
    {"LeadingCommaInObject", R"({,"a":1})", kError},
    {"LeadingCommaInArray", "[,1]", kError},
    {"TwoCommas", "[1,,2]", kError},
    {"NoCommaInArray", "[1 2]", kError},
    {"NoCommaInObject", R"({"a":1 "b":2})", kError},
    {"NoColon", R"({"a" 1})", kError},
    {"TwoColons", R"({"a"::1})", kError},
    {"NoValue", R"({"a":})", kError},
    {"NoKey", "{:1}", kError},
    {"NumberAsKey", "{1:1}", kError},
    {"KeyInArray", R"(["a":1])", kError},
    {"BareMember", R"("a":1)", kError},
    {"ValueInObject", "{1}", kError},
    {"WrongClose", "[}", kError},
    {"WrongCloseOfObject", R"({"a":1])", kError},
    {"NotClosed", "[1", kError},
    {"ObjectNotClosed", R"({"a":1)", kError},
    {"ClosedTwice", "[]]", kError},
    {"TwoDocuments", "[][]", kError},
    {"CommaAfter", "[],", kError},
    {"ScalarAfter", "{} 1", kError},
};

INSTANTIATE_TEST_SUITE_P(Grammar, JsonParse, testing::ValuesIn(kGrammar),
                         [](const auto& row) { return std::string(row.param.label); });

const Case kNumbers[] = {
    {"Zero", "[0]", "[0]"},
    {"MinusZero", "[-0]", "[-0]"},
    {"LeadingZeros", "[007,012]", "[007, 012]"},
    {"Exponent", "[1E5,1e5,1e+5,1e-5]", "[1E5, 1e5, 1e+5, 1e-5]"},
    {"All", "[-12.5e+3]", "[-12.5e+3]"},
    {"Fraction", "[2.50]", "[2.50]"},
    {"Plus", "[+1]", "[1]", "+"},
    {"LeadingPoint", "[.5]", "[5]", "."},
    {"MinusAlone", "[-]", "[]", "-"},
    {"TwoMinus", "[--1]", "[-1]", "-"},
    {"TrailingPoint", "[1.]", "[1]", "."},
    {"TwoPoints", "[1.5.5]", kError, "."}, // 1.5, a stray point, 5
    {"ExponentWithoutDigits", "[1e]", "[1]", "e"},
    {"ExponentWithSignOnly", "[1e+]", "[1]", "e+"},
    {"FractionThenExponentWithoutDigits", "[1.5E-]", "[1.5]", "E-"},
    {"PointThenExponent", "[1.e5]", kError, ".e"},
    {"Hex", "[0x1]", kError, "x"},
    {"NumberThenLetters", "[12abc]", "[12]", "abc"},
    {"TwoNumbersByMinus", "[1-2]", kError},
    {"NotANumber", "[NaN]", "[]", "NaN"},
};

INSTANTIATE_TEST_SUITE_P(Numbers, JsonParse, testing::ValuesIn(kNumbers),
                         [](const auto& row) { return std::string(row.param.label); });

const Case kStrings[] = {
    {"EmptyBecomesNull", R"({"a":""})", R"({"a": null})"},
    {"EmptyInArray", R"(["",""])", "[null, null]"},
    {"BlankStays", R"([" "])", R"([" "])"},
    {"Escapes", R"(["\"\\\/\b\f\n\r\t"])", R"(["\"\\/\b\f\n\r\t"])"},
    {"UnicodeStays", R"(["\u0041\uABCD\uabcd\u00e9"])", R"(["\\u0041\\uABCD\\uabcd\\u00e9"])"},
    {"UnicodeInKeyStays", R"({"\u0041":1})", R"({"\\u0041": 1})"},
    {"UnicodeThenDigit", R"(["\u00410"])", R"(["\\u00410"])"},
    {"KeyUnescaped", R"({"k\tx":1})", R"({"k\tx": 1})"},
    {"DoubleBackslash", R"(["v\\w"])", R"(["v\\w"])"},
    {"EscapedBackslashThenQuote", R"(["\\"])", R"(["\\"])"},
    {"EscapedBackslashThenN", R"(["\\n"])", R"(["\\n"])"},
    {"UnknownEscapeDropsTheBackslash", R"(["a\xb"])", R"(["axb"])", "\\"},
    {"UnknownEscapeAtTheStart", R"(["\x"])", R"(["x"])", "\\"},
    {"OnlyAStrayBackslash", "[\"\\\x01\"]", "[\"\x01\"]", "\\"},
    {"UnicodeTooShort", R"(["\u12"])", R"(["u12"])", "\\"},
    {"UnicodeNotHex", R"(["\u12G4"])", R"(["u12G4"])", "\\"},
    {"UnicodeUpperU", R"(["\U0041"])", R"(["U0041"])", "\\"},
    {"StrayThenGood", R"(["\u12\n"])", R"(["u12\n"])", "\\"},
    {"ThreeBackslashesAndX", R"(["\\\x"])", R"(["\\x"])", "\\"},
    {"LineFeedRaw", "[\"a\nb\"]", R"(["a\nb"])"},
    {"CarriageReturnRaw", "[\"a\rb\"]", R"(["a\rb"])"},
    {"TabRaw", "[\"a\tb\"]", R"(["a\tb"])"},
    {"ControlBytesRaw", "[\"\x01\x1F\x7F\"]", "[\"\x01\x1F\x7F\"]"},
    {"HighBytesRaw", "[\"\x80\xFF\xC3\xA9\"]", "[\"\x80\xFF\xC3\xA9\"]"},
    {"BracketsInside", R"(["{}[],:true"])", R"(["{}[],:true"])"},
    {"Unterminated", R"(["abc)", kError},
    {"UnterminatedAtOnce", "[\"", kError},
    {"UnterminatedAfterEscape", R"(["abc\")", kError},
    {"UnterminatedAfterBackslash", "[\"abc\\", kError, "\\"},
    {"SingleQuotes", "['a']", "[]", "'a'"},
};

INSTANTIATE_TEST_SUITE_P(Strings, JsonParse, testing::ValuesIn(kStrings),
                         [](const auto& row) { return std::string(row.param.label); });

const Case kStrayBytes[] = {
    {"WhiteSpace", " \t\n[ \t\n1 \t\n, \t\n2 \t\n] \t\n", "[1, 2]"},
    {"NumberSign", R"({"a":1,#"b":2})", R"({"a": 1, "b": 2})", "#"},
    {"CarriageReturns", "{\r\n\"a\": 1,\r\n\"b\": 2\r\n}\r\n", R"({"a": 1, "b": 2})", "\r\r\r\r"},
    {"VerticalTabAndFormFeed", "[\v\f]", "[]", "\v\f"},
    {"ByteOrderMark", "\xEF\xBB\xBF[1]", "[1]", "\xEF\xBB\xBF"},
    {"ZeroBytes",
     "\0[\0"
     "1\0]\0"s,
     "[1]", "\0\0\0\0"s},
    {"Letters", "x[y]z", "[]", "xyz"},
    {"PartsOfLiterals", "[tru]", "[]", "tru"},
    {"UpperCaseLiteral", "[True]", "[]", "True"},
    {"LiteralsRunTogether", "[truefalse]", kError},
    {"LiteralWithRest", "[nullx]", "[null]", "x"},
    {"LiteralAfterPart", "[ttrue]", "[true]", "t"},
    {"Comment", "[1/*a*/]", "[1]", "/*a*/"},
    {"BackslashOutside", R"([\n])", "[]", "\\n"},
    {"HighBytes", "[\x80\xFF]", "[]", "\x80\xFF"},
    {"EchoBeforeAnError", "#[1 2", kError, "#"},
    {"NoEchoAfterAnError", "[1 2#", kError},
    {"OnlyStrayBytes", "abc", kError, "abc"},
};

INSTANTIATE_TEST_SUITE_P(StrayBytes, JsonParse, testing::ValuesIn(kStrayBytes),
                         [](const auto& row) { return std::string(row.param.label); });

const Case kEmptyKeys[] = {
    {"ScalarIsLeftOut", R"({"":1})", "{}"},
    {"OthersStay", R"({"a":1,"":2,"b":3})", R"({"a": 1, "b": 3})"},
    {"ContainerIsNotEntered", R"({"":{}})", "{}"},
    {"InnerMembersGoOutside", R"({"":{"a":1}})", R"({"a": 1})"},
    {"InnerBraceClosesTheOuter", R"({"":{"a":1},"b":2})", R"({"a": 1})"},
    {"LaterContainerBecomesTheRoot", R"({"":{"a":1},"b":[2]})", "[2]"},
    {"ArrayIsNotEntered", R"({"":[1,2],"b":3})", "{}"},
    {"InArray", R"([{"":[]},1])", "[{}]"},
    {"InArrayThenContainer", R"([{"":[]},[1],2])", "[1]"},
    {"LaterObjectBecomesTheRoot", R"({"":{"a":1},"b":{"k":3}})", R"({"k": 3})"},
    {"LaterMembersGoToTheArrayAround", R"([{"":{"k":1},"m":5,"n":[6],"o":{"p":7}}])",
     R"([{"k": 1}, 5, [6], {"p": 7}])"},
    {"KeyOfAnEscape", R"({"\\":1})", R"({"\\": 1})"},
};

INSTANTIATE_TEST_SUITE_P(EmptyKeys, JsonParse, testing::ValuesIn(kEmptyKeys),
                         [](const auto& row) { return std::string(row.param.label); });

const Case kRepeatedKeys[] = {
    {"MovesToTheEnd", R"({"k":1,"m":2,"k":3})", R"({"m": 2, "k": 3})"},
    {"SameAfterUnescaping", R"({"\t":1,"x":2,"	":3})", R"({"x": 2, "\t": 3})"},
    {"ContainersToo", R"({"k":[1],"k":{"a":2},"k":[3]})", R"({"k": [3]})"},
    {"InInnerObjects", R"([{"k":1,"k":2},{"k":{"x":1,"y":2,"x":3}}])", R"([{"k": 2}, {"k": {"y": 2, "x": 3}}])"},
};

INSTANTIATE_TEST_SUITE_P(RepeatedKeys, JsonParse, testing::ValuesIn(kRepeatedKeys),
                         [](const auto& row) { return std::string(row.param.label); });

TEST(JsonParseZeroBytes, InAString)
{
    Driver driver;
    ASSERT_TRUE(driver.Parse("[\"a\0b\",\"\0\"]"s));
    EXPECT_EQ(driver.GetJSON(), "[\"a\0b\", \"\0\"]"s);
    EXPECT_EQ(driver.GetValue()->GetArrayValue(0)->GetString(), "a\0b"s);
}

struct PendingKeyCase
{
    const char* label;
    const char* text;
    const char* pending; ///< after the parse; empty for none

    friend void PrintTo(const PendingKeyCase& c, std::ostream* out) { *out << c.text; }
};

const PendingKeyCase kPendingKeys[] = {
    {"NoKeyInTheText", "[1]", "before"},
    {"KeyWasUsed", R"({"a":1})", ""},
    {"KeyWithoutValue", R"({"a":)", "a"},
    {"EscapesAsWritten", R"({"\\t":)", R"(\\t)"},
    {"EmptyKeyReplacesTheOneBefore", R"({"":)", ""},
    {"KeyThatNothingTook", R"([{"":{"k":1},"m":5}])", "m"},
    {"KeyBesideANewRoot", R"({"":{"a":1},"b":[)", "b"},
    {"KeyBesideANewRootThenAnother", R"({"":{"a":1},"b":{"k":3})", ""},
};

class JsonPendingKey : public testing::TestWithParam<PendingKeyCase>
{};

TEST_P(JsonPendingKey, AfterAParse)
{
    Driver driver;
    driver.SetNextObjectKey("before");
    driver.Parse(GetParam().text);
    driver.NewObject();
    const std::string pending = GetParam().pending;
    ASSERT_EQ(driver.Add(Driver::CreateNull()), !pending.empty());
    if (!pending.empty()) {
        EXPECT_EQ(driver.GetValue()->GetObjectValues()[0]->first, Driver::RemoveJSONEscaping(pending));
    }
}

INSTANTIATE_TEST_SUITE_P(Json, JsonPendingKey, testing::ValuesIn(kPendingKeys),
                         [](const auto& row) { return std::string(row.param.label); });

TEST(JsonParseState, RootIsOpenForAdd)
{
    Driver driver;
    ASSERT_TRUE(driver.Parse("[1]"));
    EXPECT_TRUE(driver.Add(Driver::CreateNumber("2")));
    EXPECT_EQ(driver.GetJSON(), "[1, 2]");
    ASSERT_TRUE(driver.Parse(R"({"a":{}})"));
    driver.SetNextObjectKey("b");
    EXPECT_TRUE(driver.Add(Driver::CreateNumber("2")));
    EXPECT_EQ(driver.GetJSON(), R"({"a": {}, "b": 2})");
    driver.CloseCurrentValue();
    EXPECT_FALSE(driver.Add(Driver::CreateNumber("3"))); // the root alone was open
}

TEST(JsonParseState, FailureLeavesNothing)
{
    Driver driver;
    ASSERT_TRUE(driver.Parse("[1]"));
    const std::weak_ptr<JSON::Value> former = driver.GetValue();
    EXPECT_FALSE(driver.Parse("[[[["));
    EXPECT_TRUE(former.expired());
    EXPECT_EQ(driver.GetValue(), nullptr);
    EXPECT_EQ(driver.GetJSON(), "");
    EXPECT_FALSE(driver.Add(Driver::CreateNull()));
    EXPECT_TRUE(driver.Parse("[2]"));
    EXPECT_EQ(driver.GetJSON(), "[2]");
}

TEST(JsonParseState, KeyOfAFailedParseStaysPending)
{
    Driver driver;
    EXPECT_FALSE(driver.Parse(R"({"k\t":})"));
    driver.NewObject();
    EXPECT_TRUE(driver.Add(Driver::CreateTrue()));
    EXPECT_EQ(driver.GetJSON(), R"({"k\t": true})");
    EXPECT_FALSE(driver.Parse(R"({"k" 1})")); // the colon makes the key
    driver.NewObject();
    EXPECT_FALSE(driver.Add(Driver::CreateTrue()));
}

TEST(JsonParseState, PendingKeyDoesNotDisturbAParse)
{
    Driver driver;
    driver.SetNextObjectKey("pending");
    ASSERT_TRUE(driver.Parse("[1]"));
    EXPECT_EQ(driver.GetJSON(), "[1]");
    EXPECT_TRUE(driver.Add(Driver::CreateObject()));
    EXPECT_TRUE(driver.Add(Driver::CreateNull()));
    EXPECT_EQ(driver.GetJSON(), R"([1, {"pending": null}])");
}

TEST(JsonParseState, ValuesStayAfterTheDriver)
{
    std::shared_ptr<JSON::Value> value;
    {
        Driver driver;
        ASSERT_TRUE(driver.Parse(R"({"a":["kept"]})"));
        value = driver.GetValue();
        ASSERT_TRUE(driver.Parse("[]"));
    }
    EXPECT_EQ(value->GetJSON(), R"({"a": ["kept"]})");
}

TEST(JsonParseState, ReadsTheStreamFromWhereItStands)
{
    std::istringstream in("skipped[1]");
    in.ignore(7);
    Driver driver;
    EXPECT_TRUE(driver.Parse(in));
    EXPECT_EQ(driver.GetJSON(), "[1]");
}

} // namespace
