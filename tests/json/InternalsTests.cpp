// Rare ways through the library's own workings, which documents reach seldom or never.

#include <KelInsInfra/json/Array.h>
#include <KelInsInfra/json/Driver.h>
#include <KelInsInfra/json/Item.h>
#include <KelInsInfra/json/Object.h>
#include <KelInsInfra/json/internal/Member.h>
#include <KelInsInfra/json/internal/Pool.h>
#include <KelInsInfra/json/internal/TextOutput.h>
#include <gtest/gtest.h>
#include <limits>
#include <new>
#include <ostream>
#include <stdexcept>
#include <streambuf>
#include <string>

namespace {

using JSON::Driver;

constexpr std::size_t kMost = std::numeric_limits<std::size_t>::max();

TEST(JsonMemory, SizesThatWouldOverflowAreRefused)
{
    EXPECT_THROW(JSON::Chunk::Create(kMost, 1), std::bad_alloc);
    JSON::Pool pool;
    EXPECT_THROW(JSON::MemberBlock::Create(pool, kMost, nullptr), std::bad_alloc);
}

TEST(JsonTextOutput, NothingPutIsNoText)
{
    EXPECT_EQ(JSON::StringOutput().Take(), "");
}

/// Takes nothing.
class Refusing : public std::streambuf
{};

TEST(JsonTextOutput, StopsInTheMiddleOfATextWhereTheStreamFails)
{
    Refusing refusing;
    std::ostream out(&refusing);
    Driver::CreateString(std::string(1'000'000, '"'), false)->Write(out);
    EXPECT_TRUE(out.fail());
}

/// No function of the library makes one.
TEST(JsonContainer, HoldsAnEmptyPointer)
{
    const auto array = Driver::CreateArray();
    array->Append(nullptr);
    EXPECT_EQ(array->GetSize(), 1u);
    const auto object = Driver::CreateObject();
    object->Insert("key", nullptr);
    EXPECT_EQ(object->GetObjectValue("key"), nullptr);
}

TEST(JsonObject, FindsTheEmptyKey)
{
    Driver driver;
    driver.NewObject();
    driver.AddToObject("", Driver::CreateTrue());
    driver.AddToObject("", Driver::CreateFalse());
    EXPECT_EQ(driver.GetJSON(), R"({"": false})");
    EXPECT_TRUE(driver.GetValue()->GetObjectValue("")->IsFalse());
}

TEST(JsonParse, ObjectOfThousandsOfMembers)
{
    std::string text = "{";
    for (int i = 0; i < 5000; ++i)
        text += (i == 0 ? "\"k" : ", \"k") + std::to_string(i) + "\": " + std::to_string(i);
    text += "}";
    Driver driver;
    ASSERT_TRUE(driver.Parse(text));
    EXPECT_EQ(driver.GetValue()->GetSize(), 5000u);
    EXPECT_EQ(driver.GetJSON(), text);
}

/// The bracket of an array that was not entered closes the object around it, while its empty key is still pending.
TEST(JsonParse, EmptyKeyPendsAfterItsObjectIsClosed)
{
    Driver driver;
    ASSERT_TRUE(driver.Parse(R"({"a": {"": [[1], 2]}})"));
    EXPECT_EQ(driver.GetJSON(), R"({"a": {}})");
    ASSERT_TRUE(driver.Parse(R"({"a": {"": [[1], {"b": 2}, 3]}, "c": 4})"));
    EXPECT_EQ(driver.GetJSON(), R"({"a": {}, "b": 2})");
}

TEST(JsonNumber, SignBeforeWhatIsNoDigit)
{
    for (const char* text : {"+", "+/", "+:", "+-1"}) {
        EXPECT_THROW(Driver::CreateNumber(text)->GetInteger(), std::invalid_argument) << text;
        EXPECT_THROW(Driver::CreateNumber(text)->GetInteger64(), std::invalid_argument) << text;
    }
}

} // namespace
