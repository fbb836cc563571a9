#include <KelInsInfra/json/Driver.h>
#include <KelInsInfra/json/internal/Make.h>
#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <map>
#include <sstream>
#include <string>
#include <tests/support/ExpectThrowsText.h>
#include <type_traits>

namespace {

using JSON::Driver;
using JSON::Type;
using JSON::Value;
using Pointer = std::shared_ptr<Value>;

Pointer Parsed(const std::string& text)
{
    Driver driver;
    EXPECT_TRUE(driver.Parse(text)) << text;
    return driver.GetValue();
}

std::string Quoted(const std::string& text)
{
    return std::string("\"").append(text).append("\"");
}

std::string Indented(const Value& value, std::int32_t level = 0)
{
    std::ostringstream out;
    value.WriteIndented(out, level);
    return out.str();
}

std::string Compact(const Value& value)
{
    std::ostringstream out;
    value.Write(out);
    return out.str();
}

static_assert(std::is_same_v<std::underlying_type_t<Type>, std::int32_t>);
static_assert(static_cast<std::int32_t>(Type::Object) == 0);
static_assert(static_cast<std::int32_t>(Type::Array) == 1);
static_assert(static_cast<std::int32_t>(Type::Number) == 2);
static_assert(static_cast<std::int32_t>(Type::String) == 3);
static_assert(static_cast<std::int32_t>(Type::True) == 4);
static_assert(static_cast<std::int32_t>(Type::False) == 5);
static_assert(static_cast<std::int32_t>(Type::Null) == 6);
static_assert(std::is_abstract_v<Value> && std::has_virtual_destructor_v<Value> &&
              !std::is_copy_constructible_v<Value>);

struct KindCase
{
    const char* label;
    Pointer (*make)();
    Type type;
    const char* name;
    std::uint64_t size;
    const char* text; ///< GetString
    const char* json;

