#include "tests/support/Growth.h"

#include <KelInsInfra/json/Driver.h>
#include <algorithm>
#include <functional>
#include <gtest/gtest.h>
#include <iostream>
#include <string>
#include <unordered_map>
#include <vector>

/// Four times the work must take about four times as long: kGrowthLimit says how much more may be.

namespace {

using JSON::Driver;

void ExpectLinear(std::size_t size, const std::function<void(std::size_t)>& work)
{
    EXPECT_LT(GrowthFactor([&] { work(size / 4); }, [&] { work(size); }), kGrowthLimit);
}

void ParseAll(const std::string& text)
{
    Driver driver;
    ASSERT_TRUE(driver.Parse(text));
    EXPECT_FALSE(driver.GetJSON().empty());
}

TEST(JsonScaling, OneString)
{
    ExpectLinear(64U << 20U, [](std::size_t size) { ParseAll("[\"" + std::string(size, 'x') + "\"]"); });
}

TEST(JsonScaling, OneStringOfEscapes)
{
    ExpectLinear(8U << 20U, [](std::size_t size) {
        std::string text(size, '\\');
        ParseAll("[\"" + text + "\"]");
    });
}

TEST(JsonScaling, OneNumber)
{
    ExpectLinear(8U << 20U, [](std::size_t size) { ParseAll("[" + std::string(size, '7') + "]"); });
}

TEST(JsonScaling, WhiteSpace)
{
    ExpectLinear(16U << 20U, [](std::size_t size) { ParseAll("[" + std::string(size, '\n') + "]"); });
}

TEST(JsonScaling, Elements)
{
    ExpectLinear(400000, [](std::size_t count) {
        std::string text = "[0";
        for (std::size_t i = 0; i < count; ++i)
            text += ",1";
        ParseAll(text + "]");
    });
}

std::string Object(const std::vector<std::string>& keys)
{
    std::string text = "{";
    for (const std::string& key : keys)
        text.append(text.size() > 1 ? ",\"" : "\"").append(key).append("\":1");
    return text + "}";
}

std::vector<std::string> Keys(std::size_t count, const std::string& prefix)
{
    std::vector<std::string> keys;
    for (std::size_t i = 0; i < count; ++i)
        keys.push_back(prefix + std::to_string(i));
    return keys;
}

TEST(JsonScaling, Members)
{
    ExpectLinear(100000, [](std::size_t count) { ParseAll(Object(Keys(count, "k"))); });
}

/// So many that neither amount fits into the processor's nearer caches.
TEST(JsonScaling, OneKeyRepeatedAmongOthers)
{
    ExpectLinear(400000, [](std::size_t count) {
        std::vector<std::string> keys = Keys(count, "k");
        keys.insert(keys.end(), count, "repeated");
        for (std::size_t i = 0; i < count; i += 2)
            std::swap(keys[i], keys[count + i]);
        ParseAll(Object(keys));
    });
}

TEST(JsonScaling, OneKeyRepeatedByHandAfterOthers)
{
    ExpectLinear(400000, [](std::size_t count) {
        Driver driver;
        driver.NewObject();
        for (const std::string& key : Keys(count, "k"))
            driver.AddToObject(key, Driver::CreateNull());
        for (std::size_t i = 0; i < count; ++i)
            driver.AddToObject("repeated", Driver::CreateNull());
        EXPECT_EQ(driver.GetValue()->GetSize(), count + 1);
    });
}

TEST(JsonScaling, AllKeysRepeatedInTheirOrder)
{
    ExpectLinear(100000, [](std::size_t count) {
        std::vector<std::string> keys = Keys(count, "k");
        keys.insert(keys.end(), keys.begin(), keys.begin() + static_cast<std::ptrdiff_t>(count));
        ParseAll(Object(keys));
    });
}

TEST(JsonScaling, FewKeysRepeatedOften)
{
    ExpectLinear(400000, [](std::size_t count) {
        std::vector<std::string> keys;
        for (std::size_t i = 0; i < count; ++i)
            keys.push_back(i % 2 == 0 ? "a" : "b");
        ParseAll(Object(keys));
    });
}

TEST(JsonScaling, CloneWhoseKeysBecomeEqual)
{
    ExpectLinear(50000, [](std::size_t count) {
        std::vector<std::string> keys = Keys(count, "\\t");
        const std::vector<std::string> others = Keys(count, "\\\\t");
        keys.insert(keys.end(), others.begin(), others.end());
        Driver driver;
        ASSERT_TRUE(driver.Parse(Object(keys)));
        EXPECT_EQ(driver.GetValue()->GetSize(), 2 * count);
        EXPECT_EQ(driver.GetValue()->Clone()->GetSize(), count);
    });
}

/// Keys that fall into the same buckets of the standard library's hash map, as far as it grows for so many of them.
std::vector<std::string> CollidingKeys(std::size_t count)
{
    std::unordered_map<std::string, int> map;
    map.reserve(count);
    const std::size_t few = 64;
    std::vector<std::string> keys;
    for (std::size_t i = 0; keys.size() < count; ++i) {
        std::string key = std::to_string(i);
        if (map.bucket(key) % (map.bucket_count() / few) == 0)
            keys.push_back(std::move(key));
    }
    return keys;
}

TEST(JsonScaling, KeysThatCollideInTheStandardHash)
{
    const std::vector<std::string> keys = CollidingKeys(32768);
    ExpectLinear(keys.size(), [&](std::size_t count) {
        ParseAll(Object(std::vector<std::string>(keys.begin(), keys.begin() + static_cast<std::ptrdiff_t>(count))));
    });
}

TEST(JsonScaling, StrayBytes)
{
    const auto former = std::cout.rdbuf(nullptr);
    ExpectLinear(4U << 20U, [](std::size_t size) { ParseAll("[" + std::string(size, '#') + "]"); });
    std::cout.rdbuf(former);
    std::cout.clear();
}

} // namespace
