#include <KelInsInfra/json/Driver.h>
#include <atomic>
#include <cstdlib>
#include <functional>
#include <gtest/gtest.h>
#include <iostream>
#include <new>
#include <sstream>
#include <string>

/// A program of its own: it replaces the heap, so that the Nth allocation fails.

namespace {

std::atomic<long> allocationsLeft{-1}; ///< negative: no limit
std::atomic<long> blocks{0};

void* Allocate(std::size_t size)
{
    if (allocationsLeft >= 0 && allocationsLeft-- == 0) {
        allocationsLeft = 0; // and all after it
        throw std::bad_alloc();
    }
    void* const memory = std::malloc(size == 0 ? 1 : size);
    if (memory == nullptr)
        throw std::bad_alloc();
    ++blocks;
    return memory;
}

void Free(void* memory)
{
    if (memory != nullptr)
        --blocks;
    std::free(memory);
}

} // namespace

void* operator new(std::size_t size)
{
    return Allocate(size);
}

void* operator new[](std::size_t size)
{
    return Allocate(size);
}

void operator delete(void* memory) noexcept
{
    Free(memory);
}

void operator delete[](void* memory) noexcept
{
    Free(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    Free(memory);
}

void operator delete[](void* memory, std::size_t) noexcept
{
    Free(memory);
}

namespace {

using JSON::Driver;

/// Runs work with 0, 1, 2, ... allocations until it succeeds. After each failure the caller's check is made.
void WithEveryFailure(const std::function<void()>& work, const std::function<void()>& check)
{
    for (long count = 0;; ++count) {
        ASSERT_LT(count, 100000);
        allocationsLeft = count;
        bool succeeded = false;
        try {
            work();
            succeeded = true;
        } catch (const std::bad_alloc&) {
        }
        allocationsLeft = -1;
        check();
        if (succeeded)
            return;
    }
}

std::string Text()
{
    std::string text =
        R"({"a key that is longer than small ones":["text with \n escapes that needs memory","",1],"a":1,"a":[{}],)";
    for (int i = 0; i < 40; ++i)
        text += "\"k" + std::to_string(i) + R"(":[[[[{"x":"y"}]]]],)";
    return text + R"("k1":2,"long":")" + std::string(20000, 'x') + R"(","number":)" + std::string(20000, '7') + "}";
}

TEST(JsonMemory, ParseFailsCleanlyAtEveryAllocation)
{
    const std::string text = Text();
    Driver plain;
    ASSERT_TRUE(plain.Parse(text));
    const std::string expected = plain.GetJSON();
    Driver driver;
    const long before = blocks;
    bool parsed = false;
    WithEveryFailure([&] { parsed = driver.Parse(text); },
                     [&] {
                         if (parsed) {
                             EXPECT_EQ(driver.GetJSON(), expected);
                             return;
                         }
                         EXPECT_EQ(driver.GetValue(), nullptr);
                         EXPECT_FALSE(driver.AddToObject("k", Driver::CreateNull()));
                         ASSERT_TRUE(driver.Parse("[1]"));
                         EXPECT_EQ(driver.GetJSON(), "[1]");
                         driver.ResetParser();
                     });
    EXPECT_TRUE(parsed);
    driver.ResetParser();
    EXPECT_LE(blocks, before + 2); // the driver's own memory for its stack and key
}

/// From 512 elements on an array has memory of its own, and beyond 1024 it grows.
TEST(JsonMemory, ParseOfALongArrayFailsCleanlyAtEveryAllocation)
{
    for (const int count : {511, 512, 1024, 1025, 3000}) {
        std::string text = "[0";
        for (int i = 1; i < count; ++i)
            text += ", " + std::to_string(i);
        text += "]";
        Driver().Parse(text); // what a process keeps from its first parse on is no loss
        const long before = blocks;
        {
            Driver driver;
            bool parsed = false;
            WithEveryFailure([&] { parsed = driver.Parse(text); },
                             [&] { EXPECT_EQ(driver.GetValue() != nullptr, parsed); });
            EXPECT_TRUE(driver.GetJSON() == text) << count;
        }
        EXPECT_EQ(blocks, before) << count;
    }
}

TEST(JsonMemory, FailingParseLeavesNothingOfTheFormerDocument)
{
    const std::string text = "[2]";
    Driver driver;
    bool parsed = false;
    ASSERT_TRUE(driver.Parse("[[1]]"));
    WithEveryFailure([&] { parsed = driver.Parse(text); },
                     [&] {
                         if (parsed)
                             return;
                         EXPECT_EQ(driver.GetValue(), nullptr);
                         ASSERT_TRUE(driver.Parse("[[1]]"));
                     });
    EXPECT_EQ(driver.GetJSON(), "[2]");
}

TEST(JsonMemory, NothingIsLostByFailingParses)
{
    const std::string text = Text();
    { // what a process keeps from its first parse on
        Driver driver;
        ASSERT_TRUE(driver.Parse(text));
    }
    for (long count = 0; count < 400; ++count) {
        const long before = blocks;
        {
            Driver driver;
            allocationsLeft = count;
            try {
                driver.Parse(text);
            } catch (const std::bad_alloc&) {
            }
            allocationsLeft = -1;
        }
        ASSERT_EQ(blocks, before) << "with " << count << " allocations";
    }
}

TEST(JsonMemory, SyntaxErrorFailsCleanlyAtEveryAllocation)
{
    const std::string text = Text().append("}");
    Driver driver;
    bool parsed = true;
    WithEveryFailure([&] { parsed = driver.Parse(text); }, [&] { EXPECT_EQ(driver.GetValue(), nullptr); });
    EXPECT_FALSE(parsed);
}

TEST(JsonMemory, WritingAndCloning)
{
    Driver driver;
    ASSERT_TRUE(driver.Parse(Text()));
    const std::string expected = driver.GetJSON();
    std::string text;
    std::shared_ptr<JSON::Value> copy;
    const long before = blocks;
    WithEveryFailure([&] { text = driver.GetJSON(); }, [&] { EXPECT_TRUE(text.empty() || text == expected); });
    WithEveryFailure([&] { copy = driver.GetValue()->Clone(); },
                     [&] { EXPECT_TRUE(!copy || copy->GetJSON() == expected); });
    EXPECT_EQ(driver.GetJSON(), expected);
    copy.reset();
    std::string().swap(text);
    EXPECT_EQ(blocks, before);
}

TEST(JsonMemory, FirstQuestionForThePositions)
{
    Driver driver;
    ASSERT_TRUE(driver.Parse(Text()));
    const std::vector<JSON::POSITION>* positions = nullptr;
    WithEveryFailure([&] { positions = &driver.GetValue()->GetObjectValues(); },
                     [&] { EXPECT_EQ(driver.GetValue()->GetSize(), 44U); });
    EXPECT_EQ(positions->size(), 44U);
    EXPECT_EQ(positions, &driver.GetValue()->GetObjectValues());
}

TEST(JsonMemory, FirstQuestionForTheElements)
{
    Driver driver;
    ASSERT_TRUE(driver.Parse("[1,[2],3]"));
    const std::vector<std::shared_ptr<JSON::Value>>* elements = nullptr;
    int failures = -1;
    WithEveryFailure([&] { elements = &driver.GetValue()->GetArrayValues(); },
                     [&] {
                         EXPECT_EQ(driver.GetJSON(), "[1, [2], 3]");
                         ++failures;
                     });
    EXPECT_EQ(failures, 2); // the vector is made now: itself and its block
    EXPECT_EQ(elements->size(), 3U);
    EXPECT_EQ(elements, &driver.GetValue()->GetArrayValues());
}

TEST(JsonMemory, AddingToAParsedArrayEitherWorksOrChangesNothing)
{
    for (const bool asked : {false, true}) {
        for (const std::string text : {"[]", "[1]", "[1,2,3,4]"}) {
            Driver driver;
            ASSERT_TRUE(driver.Parse(text));
            const auto* const elements = asked ? &driver.GetValue()->GetArrayValues() : nullptr;
            ASSERT_TRUE(driver.UseValue(driver.GetValue()));
            const std::string before = driver.GetJSON();
            const auto value = Driver::CreateNull();
            bool added = false;
            WithEveryFailure([&] { added = driver.AddToArray(value); },
                             [&] { EXPECT_TRUE(added || driver.GetJSON() == before); });
            EXPECT_EQ(driver.GetValue()->GetArrayValues().back(), value);
            EXPECT_TRUE(!asked || elements == &driver.GetValue()->GetArrayValues());
            EXPECT_EQ(driver.GetJSON(), text == "[]" ? "[null]" : before.substr(0, before.size() - 1) + ", null]");
        }
    }
}

TEST(JsonMemory, AddingToAParsedObjectEitherWorksOrChangesNothing)
{
    for (const std::string text : {R"({"a":1})", R"({"a":1,"b":2})"}) {
        Driver driver;
        ASSERT_TRUE(driver.Parse(text));
        const std::string before = driver.GetJSON();
        const auto value = Driver::CreateNull();
        bool added = false;
        WithEveryFailure([&] { added = driver.AddToObject("a key that needs memory", value); },
                         [&] { EXPECT_TRUE(added || driver.GetJSON() == before); });
        EXPECT_EQ(driver.GetValue()->GetObjectValues().back()->second, value);
    }
}

TEST(JsonMemory, AddingEitherWorksOrChangesNothing)
{
    for (const bool repeated : {false, true}) {
        Driver driver;
        driver.NewObject();
        for (int i = 0; i < 40; ++i) // beyond 32 an object gets an index
            driver.AddToObject("a key that needs memory " + std::to_string(i), Driver::CreateNull());
        const std::string before = driver.GetJSON();
        const std::string key = "a key that needs memory " + std::to_string(repeated ? 0 : 99);
        const auto value = Driver::CreateArray();
        bool added = false;
        WithEveryFailure([&] { added = driver.AddToObject(key, value); },
                         [&] { EXPECT_TRUE(added || driver.GetJSON() == before); });
        EXPECT_EQ(driver.GetValue()->GetObjectValues().back()->first, key);
        EXPECT_EQ(driver.GetValue()->GetSize(), repeated ? 40U : 41U);
        EXPECT_TRUE(driver.Add(Driver::CreateNull())); // into the array, which was opened
        EXPECT_EQ(value->GetJSON(), "[null]");
    }
}

} // namespace