    friend void PrintTo(const KindCase& c, std::ostream* out) { *out << c.label; }
};

const KindCase kKinds[] = {
    {"Object", [] { return Parsed(R"({"a":1,"b":2})"); }, Type::Object, "Object", 2, "", R"({"a": 1, "b": 2})"},
    {"EmptyObject", []() -> Pointer { return Driver::CreateObject(); }, Type::Object, "Object", 0, "", "{}"},
    {"Array", [] { return Parsed("[1,2,3]"); }, Type::Array, "Array", 3, "", "[1, 2, 3]"},
    {"EmptyArray", []() -> Pointer { return Driver::CreateArray(); }, Type::Array, "Array", 0, "", "[]"},
    {"Number", []() -> Pointer { return Driver::CreateNumber("7"); }, Type::Number, "Number", 0, "7", "7"},
    {"String", []() -> Pointer { return Driver::CreateString("7", true); }, Type::String, "String", 0, "7", "\"7\""},
    {"EmptyString", []() -> Pointer { return Driver::CreateString("", false); }, Type::String, "String", 0, "", "\"\""},
    {"True", []() -> Pointer { return Driver::CreateTrue(); }, Type::True, "True", 0, "", "true"},
    {"False", []() -> Pointer { return Driver::CreateFalse(); }, Type::False, "False", 0, "", "false"},
    {"Null", []() -> Pointer { return Driver::CreateNull(); }, Type::Null, "Null", 0, "", "null"},
    {"Unknown",
     []() -> Pointer {
         JSON::Pool pool;
         return JSON::MakeItem(pool, static_cast<Type>(42), "x");
     },
     static_cast<Type>(42), "???", 0, "", "???"},
};

class EveryKind : public testing::TestWithParam<KindCase>
{};

TEST_P(EveryKind, TypeAndItsName)
{
    const Pointer value = GetParam().make();
    EXPECT_EQ(value->GetType(), GetParam().type);
    EXPECT_EQ(value->GetTypeString(), GetParam().name);
}

TEST_P(EveryKind, TypeQuestions)
{
    const Pointer value = GetParam().make();
    const Type type = GetParam().type;
    EXPECT_EQ(value->IsObject(), type == Type::Object);
    EXPECT_EQ(value->IsArray(), type == Type::Array);
    EXPECT_EQ(value->IsNumber(), type == Type::Number);
    EXPECT_EQ(value->IsString(), type == Type::String);
    EXPECT_EQ(value->IsTrue(), type == Type::True);
    EXPECT_EQ(value->IsFalse(), type == Type::False);
    EXPECT_EQ(value->IsNull(), type == Type::Null);
    EXPECT_EQ(value->IsBoolean(), type == Type::True || type == Type::False);
    EXPECT_EQ(value->GetBoolean(), type == Type::True);
}

TEST_P(EveryKind, SizeStringAndText)
{
    const Pointer value = GetParam().make();
    EXPECT_EQ(value->GetSize(), GetParam().size);
    EXPECT_EQ(value->GetString(), GetParam().text);
    EXPECT_EQ(value->GetJSON(), GetParam().json);
    EXPECT_EQ(Compact(*value), GetParam().json);
}

TEST_P(EveryKind, ClonesToTheSame)
{
    const Pointer value = GetParam().make();
    const Pointer copy = value->Clone();
    EXPECT_NE(copy, value);
    EXPECT_EQ(copy->GetType(), value->GetType());
    EXPECT_EQ(copy->GetJSON(), GetParam().json);
    EXPECT_EQ(Indented(*copy), Indented(*value));
}

TEST_P(EveryKind, NumbersOfOtherTypesAreMinusOne)
{
    const Pointer value = GetParam().make();
    const bool number = GetParam().type == Type::Number;
    EXPECT_EQ(value->GetInteger(), number ? 7 : -1);
    EXPECT_EQ(value->GetInteger64(), number ? 7 : -1);
    EXPECT_EQ(value->GetFloat(), number ? 7.0F : -1.0F);
}

TEST_P(EveryKind, ElementsOfOtherTypesAreRefused)
{
    const Pointer value = GetParam().make();
    if (value->IsArray()) {
        EXPECT_EQ(value->GetArrayValues().size(), GetParam().size);
        return;
    }
    EXPECT_EQ(value->GetArrayValue(0), nullptr);
    ExpectThrowsText<std::runtime_error>(
        [&] { value->GetArrayValues(); },
        std::string("JSON::Value::GetArrayValues - Value is not an Array. Actual type: ") + GetParam().name);
}

TEST_P(EveryKind, MembersOfOtherTypesAreRefused)
{
    const Pointer value = GetParam().make();
    if (value->IsObject()) {
        EXPECT_EQ(value->GetObjectValues().size(), GetParam().size);
        return;
    }
    EXPECT_EQ(value->GetObjectValue("a"), nullptr);
    ExpectThrowsText<std::runtime_error>(
        [&] { value->GetObjectValues(); },
        std::string("JSON::Value::GetObjectValues - Value is not an Object. Actual type: ") + GetParam().name);
}

INSTANTIATE_TEST_SUITE_P(JsonValue, EveryKind, testing::ValuesIn(kKinds),
                         [](const auto& row) { return std::string(row.param.label); });

TEST(JsonValue, ArrayValueByIndex)
{
    const Pointer array = Parsed("[10,20,30]");
    EXPECT_EQ(array->GetArrayValue(0)->GetInteger(), 10);
    EXPECT_EQ(array->GetArrayValue(1), array->GetArrayValues()[1]);
    EXPECT_EQ(array->GetArrayValue(2)->GetInteger(), 30);
    EXPECT_EQ(Parsed("[]")->GetArrayValue(0), nullptr);
    EXPECT_EQ(Parsed("[[1,2]]")->GetArrayValue(1), nullptr); // the inner one has it
    EXPECT_EQ(array->GetArrayValue(-1), nullptr);
    EXPECT_EQ(array->GetArrayValue(3), nullptr);
    EXPECT_EQ(array->GetArrayValue(std::numeric_limits<std::int32_t>::max()), nullptr);
    EXPECT_EQ(array->GetArrayValue(std::numeric_limits<std::int32_t>::min()), nullptr);
}

TEST(JsonValue, ObjectValueByExactKey)
{
    const Pointer object = Parsed(R"({"a\\tb":1,"é":2})");
    EXPECT_EQ(object->GetObjectValue("a\\tb")->GetInteger(), 1); // not unescaped: the stored key has the backslash
    EXPECT_EQ(object->GetObjectValue("a\tb"), nullptr);
    EXPECT_EQ(object->GetObjectValue("é")->GetInteger(), 2);
    EXPECT_EQ(object->GetObjectValue(""), nullptr);
    EXPECT_EQ(object->GetObjectValue("A\\tb"), nullptr);
}

TEST(JsonValue, ObjectValuesComeInOrderOfInsertion)
{
    const Pointer object = Parsed(R"({"z":1,"a":2,"m":3})");
    std::string keys;
    for (const JSON::POSITION position : object->GetObjectValues())
        keys += position->first + "=" + position->second->GetString() + " ";
    EXPECT_EQ(keys, "z=1 a=2 m=3 ");
}

TEST(JsonValue, RepeatedKeyKeepsTheLastValueAtTheEnd)
{
    Driver driver;
    driver.NewObject();
    EXPECT_TRUE(driver.AddToObject("k", Driver::CreateNumber("1")));
    EXPECT_TRUE(driver.AddToObject("m", Driver::CreateNumber("2")));
    EXPECT_TRUE(driver.AddToObject("k", Driver::CreateNumber("3")));
    EXPECT_EQ(driver.GetJSON(), R"({"m": 2, "k": 3})");
    EXPECT_EQ(Parsed(R"({"k":1,"m":2,"k":3})")->GetJSON(), R"({"m": 2, "k": 3})");
}

TEST(JsonValue, RepeatedKeysAreTheSameHoweverManyMembersThereAre)
{
    for (const int count : {1, 7, 8, 9, 16, 17, 100}) {
        Driver byHand;
        byHand.NewObject();
        std::string text = "{";
        std::string expected = "{";
        for (int round = 0; round < 3; ++round) {
            for (int i = 0; i < count; ++i) {
                const std::string key = "key" + std::to_string(i);
                const std::string number = std::to_string(1000 * round + i);
                byHand.AddToObject(key, Driver::CreateNumber(number));
                text.append(text.size() > 1 ? ", " : "").append(Quoted(key)).append(": ").append(number);
                if (round == 2)
                    expected.append(expected.size() > 1 ? ", " : "").append(Quoted(key)).append(": ").append(number);
            }
            EXPECT_EQ(byHand.GetValue()->GetSize(), static_cast<std::uint64_t>(count));
            EXPECT_EQ(byHand.GetValue()->GetObjectValues().size(), static_cast<std::size_t>(count));
        }
        EXPECT_EQ(byHand.GetJSON(), expected + "}");
        EXPECT_EQ(Parsed(text + "}")->GetJSON(), expected + "}");
    }
}

TEST(JsonValue, PositionsStayValidWhileMembersAreAdded)
{
    Driver driver;
    driver.NewObject();
    driver.AddToObject("first", Driver::CreateNumber("1"));
    const JSON::POSITION first = driver.GetValue()->GetObjectValues().front();
    for (int i = 0; i < 1000; ++i)
        driver.AddToObject("k" + std::to_string(i), Driver::CreateNull());
    EXPECT_EQ(first, driver.GetValue()->GetObjectValues().front());
    EXPECT_EQ(first->first, "first");
    EXPECT_EQ(first->second->GetInteger(), 1);
    driver.AddToObject("first", Driver::CreateNumber("2")); // the same entry, now at the end
    EXPECT_EQ(first, driver.GetValue()->GetObjectValues().back());
    EXPECT_EQ(first->second->GetInteger(), 2);
}

/// Parsed members lie in order without a vector; it must not matter when one is first asked for.
TEST(JsonValue, PositionsOfAParsedObject)
{
    for (const bool early : {true, false}) {
        for (const int members : {1, 5, 40}) {
            std::string text = R"({"again":0,"kept":1)";
            for (int i = 0; i < members; ++i)
                text.append(",\"k").append(std::to_string(i)).append("\":[]");
            Driver driver;
            ASSERT_TRUE(driver.Parse(text + R"(,"again":2})"));
            const auto root = driver.GetValue();
            const auto* const order = early ? &root->GetObjectValues() : nullptr;
            const JSON::POSITION kept = early ? order->front() : nullptr;
            EXPECT_EQ(root->GetSize(), static_cast<std::uint64_t>(members) + 2);
            EXPECT_TRUE(driver.AddToObject("new", Driver::CreateNumber("3")));
            EXPECT_TRUE(driver.AddToObject("again", Driver::CreateNumber("4")));

            std::string keys;
            for (const JSON::POSITION position : root->GetObjectValues())
                keys += position->first + " ";
            EXPECT_TRUE(keys.starts_with("kept k0 ")) << keys;
            EXPECT_TRUE(keys.ends_with("new again ")) << keys;
            EXPECT_EQ(root->GetSize(), static_cast<std::uint64_t>(members) + 3);
            EXPECT_EQ(root->GetObjectValue("again")->GetInteger(), 4);
            if (early) {
                EXPECT_EQ(order, &root->GetObjectValues());
                EXPECT_EQ(kept, order->front());
                EXPECT_EQ(kept->second->GetInteger(), 1);
            }
        }
    }
}

TEST(JsonValue, PositionsOfAnEmptyObject)
{
    EXPECT_TRUE(Parsed("{}")->GetObjectValues().empty());
    EXPECT_TRUE(Driver::CreateObject()->GetObjectValues().empty());
}

TEST(JsonValue, ValuesOutliveTheirDocument)
{
    Pointer inner = Parsed(R"({"a":{"b":["kept long enough to need memory of its own"]}})")->GetObjectValue("a");
    EXPECT_EQ(inner->GetJSON(), R"({"b": ["kept long enough to need memory of its own"]})");
    inner = inner->GetObjectValue("b")->GetArrayValue(0);
    EXPECT_EQ(inner->GetString(), "kept long enough to need memory of its own");
}

struct IntegerCase
{
    const char* label;
    const char* text;
    std::int32_t value;

