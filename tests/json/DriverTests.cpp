#include <KelInsInfra/json/Driver.h>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <tests/support/ExpectThrowsText.h>
#include <type_traits>

namespace {

using JSON::Driver;
using JSON::Type;
using Pointer = std::shared_ptr<JSON::Value>;

static_assert(!std::is_copy_constructible_v<Driver> && !std::is_copy_assignable_v<Driver>);
static_assert(std::is_same_v<decltype(Driver::CreateObject()), std::shared_ptr<JSON::Object>>);
static_assert(std::is_same_v<decltype(Driver::CreateArray()), std::shared_ptr<JSON::Array>>);
static_assert(std::is_same_v<decltype(Driver::CreateNull()), std::shared_ptr<JSON::Item>>);

Pointer Number(const char* text)
{
    return Driver::CreateNumber(text);
}

TEST(JsonDriver, IsEmptyAtFirst)
{
    Driver driver;
    EXPECT_EQ(driver.GetValue(), nullptr);
    EXPECT_EQ(driver.GetJSON(), "");
    driver.CloseCurrentValue(); // nothing to close
    EXPECT_EQ(driver.GetValue(), nullptr);
}

TEST(JsonDriver, ResetParserReleasesAllButTheKey)
{
    Driver driver;
    driver.NewObject();
    const std::weak_ptr<JSON::Value> root = driver.GetValue();
    driver.SetNextObjectKey("k");
    driver.ResetParser();
    EXPECT_EQ(driver.GetValue(), nullptr);
    EXPECT_TRUE(root.expired());
    EXPECT_FALSE(driver.AddToArray(Number("1")));
    EXPECT_FALSE(driver.AddToObject("x", Number("1")));
    driver.NewObject();
    EXPECT_TRUE(driver.Add(Number("1"))); // under the key set before
    EXPECT_EQ(driver.GetJSON(), R"({"k": 1})");
}

TEST(JsonDriver, NewArrayAndNewObjectStartAnew)
{
    Driver driver;
    driver.NewArray();
    EXPECT_TRUE(driver.Add(Number("1")));
    EXPECT_EQ(driver.GetJSON(), "[1]");
    driver.NewObject();
    EXPECT_EQ(driver.GetJSON(), "{}");
    EXPECT_TRUE(driver.AddToObject("a", Number("1")));
    driver.NewArray();
    EXPECT_EQ(driver.GetJSON(), "[]");
}

TEST(JsonDriver, UseValueTakesContainersOnly)
{
    Driver driver;
    driver.NewArray();
    const Pointer root = driver.GetValue();
    EXPECT_FALSE(driver.UseValue(nullptr));
    EXPECT_FALSE(driver.UseValue(Number("1")));
    EXPECT_FALSE(driver.UseValue(Driver::CreateString("x", true)));
    EXPECT_FALSE(driver.UseValue(Driver::CreateTrue()));
    EXPECT_FALSE(driver.UseValue(Driver::CreateFalse()));
    EXPECT_FALSE(driver.UseValue(Driver::CreateNull()));
    EXPECT_EQ(driver.GetValue(), root);
    EXPECT_TRUE(driver.Add(Number("1"))); // still open

    const Pointer object = Driver::CreateObject();
    EXPECT_TRUE(driver.UseValue(object));
    EXPECT_EQ(driver.GetValue(), object);
    EXPECT_TRUE(driver.AddToObject("a", Number("1")));
    EXPECT_TRUE(driver.UseValue(root)); // one that holds values already
    EXPECT_TRUE(driver.Add(Number("2")));
    EXPECT_EQ(driver.GetJSON(), "[1, 2]");
    EXPECT_EQ(object->GetJSON(), R"({"a": 1})");
}

TEST(JsonDriver, UseValueOfItsOwnRootOrPart)
{
    Driver driver;
    ASSERT_TRUE(driver.Parse(R"({"a":[1]})"));
    EXPECT_TRUE(driver.UseValue(driver.GetValue()->GetObjectValue("a")));
    EXPECT_EQ(driver.GetJSON(), "[1]");
    EXPECT_TRUE(driver.UseValue(driver.GetValue()));
    EXPECT_EQ(driver.GetJSON(), "[1]");
}

TEST(JsonDriver, UseAsCurrentValueOpensAMember)
{
    Driver driver;
    EXPECT_FALSE(driver.UseAsCurrentValue("a")); // nothing open
    ASSERT_TRUE(driver.Parse(R"({"a":[1],"o":{"x":1},"n":5,"s":"t","t":true,"f":false,"z":null})"));
    for (const char* const name : {"n", "s", "t", "f", "z", "missing", ""})
        EXPECT_FALSE(driver.UseAsCurrentValue(name)) << name;
    EXPECT_TRUE(driver.UseAsCurrentValue("a"));
    EXPECT_TRUE(driver.Add(Number("2")));
    EXPECT_FALSE(driver.UseAsCurrentValue("a")); // an array is current now
    driver.CloseCurrentValue();
    EXPECT_TRUE(driver.UseAsCurrentValue("o"));
    EXPECT_TRUE(driver.AddToObject("y", Number("2")));
    EXPECT_EQ(driver.GetJSON(), R"({"a": [1, 2], "o": {"x": 1, "y": 2}, "n": 5, "s": "t", "t": true, "f": false, )"
                                R"("z": null})");
}

TEST(JsonDriver, UseAsCurrentValueTakesTheExactKey)
{
    Driver driver;
    driver.NewObject();
    ASSERT_TRUE(driver.AddToObject(R"(a\\tb)", Driver::CreateArray())); // stored: a, backslash, t, b
    driver.CloseCurrentValue();
    EXPECT_FALSE(driver.UseAsCurrentValue(R"(a\\tb)"));
    EXPECT_FALSE(driver.UseAsCurrentValue("a\tb"));
    EXPECT_TRUE(driver.UseAsCurrentValue(R"(a\tb)"));
}

TEST(JsonDriverAdd, EmptyPointerIsRefused)
{
    Driver driver;
    EXPECT_FALSE(driver.Add(nullptr));
    driver.NewArray();
    EXPECT_FALSE(driver.Add(nullptr));
    EXPECT_FALSE(driver.AddToArray(nullptr));
    driver.NewObject();
    driver.SetNextObjectKey("k");
    EXPECT_FALSE(driver.Add(nullptr));
    EXPECT_FALSE(driver.AddToObject("k", nullptr));
    EXPECT_TRUE(driver.Add(Number("1"))); // the key was kept
    EXPECT_EQ(driver.GetJSON(), R"({"k": 1})");
}

TEST(JsonDriverAdd, ScalarAloneIsRefused)
{
    Driver driver;
    EXPECT_FALSE(driver.Add(Number("1")));
    EXPECT_EQ(driver.GetValue(), nullptr);
    EXPECT_EQ(driver.GetJSON(), "");
}

TEST(JsonDriverAdd, ContainerBecomesTheRoot)
{
    Driver driver;
    EXPECT_TRUE(driver.Add(Driver::CreateArray()));
    EXPECT_TRUE(driver.Add(Number("1")));
    driver.CloseCurrentValue();
    EXPECT_EQ(driver.GetJSON(), "[1]");
    EXPECT_TRUE(driver.Add(Driver::CreateObject())); // replaces the closed root
    EXPECT_EQ(driver.GetJSON(), "{}");
    driver.CloseCurrentValue();
    EXPECT_FALSE(driver.Add(Number("1")));
    EXPECT_EQ(driver.GetJSON(), "{}");
}

TEST(JsonDriverAdd, FullContainerAsRootIsOpenedToo)
{
    Driver source;
    ASSERT_TRUE(source.Parse("[1]"));
    Driver driver;
    EXPECT_TRUE(driver.Add(source.GetValue()));
    EXPECT_TRUE(driver.Add(Number("2")));
    EXPECT_EQ(driver.GetJSON(), "[1, 2]");
}

TEST(JsonDriverAdd, MemberNeedsAKey)
{
    Driver driver;
    driver.NewObject();
    EXPECT_FALSE(driver.Add(Driver::CreateTrue()));
    driver.SetNextObjectKey("");
    EXPECT_FALSE(driver.Add(Driver::CreateTrue()));
    EXPECT_EQ(driver.GetJSON(), "{}");
    driver.SetNextObjectKey("k");
    EXPECT_TRUE(driver.Add(Driver::CreateTrue()));
    EXPECT_FALSE(driver.Add(Driver::CreateFalse())); // the key was used up
    EXPECT_EQ(driver.GetJSON(), R"({"k": true})");
}

TEST(JsonDriverAdd, KeyIsUnescapedOnce)
{
    Driver driver;
    driver.NewObject();
    driver.SetNextObjectKey(R"(a\\tb\tc)");
    EXPECT_TRUE(driver.Add(Driver::CreateNull()));
    EXPECT_EQ(driver.GetValue()->GetObjectValues()[0]->first, "a\\tb\tc");
}

TEST(JsonDriverAdd, KeyIsKeptThroughArrays)
{
    Driver driver;
    driver.NewArray();
    driver.SetNextObjectKey("k");
    EXPECT_TRUE(driver.Add(Number("1"))); // arrays do not use it
    EXPECT_TRUE(driver.Add(Driver::CreateObject()));
    EXPECT_TRUE(driver.Add(Number("2")));
    EXPECT_EQ(driver.GetJSON(), R"([1, {"k": 2}])");
}

TEST(JsonDriverAdd, EmptyContainerIsOpenedUntilClosed)
{
    Driver driver;
    driver.NewArray();
    EXPECT_TRUE(driver.Add(Driver::CreateArray()));
    EXPECT_TRUE(driver.Add(Driver::CreateNull()));
    driver.CloseCurrentValue();
    EXPECT_TRUE(driver.Add(Number("1")));
    EXPECT_EQ(driver.GetJSON(), "[[null], 1]");
}

TEST(JsonDriverAdd, FullContainerIsOnlyAttached)
{
    Driver source;
    ASSERT_TRUE(source.Parse("[1]"));
    Driver driver;
    driver.NewArray();
    EXPECT_TRUE(driver.Add(source.GetValue()));
    EXPECT_TRUE(driver.Add(Number("2")));
    EXPECT_EQ(driver.GetJSON(), "[[1], 2]");
    driver.NewObject();
    EXPECT_TRUE(driver.AddToObject("a", source.GetValue()));
    EXPECT_TRUE(driver.AddToObject("b", Number("2")));
    EXPECT_EQ(driver.GetJSON(), R"({"a": [1], "b": 2})");
}

TEST(JsonDriverAdd, SharedContainerShowsInBoth)
{
    const Pointer shared = Driver::CreateArray();
    Driver driver;
    driver.NewArray();
    ASSERT_TRUE(driver.Add(shared));
    driver.CloseCurrentValue();
    ASSERT_TRUE(driver.Add(shared)); // empty still: opened again
    ASSERT_TRUE(driver.Add(Number("1")));
    EXPECT_EQ(driver.GetJSON(), "[[1], [1]]");
}

TEST(JsonDriverAdd, ToArrayOnlyInArrays)
{
    Driver driver;
    EXPECT_FALSE(driver.AddToArray(Number("1")));
    driver.NewObject();
    EXPECT_FALSE(driver.AddToArray(Number("1")));
    driver.NewArray();
    EXPECT_TRUE(driver.AddToArray(Driver::CreateObject()));
    EXPECT_FALSE(driver.AddToArray(Number("1"))); // the object is current
    EXPECT_EQ(driver.GetJSON(), "[{}]");
}

TEST(JsonDriverAdd, ToObjectOnlyInObjects)
{
    Driver driver;
    EXPECT_FALSE(driver.AddToObject("k", Number("1")));
    driver.NewArray();
    EXPECT_FALSE(driver.AddToObject("k", Number("1")));
    driver.NewObject();
    EXPECT_TRUE(driver.AddToObject("k", Driver::CreateArray()));
    EXPECT_FALSE(driver.AddToObject("l", Number("1"))); // the array is current
    driver.CloseCurrentValue();
    EXPECT_TRUE(driver.AddToObject("", Number("1"))); // an empty key is refused by Add only
    EXPECT_EQ(driver.GetJSON(), R"({"k": [], "": 1})");
}

TEST(JsonDriverAdd, ToObjectLeavesThePendingKey)
{
    Driver driver;
    driver.NewObject();
    driver.SetNextObjectKey("pending");
    EXPECT_TRUE(driver.AddToObject("k", Number("1")));
    EXPECT_TRUE(driver.Add(Number("2")));
    EXPECT_EQ(driver.GetJSON(), R"({"k": 1, "pending": 2})");
}

TEST(JsonDriverAdd, ByHandLikeTheParser)
{
    Driver driver;
    EXPECT_TRUE(driver.Add(Driver::CreateObject()));
    driver.SetNextObjectKey("list");
    EXPECT_TRUE(driver.Add(Driver::CreateArray()));
    EXPECT_TRUE(driver.Add(Driver::CreateObject()));
    driver.SetNextObjectKey("deep");
    EXPECT_TRUE(driver.Add(Driver::CreateString("x", true)));
    driver.CloseCurrentValue();
    EXPECT_TRUE(driver.Add(Driver::CreateBoolean(true)));
    driver.CloseCurrentValue();
    driver.SetNextObjectKey("last");
    EXPECT_TRUE(driver.Add(Driver::CreateBoolean(false)));
    driver.CloseCurrentValue();
    driver.CloseCurrentValue(); // one too many does nothing
    EXPECT_EQ(driver.GetJSON(), R"({"list": [{"deep": "x"}, true], "last": false})");
}

TEST(JsonDriverAdd, ReplacedOpenContainerStaysUsable)
{
    Driver driver;
    driver.NewObject();
    const Pointer root = driver.GetValue();
    ASSERT_TRUE(driver.AddToObject("a", Driver::CreateArray())); // open now
    Driver other;
    ASSERT_TRUE(other.UseValue(root));
    ASSERT_TRUE(other.AddToObject("a", Number("1"))); // the driver alone holds the array now
    EXPECT_TRUE(driver.Add(Number("2")));
    driver.CloseCurrentValue();
    EXPECT_EQ(root->GetJSON(), R"({"a": 1})");
}

TEST(JsonDriverCreate, Strings)
{
    EXPECT_EQ(Driver::CreateString("", true)->GetType(), Type::Null);
    EXPECT_EQ(Driver::CreateString("", false)->GetType(), Type::String);
    EXPECT_EQ(Driver::CreateString(std::string(), true)->GetType(), Type::Null);
    EXPECT_EQ(Driver::CreateString(std::string(), false)->GetType(), Type::String);
    EXPECT_EQ(Driver::CreateString(R"(a\nb)", true)->GetString(), R"(a\nb)"); // as it is
    EXPECT_EQ(Driver::CreateString(std::string("a\0b", 3), true)->GetString(), std::string("a\0b", 3));
    const std::string large(100000, 'x');
    EXPECT_EQ(Driver::CreateString(large, true)->GetString(), large);
}

TEST(JsonDriverCreate, Numbers)
{
    EXPECT_EQ(Driver::CreateNumber("no number")->GetString(), "no number"); // not checked
    EXPECT_EQ(Driver::CreateNumber(std::string("1.50"))->GetJSON(), "1.50");
    EXPECT_EQ(Driver::CreateNumber("")->GetType(), Type::Number);
}

TEST(JsonDriverCreate, NullPointerIsAnEmptyText)
{
    const char* const none = nullptr;
    EXPECT_EQ(Driver::CreateNumber(none)->GetString(), "");
    EXPECT_EQ(Driver::CreateString(none, true)->GetType(), Type::Null);
    EXPECT_EQ(Driver::CreateString(none, false)->GetType(), Type::String);
}

TEST(JsonDriverCreate, Literals)
{
    EXPECT_EQ(Driver::CreateBoolean(true)->GetType(), Type::True);
    EXPECT_EQ(Driver::CreateBoolean(false)->GetType(), Type::False);
    EXPECT_EQ(Driver::CreateTrue()->GetType(), Type::True);
    EXPECT_EQ(Driver::CreateFalse()->GetType(), Type::False);
    EXPECT_EQ(Driver::CreateNull()->GetType(), Type::Null);
    EXPECT_EQ(Driver::CreateNull()->GetString(), "");
    EXPECT_NE(Driver::CreateNull(), Driver::CreateNull()); // each a value of its own
}

Pointer Members()
{
    Driver driver;
    EXPECT_TRUE(driver.Parse(R"({"int":5,"big":5000000000,"float":1.5,"text":"5","yes":true,"no":false,"none":null,)"
                             R"("list":[1],"map":{"x":1},"empty":""})"));
    EXPECT_TRUE(driver.AddToObject("bad", Driver::CreateNumber("-")));
    return driver.GetValue();
}

TEST(JsonAttribute, Find)
{
    const Pointer value = Members();
    EXPECT_EQ(Driver::FindAttribute(value, "int"), value->GetObjectValue("int"));
    EXPECT_EQ(Driver::FindAttribute(value, "missing"), nullptr);
    EXPECT_EQ(Driver::FindAttribute(nullptr, "int"), nullptr);
    EXPECT_EQ(Driver::FindAttribute(Driver::CreateArray(), "int"), nullptr);
    EXPECT_EQ(Driver::FindAttribute(Driver::CreateNull(), "int"), nullptr);
}

TEST(JsonAttribute, Has)
{
    const Pointer value = Members();
    EXPECT_TRUE(Driver::HasAttribute(value, "none")); // a null is there
    EXPECT_FALSE(Driver::HasAttribute(value, "missing"));
    EXPECT_FALSE(Driver::HasAttribute(nullptr, "int"));
    EXPECT_FALSE(Driver::HasAttribute(Driver::CreateNumber("1"), "int"));
}

template <typename T>
T Attribute(const char* name)
{
    T out{};
    Driver::GetAttribute(Members(), name, out);
    return out;
}

TEST(JsonAttribute, GetEachType)
{
    EXPECT_EQ(Attribute<std::int32_t>("int"), 5);
    EXPECT_EQ(Attribute<std::int32_t>("float"), 1);
    EXPECT_EQ(Attribute<std::int64_t>("big"), 5000000000);
    EXPECT_EQ(Attribute<float>("float"), 1.5F);
    EXPECT_TRUE(Attribute<bool>("yes"));
    EXPECT_FALSE(Attribute<bool>("no"));
    EXPECT_EQ(Attribute<std::string>("text"), "5");
    EXPECT_EQ(Attribute<Pointer>("list")->GetJSON(), "[1]");
    EXPECT_EQ(Attribute<Pointer>("map")->GetJSON(), R"({"x": 1})");
}

TEST(JsonAttribute, GetGivesTheMemberItself)
{
    const Pointer value = Members();
    Pointer out;
    Driver::GetAttribute(value, "list", out);
    EXPECT_EQ(out, value->GetObjectValue("list"));
}

/// What each overload says of a member of the wrong type, of none, and of no value; out stays as it was.
template <typename T>
void ExpectRefusals(const T& before, const std::string& expectation, const std::vector<std::string>& wrong)
{
    const std::string operation = "JSON::Driver::GetAttribute - ";
    T out = before;
    ExpectThrowsText<std::runtime_error>([&] { Driver::GetAttribute(nullptr, "int", out); },
                                         operation + "Value is null");
    ExpectThrowsText<std::runtime_error>([&] { Driver::GetAttribute(Members(), "missing", out); },
                                         operation + "Empty field: missing");
    ExpectThrowsText<std::runtime_error>([&] { Driver::GetAttribute(Driver::CreateArray(), "int", out); },
                                         operation + "Empty field: int");
    for (const std::string& name : wrong) {
        ExpectThrowsText<std::runtime_error>([&] { Driver::GetAttribute(Members(), name, out); },
                                             operation + name + expectation +
                                                 Members()->GetObjectValue(name)->GetTypeString());
    }
    EXPECT_EQ(out, before);
}

TEST(JsonAttribute, RefusalsOfInteger)
{
    ExpectRefusals<std::int32_t>(
        77, " is not a Number. Actual type: ", {"text", "yes", "no", "none", "list", "map", "empty"});
}

TEST(JsonAttribute, RefusalsOfInteger64)
{
    ExpectRefusals<std::int64_t>(
        77, " is not a Number. Actual type: ", {"text", "yes", "no", "none", "list", "map", "empty"});
}

TEST(JsonAttribute, RefusalsOfFloat)
{
    ExpectRefusals<float>(7.5F,
                          " is not a Number. Actual type: ", {"text", "yes", "no", "none", "list", "map", "empty"});
}

TEST(JsonAttribute, RefusalsOfBool)
{
    ExpectRefusals<bool>(true, " is not a Boolean. Actual type: ", {"int", "text", "none", "list", "map", "empty"});
}

TEST(JsonAttribute, RefusalsOfString)
{
    ExpectRefusals<std::string>(
        "before", " is not a String. Actual type: ", {"int", "yes", "no", "none", "list", "map", "empty"});
}

TEST(JsonAttribute, RefusalsOfContainer)
{
    ExpectRefusals<Pointer>(Driver::CreateNull(), " is neither an Array nor an Object. Actual type: ",
                            {"int", "text", "yes", "no", "none", "empty"});
}

TEST(JsonAttribute, WholeTexts)
{
    std::int32_t out = 77;
    ExpectThrowsText<std::runtime_error>([&] { Driver::GetAttribute(Members(), "text", out); },
                                         "JSON::Driver::GetAttribute - text is not a Number. Actual type: String");
    ExpectThrowsText<std::runtime_error>([&] { Driver::GetAttribute(nullptr, "text", out); },
                                         "JSON::Driver::GetAttribute - Value is null");
    ExpectThrowsText<std::runtime_error>([&] { Driver::GetAttribute(Members(), "missing", out); },
                                         "JSON::Driver::GetAttribute - Empty field: missing");
    bool flag = false;
    ExpectThrowsText<std::runtime_error>([&] { Driver::GetAttribute(Members(), "int", flag); },
                                         "JSON::Driver::GetAttribute - int is not a Boolean. Actual type: Number");
    std::string text;
    ExpectThrowsText<std::runtime_error>([&] { Driver::GetAttribute(Members(), "yes", text); },
                                         "JSON::Driver::GetAttribute - yes is not a String. Actual type: True");
    Pointer pointer;
    ExpectThrowsText<std::runtime_error>(
        [&] { Driver::GetAttribute(Members(), "none", pointer); },
        "JSON::Driver::GetAttribute - none is neither an Array nor an Object. Actual type: Null");
}

TEST(JsonAttribute, ConversionFailuresGoThrough)
{
    const Pointer value = Members();
    std::int32_t integer = 77;
    ExpectThrowsText<std::invalid_argument>([&] { Driver::GetAttribute(value, "bad", integer); },
                                            "invalid stoi argument");
    ExpectThrowsText<std::out_of_range>([&] { Driver::GetAttribute(value, "big", integer); },
                                        "stoi argument out of range");
    std::int64_t integer64 = 77;
    ExpectThrowsText<std::invalid_argument>([&] { Driver::GetAttribute(value, "bad", integer64); },
                                            "invalid stoll argument");
    float number = 77;
    ExpectThrowsText<std::invalid_argument>([&] { Driver::GetAttribute(value, "bad", number); },
                                            "invalid stof argument");
    EXPECT_EQ(integer, 77);
    EXPECT_EQ(integer64, 77);
    EXPECT_EQ(number, 77.0F);
}

TEST(JsonRemoveEscaping, EveryByteAfterABackslash)
{
    for (int byte = 0; byte < 256; ++byte) {
        const std::string letter(1, static_cast<char>(byte));
        std::string expected = std::string("\\").append(letter);
        switch (byte) {
        case '"':
        case '/':
        case '\\':
            expected = letter;
            break;
        case 'b':
            expected = "\x08";
            break;
        case 'f':
            expected = "\x0C";
            break;
        case 'n':
            expected = "\x0A";
            break;
        case 'r':
            expected = "\x0D";
            break;
        case 't':
            expected = "\x09";
            break;
        default:
            break;
        }
        EXPECT_EQ(Driver::RemoveJSONEscaping("<\\" + letter + ">"), "<" + expected + ">") << byte;
        if (byte != '\\') {
            EXPECT_EQ(Driver::RemoveJSONEscaping(letter), letter) << byte;
        }
    }
}

TEST(JsonRemoveEscaping, Texts)
{
    EXPECT_EQ(Driver::RemoveJSONEscaping(""), "");
    EXPECT_EQ(Driver::RemoveJSONEscaping(R"(a\nb)"), "a\nb");
    EXPECT_EQ(Driver::RemoveJSONEscaping(R"(\u0041)"), R"(\u0041)");
    EXPECT_EQ(Driver::RemoveJSONEscaping("\\"), "");
    EXPECT_EQ(Driver::RemoveJSONEscaping("text\\"), "text");
    EXPECT_EQ(Driver::RemoveJSONEscaping(R"(\\)"), "\\");
    EXPECT_EQ(Driver::RemoveJSONEscaping(R"(\\\)"), "\\");
    EXPECT_EQ(Driver::RemoveJSONEscaping(R"(\\n)"), R"(\n)"); // the letter belongs to no backslash
    EXPECT_EQ(Driver::RemoveJSONEscaping(R"(\x\")"), R"(\x")");
    EXPECT_EQ(Driver::RemoveJSONEscaping("quote \" and slash / stay"), "quote \" and slash / stay");
}

TEST(JsonRemoveEscaping, UndoesEscapeString)
{
    std::string text;
    for (int byte = 0; byte < 256; ++byte)
        text += static_cast<char>(byte);
    const std::string escaped = JSON::Value::EscapeString(text);
    EXPECT_EQ(Driver::RemoveJSONEscaping(escaped.substr(1, escaped.size() - 2)), text);
}

} // namespace
