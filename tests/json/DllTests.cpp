#include <KelInsInfra/json/Driver.h>
#include <gtest/gtest.h>
#include <sstream>
#include <tests/json/EchoCapture.h>
#include <tests/support/ExpectThrowsText.h>

/// What a program sees that has the import library only.

namespace {

using JSON::Driver;

TEST(JsonDll, ParseReadAndWrite)
{
    Driver driver;
    std::istringstream in(R"({"name":"x","list":[1,2.50,""],"yes":true})");
    ASSERT_TRUE(driver.Parse(in));
    EXPECT_EQ(driver.GetJSON(), R"({"name": "x", "list": [1, 2.50, null], "yes": true})");
    std::string name;
    Driver::GetAttribute(driver.GetValue(), "name", name);
    EXPECT_EQ(name, "x");
    EXPECT_EQ(driver.GetValue()->GetObjectValue("list")->GetArrayValue(1)->GetFloat(), 2.5F);
    EXPECT_EQ(driver.GetValue()->GetObjectValues()[2]->first, "yes");
    EXPECT_EQ(driver.GetValue()->GetSize(), 3U);
    std::ostringstream out;
    driver.GetValue()->WriteIndented(out, 0);
    EXPECT_EQ(out.str(), "{\n    \"name\": \"x\",\n    \"list\": [\n        1,\n        2.50,\n        null\n    ],\n"
                         "    \"yes\": true\n}");
    EXPECT_EQ(driver.GetValue()->Clone()->GetJSON(), driver.GetJSON());
}

TEST(JsonDll, BuildByHand)
{
    Driver driver;
    const std::shared_ptr<JSON::Array> array = Driver::CreateArray();
    ASSERT_TRUE(driver.UseValue(array));
    EXPECT_TRUE(driver.Add(Driver::CreateString("\"", false)));
    EXPECT_TRUE(driver.Add(Driver::CreateObject()));
    driver.SetNextObjectKey("k");
    EXPECT_TRUE(driver.Add(Driver::CreateBoolean(false)));
    EXPECT_EQ(array->GetJSON(), R"(["\"", {"k": false}])");
    EXPECT_EQ(array->GetSize(), 2U);
    EXPECT_EQ(JSON::Value::EscapeString("\t"), R"("\t")");
    EXPECT_EQ(Driver::RemoveJSONEscaping(R"(\t)"), "\t");
}

TEST(JsonDll, EchoAndExceptionsCrossTheBorder)
{
    Driver driver;
    const EchoCapture echo;
    EXPECT_TRUE(driver.Parse("[\r\n]"));
    EXPECT_EQ(echo.Text(), "\r");
    ExpectThrowsText<std::runtime_error>([&] { driver.GetValue()->GetObjectValues(); },
                                         "JSON::Value::GetObjectValues - Value is not an Object. Actual type: Array");
    ExpectThrowsText<std::out_of_range>([] { Driver::CreateNumber("99999999999")->GetInteger(); },
                                        "stoi argument out of range");
}

} // namespace