    friend void PrintTo(const IntegerCase& c, std::ostream* out) { *out << c.text; }
};

class Integers : public testing::TestWithParam<IntegerCase>
{};

TEST_P(Integers, AreReadAsFarAsTheyFit)
{
    const auto number = Driver::CreateNumber(GetParam().text);
    EXPECT_EQ(number->GetInteger(), GetParam().value);
    EXPECT_EQ(number->GetInteger64(), GetParam().value);
}

INSTANTIATE_TEST_SUITE_P(JsonValue, Integers,
                         testing::Values(IntegerCase{"Plain", "12", 12}, IntegerCase{"Letters", "12abc", 12},
                                         IntegerCase{"Fraction", "1.5", 1}, IntegerCase{"Exponent", "1e3", 1},
                                         IntegerCase{"LeadingZeros", "007", 7}, IntegerCase{"NoOctal", "010", 10},
                                         IntegerCase{"NoHex", "0x1F", 0}, IntegerCase{"Negative", "-5", -5},
                                         IntegerCase{"NegativeZero", "-0", 0}, IntegerCase{"Plus", "+5", 5},
                                         IntegerCase{"LeadingWhiteSpace", " \t\n\v\f\r42", 42},
                                         IntegerCase{"MinusOne", "-1", -1},
                                         IntegerCase{"Greatest", "2147483647", 2147483647},
                                         IntegerCase{"Smallest", "-2147483648", -2147483647 - 1}),
                         [](const auto& row) { return std::string(row.param.label); });

class NoIntegers : public testing::TestWithParam<const char*>
{};

TEST_P(NoIntegers, AreInvalid)
{
    const auto number = Driver::CreateNumber(GetParam());
    ExpectThrowsText<std::invalid_argument>([&] { number->GetInteger(); }, "invalid stoi argument");
    ExpectThrowsText<std::invalid_argument>([&] { number->GetInteger64(); }, "invalid stoll argument");
}

INSTANTIATE_TEST_SUITE_P(JsonValue, NoIntegers,
                         testing::Values("", "-", "+", "+-5", "-+5", "- 5", "abc", " ", ".5", "--1", "e3"));

TEST(JsonValue, IntegersOutOfRange)
{
    for (const char* const text : {"2147483648", "-2147483649", "99999999999"}) {
        const auto number = Driver::CreateNumber(text);
        ExpectThrowsText<std::out_of_range>([&] { number->GetInteger(); }, "stoi argument out of range");
        EXPECT_EQ(number->GetInteger64(), std::stoll(text));
    }
    for (const char* const text : {"9223372036854775808", "-9223372036854775809", "123456789012345678901234567890"}) {
        const auto number = Driver::CreateNumber(text);
        ExpectThrowsText<std::out_of_range>([&] { number->GetInteger64(); }, "stoll argument out of range");
    }
    EXPECT_EQ(Driver::CreateNumber("9223372036854775807")->GetInteger64(), std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(Driver::CreateNumber("-9223372036854775808")->GetInteger64(), std::numeric_limits<std::int64_t>::min());
}

TEST(JsonValue, IntegerEndsAtAZeroByte)
{
    EXPECT_EQ(Driver::CreateNumber(std::string("12\0"
                                               "34",
                                               5))
                  ->GetInteger(),
              12);
    EXPECT_EQ(Driver::CreateNumber(std::string("1.5\0"
                                               "9",
                                               5))
                  ->GetFloat(),
              1.5F);
}

TEST(JsonValue, Floats)
{
    EXPECT_EQ(Driver::CreateNumber("1.5")->GetFloat(), 1.5F);
    EXPECT_EQ(Driver::CreateNumber("-12.5e+3")->GetFloat(), -12500.0F);
    EXPECT_EQ(Driver::CreateNumber("  2.25rest")->GetFloat(), 2.25F);
    EXPECT_EQ(Driver::CreateNumber("-1")->GetFloat(), -1.0F);
    for (const char* const text : {"", "-", "abc", "."})
        ExpectThrowsText<std::invalid_argument>([&] { Driver::CreateNumber(text)->GetFloat(); },
                                                "invalid stof argument");
    for (const char* const text : {"1e39", "-1e39", "1e999", "1e-60", "-1e-60"})
        ExpectThrowsText<std::out_of_range>([&] { Driver::CreateNumber(text)->GetFloat(); },
                                            "stof argument out of range");
}

TEST(JsonValue, FloatsLeaveErrnoAlone)
{
    errno = EDOM;
    EXPECT_EQ(Driver::CreateNumber("1.5")->GetFloat(), 1.5F);
    EXPECT_THROW(Driver::CreateNumber("1e999")->GetFloat(), std::out_of_range);
    EXPECT_EQ(errno, EDOM);
}

TEST(JsonValue, NumberKeepsItsText)
{
    EXPECT_EQ(Driver::CreateNumber("1.0E+2")->GetString(), "1.0E+2");
    EXPECT_EQ(Parsed("[1.0E+2, -0, 007]")->GetJSON(), "[1.0E+2, -0, 007]");
}

TEST(JsonEscapeString, EveryByte)
{
    const std::map<int, std::string> escapes = {{0x22, R"(\")"}, {0x5C, R"(\\)"}, {0x08, R"(\b)"}, {0x0C, R"(\f)"},
                                                {0x0A, R"(\n)"}, {0x0D, R"(\r)"}, {0x09, R"(\t)"}};
    for (int byte = 0; byte < 256; ++byte) {
        const std::string text(1, static_cast<char>(byte));
        const auto escape = escapes.find(byte);
        EXPECT_EQ(Value::EscapeString(text), Quoted(escape == escapes.end() ? text : escape->second)) << byte;
    }
}

TEST(JsonEscapeString, EmptyTextIsTwoQuotes)
{
    EXPECT_EQ(Value::EscapeString(""), R"("")");
}

TEST(JsonEscapeString, TextsAroundTheSizeOfAPiece)
{
    for (const std::size_t size : {255U, 256U, 257U, 4095U, 4096U, 65535U, 65536U, 200000U}) {
        const std::string plain(size, 'x');
        EXPECT_EQ(Value::EscapeString(plain), Quoted(plain)) << size;
        std::string quotes;
        for (std::size_t i = 0; i < size; ++i)
            quotes += "\\\"";
        EXPECT_EQ(Value::EscapeString(std::string(size, '"')), Quoted(quotes)) << size;
    }
}

TEST(JsonText, CompactExample)
{
    EXPECT_EQ(Parsed("{\"a\":[1,2.50],\"b\":\"x\\ty\",\"c\":null}")->GetJSON(),
              R"({"a": [1, 2.50], "b": "x\ty", "c": null})");
}

TEST(JsonText, CompactEscapesKeysToo)
{
    EXPECT_EQ(Parsed(R"({"a\"\\\/\n":"\r\b\f"})")->GetJSON(), R"({"a\"\\/\n": "\r\b\f"})");
}

TEST(JsonText, EmptyContainers)
{
    EXPECT_EQ(Parsed("[]")->GetJSON(), "[]");
    EXPECT_EQ(Parsed("{}")->GetJSON(), "{}");
    EXPECT_EQ(Parsed(R"({"x":[]})")->GetJSON(), R"({"x": []})");
    EXPECT_EQ(Indented(*Parsed("[]")), "[]");
    EXPECT_EQ(Indented(*Parsed("{}")), "{}");
    EXPECT_EQ(Indented(*Parsed("[[],{}]")), "[\n    [],\n    {}\n]");
}

TEST(JsonText, IndentedExample)
{
    EXPECT_EQ(Indented(*Parsed("{\"a\":[1,2.50],\"b\":\"x\\ty\",\"c\":null}")),
              "{\n    \"a\": [\n        1,\n        2.50\n    ],\n    \"b\": \"x\ty\",\n    \"c\": null\n}");
}

TEST(JsonText, IndentedEscapesNothing)
{
    EXPECT_EQ(Indented(*Parsed(R"({"k\"\\\n":"v\"\\\n"})")), "{\n    \"k\"\\\n\": \"v\"\\\n\"\n}");
    EXPECT_EQ(Indented(*Driver::CreateString("a\"b", true)), "\"a\"b\"");
}

TEST(JsonText, IndentedFromALevel)
{
    const Pointer value = Parsed(R"([true,{"k":false}])");
    EXPECT_EQ(Indented(*value, 1), "[\n        true,\n        {\n            \"k\": false\n        }\n    ]");
    EXPECT_EQ(Indented(*value, -1), "[\ntrue,\n{\n    \"k\": false\n}\n]");
    EXPECT_EQ(Indented(*value, std::numeric_limits<std::int32_t>::min()), "[\ntrue,\n{\n\"k\": false\n}\n]");
    EXPECT_EQ(Indented(*Driver::CreateNumber("5"), 3), "5");
}

TEST(JsonText, StreamFormattingDoesNotMatter)
{
    std::ostringstream out;
    out.width(20);
    out.fill('*');
    Parsed("[1]")->Write(out);
    EXPECT_EQ(out.str(), "[1]");
}

TEST(JsonText, LargeDocumentInBothForms)
{
    std::string text = "[";
    std::string compact = "[";
    std::string indented = "[";
    for (int i = 0; i < 30000; ++i) {
        const std::string member = R"("k": "value )" + std::to_string(i) + "\"";
        text.append(i ? ",{" : "{").append(member).append("}");
        compact.append(i ? ", {" : "{").append(member).append("}");
        indented.append(i ? ",\n    {\n        " : "\n    {\n        ").append(member).append("\n    }");
    }
    EXPECT_EQ(Parsed(text + "]")->GetJSON(), compact + "]");
    EXPECT_EQ(Compact(*Parsed(text + "]")), compact + "]");
    EXPECT_EQ(Indented(*Parsed(text + "]")), indented + "\n]");
}

TEST(JsonClone, IsDeep)
{
    Driver driver;
    ASSERT_TRUE(driver.Parse(R"({"a":[1,{"b":"x"}]})"));
    const Pointer copy = driver.GetValue()->Clone();
    driver.UseAsCurrentValue("a");
    driver.Add(Driver::CreateNull());
    EXPECT_EQ(driver.GetJSON(), R"({"a": [1, {"b": "x"}, null]})");
    EXPECT_EQ(copy->GetJSON(), R"({"a": [1, {"b": "x"}]})");
}

TEST(JsonClone, UnescapesKeysOnceMore)
{
    const Pointer value = Parsed(R"({"a\\\\nb":1})"); // the stored key: a, two backslashes, n, b
    ASSERT_EQ(value->GetObjectValues()[0]->first, R"(a\\nb)");
    const Pointer once = value->Clone();
    EXPECT_EQ(once->GetObjectValues()[0]->first, R"(a\nb)");
    const Pointer twice = once->Clone();
    EXPECT_EQ(twice->GetObjectValues()[0]->first, "a\nb");
    EXPECT_EQ(twice->Clone()->GetObjectValues()[0]->first, "a\nb");
}

TEST(JsonClone, KeysThatBecomeEqualAreOne)
{
    const Pointer value = Parsed(R"({"\\n":1,"x":2,"\n":3,"y":4})");
    EXPECT_EQ(value->GetJSON(), R"({"\\n": 1, "x": 2, "\n": 3, "y": 4})");
    EXPECT_EQ(value->Clone()->GetJSON(), R"({"x": 2, "\n": 3, "y": 4})");
}

TEST(JsonClone, KeyThatBecomesEmptyStays)
{
    Driver driver;
    driver.NewObject();
    ASSERT_TRUE(driver.AddToObject(R"(\\)", Driver::CreateTrue())); // stored: one backslash
    EXPECT_EQ(driver.GetValue()->Clone()->GetJSON(), R"({"": true})");
}

TEST(JsonClone, StringsAreNotUnescaped)
{
    EXPECT_EQ(Parsed(R"(["a\\nb"])")->Clone()->GetArrayValue(0)->GetString(), R"(a\nb)");
}

} // namespace
