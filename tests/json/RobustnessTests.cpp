#include <KelInsInfra/json/Driver.h>
#include <fuzz/JsonModel.h>
#include <gtest/gtest.h>
#include <iostream>
#include <locale>
#include <sstream>
#include <streambuf>
#include <string>
#include <string_view>
#include <tests/json/EchoCapture.h>
#include <tests/json/SmallStack.h>
#include <tests/support/ExpectThrowsText.h>
#include <tests/support/OnThreads.h>
#include <thread>
#include <utility>

namespace {

using JSON::Driver;
using Pointer = std::shared_ptr<JSON::Value>;

std::string Repeated(const std::string& text, std::size_t times)
{
    std::string result;
    result.reserve(text.size() * times);
    for (std::size_t i = 0; i < times; ++i)
        result += text;
    return result;
}

struct Nesting
{
    const char* label;
    std::string open;
    std::string close;
    std::size_t times;

    friend void PrintTo(const Nesting& n, std::ostream* out) { *out << n.label; }
};

class JsonDepth : public testing::TestWithParam<Nesting>
{
protected:
    static std::string Text()
    {
        return Repeated(GetParam().open, GetParam().times) + "[]" + Repeated(GetParam().close, GetParam().times);
    }
};

TEST_P(JsonDepth, ParseWriteAndDestroy)
{
    const std::string text = Text();
    OnSmallStack([&] {
        Driver driver;
        ASSERT_TRUE(driver.Parse(text));
        EXPECT_TRUE(driver.GetJSON() == text); // not printed when they differ
    });
}

TEST_P(JsonDepth, ResetInTheMiddle)
{
    const std::string text = Repeated(GetParam().open, GetParam().times);
    OnSmallStack([&] {
        Driver driver;
        EXPECT_FALSE(driver.Parse(text));
        EXPECT_EQ(driver.GetValue(), nullptr);
    });
}

TEST_P(JsonDepth, Clone)
{
    const std::string text = Text();
    OnSmallStack([&] {
        Driver driver;
        ASSERT_TRUE(driver.Parse(text));
        const Pointer copy = driver.GetValue()->Clone();
        driver.ResetParser();
        EXPECT_TRUE(copy->GetJSON() == text);
    });
}

TEST_P(JsonDepth, WriteIndented)
{
    const std::string text = Text();
    OnSmallStack([&] {
        Driver driver;
        ASSERT_TRUE(driver.Parse(text));
        std::ostringstream out;
        driver.GetValue()->WriteIndented(
            out,
            -3 * static_cast<std::int32_t>(GetParam().times)); // so deep that nothing is indented
        std::string lines = out.str();
        std::erase(lines, '\n');
        std::string expected = text;
        for (std::size_t i = expected.find(", "); i != std::string::npos; i = expected.find(", ", i + 1))
            expected[i + 1] = '\n'; // the compact form's blank
        std::erase(expected, '\n');
        EXPECT_TRUE(lines == expected);
    });
}

TEST_P(JsonDepth, BuiltByHand)
{
    OnSmallStack([&] {
        Driver driver;
        for (std::size_t i = 0; i < GetParam().times; ++i) {
            driver.SetNextObjectKey("k");
            ASSERT_TRUE(
                driver.Add(GetParam().open == "[" ? Pointer(Driver::CreateArray()) : Pointer(Driver::CreateObject())));
        }
        for (std::size_t i = 0; i < GetParam().times; ++i)
            driver.CloseCurrentValue();
        EXPECT_NE(driver.GetValue(), nullptr);
    });
}

INSTANTIATE_TEST_SUITE_P(Json, JsonDepth,
                         testing::Values(Nesting{"Arrays", "[", "]", 1000000},
                                         Nesting{"Objects", R"({"k": )", "}", 1000000},
                                         Nesting{"Both", R"([{"a": 1, "k": )", "}]", 50000},
                                         Nesting{"ChildNotLast", "[[], ", ", 1]", 100000}),
                         [](const auto& row) { return std::string(row.param.label); });

TEST(JsonRelease, SharedPartsStayWhole)
{
    Driver driver;
    ASSERT_TRUE(driver.Parse(R"([[[1],{"k":[2]}],[3]])"));
    const Pointer kept = driver.GetValue()->GetArrayValue(0)->GetArrayValue(1);
    driver.ResetParser();
    EXPECT_EQ(kept->GetJSON(), R"({"k": [2]})");
}

TEST(JsonRelease, PartInSeveralPlaces)
{
    const Pointer shared = Driver::CreateArray();
    Driver driver;
    driver.NewArray();
    for (int i = 0; i < 3; ++i) {
        driver.AddToArray(shared);
        driver.CloseCurrentValue();
    }
    ASSERT_TRUE(driver.UseValue(driver.GetValue()));
    const std::weak_ptr<JSON::Value> watched = shared;
    driver.ResetParser();
    EXPECT_EQ(watched.use_count(), 1);
}

TEST(JsonRelease, OnSeveralThreads)
{
    std::string text = "[";
    for (int i = 0; i < 2000; ++i)
        text += R"({"name":"a text that is longer than a small one","list":[1,2,[3]]},)";
    text += "0]";
    Driver driver;
    ASSERT_TRUE(driver.Parse(text));
    std::vector<Pointer> parts = driver.GetValue()->GetArrayValues();
    std::vector<Pointer> others = parts;
    driver.ResetParser();
    const auto release = [](std::vector<Pointer>& values) {
        std::size_t size = 0;
        while (!values.empty()) {
            size += values.back()->GetJSON().size();
            values.pop_back();
        }
        EXPECT_GT(size, 1000U);
    };
    std::thread first([&] { release(parts); });
    std::thread second([&] { release(others); });
    first.join();
    second.join();
}

TEST(JsonPositions, FirstAskedForByManyThreads)
{
    const std::string text = R"({"a": 1, "b": {"c": 2}, "d": 3})";
    Driver driver;
    ASSERT_TRUE(driver.Parse(text));
    const Pointer root = driver.GetValue();
    std::vector<const std::vector<JSON::POSITION>*> seen(16);
    OnThreads(16, [&](int i) {
        if (i % 2 == 0) { // the others ask at once
            EXPECT_EQ(root->GetJSON(), text);
            EXPECT_EQ(root->Clone()->GetJSON(), text);
        }
        const auto& positions = root->GetObjectValues();
        EXPECT_EQ(positions[1]->first, "b");
        EXPECT_EQ(root->GetObjectValue("b")->GetObjectValue("c")->GetInteger(), 2);
        seen[static_cast<std::size_t>(i)] = &positions;
    });
    for (const auto* positions : seen)
        EXPECT_EQ(positions, seen.front());
    EXPECT_EQ(seen.front()->size(), 3U);
}

TEST(JsonElements, FirstAskedForByManyThreads)
{
    for (const std::string text : {"[]", "[1, [2], 3]"}) {
        Driver driver;
        ASSERT_TRUE(driver.Parse(text));
        const Pointer root = driver.GetValue();
        std::vector<const std::vector<Pointer>*> seen(16);
        OnThreads(16, [&](int i) {
            if (i % 2 == 0) { // the others ask at once
                EXPECT_EQ(root->GetJSON(), text);
                EXPECT_EQ(root->Clone()->GetJSON(), text);
            }
            const auto& elements = root->GetArrayValues();
            EXPECT_EQ(elements.size(), root->GetSize());
            for (std::size_t place = 0; place < elements.size(); ++place)
                EXPECT_EQ(elements[place], root->GetArrayValue(static_cast<std::int32_t>(place)));
            seen[static_cast<std::size_t>(i)] = &elements;
        });
        for (const auto* elements : seen)
            EXPECT_EQ(elements, seen.front());
    }
}

/// Who holds the vector sees what is added to the array, and what was there stays the same values.
TEST(JsonElements, StayInTheirVectorWhileOthersAreAdded)
{
    for (const std::string text : {"[]", "[1]", "[1,[2],{\"a\":3}]"}) {
        Driver driver;
        ASSERT_TRUE(driver.Parse(text));
        const Pointer root = driver.GetValue();
        const std::vector<Pointer> before = root->GetArrayValues();
        const std::vector<Pointer>& elements = root->GetArrayValues();
        ASSERT_TRUE(driver.UseValue(root));
        for (int i = 0; i < 10; ++i)
            ASSERT_TRUE(driver.AddToArray(Driver::CreateNumber(std::to_string(i))));
        EXPECT_EQ(&elements, &root->GetArrayValues());
        ASSERT_EQ(elements.size(), before.size() + 10);
        EXPECT_EQ(root->GetSize(), elements.size());
        EXPECT_TRUE(std::equal(before.begin(), before.end(), elements.begin()));
        EXPECT_EQ(root->GetArrayValue(static_cast<std::int32_t>(before.size()) + 9)->GetInteger(), 9);
        EXPECT_EQ(root->Clone()->GetJSON(), root->GetJSON());
        EXPECT_TRUE(root->GetJSON().ends_with("7, 8, 9]"));
    }
}

TEST(JsonElements, KeptLongerThanTheirArray)
{
    Driver driver;
    ASSERT_TRUE(driver.Parse(R"([[1,["a text that is longer than a small one"]],2])"));
    const std::vector<Pointer> kept = driver.GetValue()->GetArrayValue(0)->GetArrayValues();
    driver.ResetParser();
    EXPECT_EQ(kept[0].use_count(), 1);
    EXPECT_EQ(kept[1]->GetJSON(), R"(["a text that is longer than a small one"])");
}

/// Who asked an array for its elements has given them a second owner, which must not hinder the release.
TEST(JsonRelease, DeepArraysThatWereAskedForTheirElements)
{
    OnSmallStack([] {
        for (const std::size_t depth : {10U, 63U, 64U, 65U, 100000U}) {
            Driver driver;
            ASSERT_TRUE(driver.Parse(Repeated("[1,[],", depth) + "2" + Repeated("]", depth)));
            const std::weak_ptr<JSON::Value> watched = driver.GetValue();
            Pointer part = driver.GetValue();
            while (part->IsArray()) {
                EXPECT_TRUE(part->GetArrayValues()[1]->GetArrayValues().empty());
                part = part->GetArrayValues().back();
            }
            const std::weak_ptr<JSON::Value> innermost = std::exchange(part, nullptr);
            driver.ResetParser();
            EXPECT_TRUE(watched.expired());
            EXPECT_TRUE(innermost.expired());
        }
    });
}

/// One thread releases the document, the other a container out of its middle.
TEST(JsonRelease, InnerContainersOnAnotherThread)
{
    for (int i = 0; i < 50; ++i) {
        Driver driver;
        ASSERT_TRUE(driver.Parse(R"({"a":[[1,{"b":[2,{"c":"a text that is longer than a small one"}]}],3]})"));
        Pointer inner = driver.GetValue()->GetObjectValue("a")->GetArrayValue(0);
        std::thread other([&inner] { inner.reset(); });
        driver.ResetParser();
        other.join();
    }
}

/// What a parse has destroyed by recursion, as its levels are few, may have got many more by hand.
TEST(JsonRelease, DeepPartsAddedToAParsedDocument)
{
    OnSmallStack([] {
        Driver driver;
        ASSERT_TRUE(driver.Parse(R"({"a":[[[]]],"b":{"c":{}},"d":[[1,2]],"e":[[3]]})"));
        const Pointer root = driver.GetValue();
        ASSERT_EQ(root->GetObjectValue("e")->GetArrayValue(0)->GetArrayValues().size(), 1U);
        for (const Pointer& part :
             {root->GetObjectValue("a")->GetArrayValue(0)->GetArrayValue(0),
              root->GetObjectValue("b")->GetObjectValue("c"), root->GetObjectValue("d")->GetArrayValue(0),
              root->GetObjectValue("e")->GetArrayValue(0)}) {
            ASSERT_TRUE(driver.UseValue(part));
            for (int i = 0; i < 50000; ++i) {
                driver.SetNextObjectKey("k");
                ASSERT_TRUE(driver.Add(i % 2 == 0 ? Pointer(Driver::CreateArray()) : Driver::CreateObject()));
            }
        }
        driver.ResetParser();
    });
}

TEST(JsonRelease, ParsedPartsInsideEachOther)
{
    OnSmallStack([] {
        Driver driver;
        Pointer whole = Driver::CreateArray();
        for (int i = 0; i < 2000; ++i) {
            ASSERT_TRUE(driver.Parse("[[[[[[[[[[]]]]]]]]]]"));
            Pointer innermost = driver.GetValue();
            while (innermost->GetSize() > 0)
                innermost = innermost->GetArrayValue(0);
            const Pointer outermost = driver.GetValue();
            ASSERT_TRUE(driver.UseValue(innermost));
            ASSERT_TRUE(driver.AddToArray(whole));
            whole = outermost;
        }
        driver.ResetParser();
        whole.reset();
    });
}

TEST(JsonLongArrays, OfEveryKindOfElement)
{
    for (const std::size_t count : {63U, 64U, 65U, 1023U, 1024U, 1025U, 2100U, 5000U}) {
        std::string text = "[0";
        for (std::size_t i = 1; i < count; ++i)
            text += i % 5 == 0   ? ", {\"k\": [" + std::to_string(i) + ", {}]}"
                    : i % 7 == 0 ? ", [[" + std::to_string(i) + "]]"
                                 : ", " + std::to_string(i);
        text += "]";
        for (const std::string& whole : {text, "{\"a\": " + text + ", \"b\": [" + text + ", 1, " + text + "]}"}) {
            Driver driver;
            ASSERT_TRUE(driver.Parse(whole));
            EXPECT_TRUE(driver.GetJSON() == whole) << count;
            EXPECT_TRUE(driver.GetValue()->Clone()->GetJSON() == whole) << count;
        }
    }
}

const char* const kExample =
    "{\"a\": [1, -2.50e+3, \"x\\ty\\u00e9\\\\\"], \"\": {\"k\": true},\r\n \"b\": false, # \"a\": null}";

/// The text may lie in the document that the parse releases first.
TEST(JsonParse, TextIsAKeyOfTheDriversOwnDocument)
{
    JSON::Driver driver;
    driver.NewObject();
    const std::string key = "[1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16]";
    ASSERT_TRUE(driver.AddToObject(key, JSON::Driver::CreateNull()));
    ASSERT_TRUE(driver.Parse(driver.GetValue()->GetObjectValues()[0]->first));
    EXPECT_EQ(driver.GetJSON(), key);
}

TEST(JsonCutOff, AtEveryByte)
{
    const std::string text = kExample;
    for (std::size_t size = 0; size <= text.size(); ++size) {
        const std::string part = text.substr(0, size);
        const JsonModel::Outcome expected = JsonModel::Reader(part).Read();
        EXPECT_EQ(expected.accepted, size == text.size());
        Driver driver;
        const EchoCapture echo;
        EXPECT_EQ(driver.Parse(part), expected.accepted) << part;
        EXPECT_EQ(echo.Text(), expected.echo) << part;
    }
}

/// Gives its text in pieces of the given size, then breaks, or ends.
class BreakingBuffer : public std::streambuf
{
public:
    enum class End
    {
        Breaks,
        Ends
    };

    BreakingBuffer(std::string text, std::size_t piece, End end) : text_(std::move(text)), piece_(piece), end_(end) {}

private:
    int_type underflow() override
    {
        if (next_ == text_.size()) {
            if (end_ == End::Breaks)
                throw std::runtime_error("the device is gone");
            return traits_type::eof();
        }
        const std::size_t size = std::min(piece_, text_.size() - next_);
        setg(&text_[next_], &text_[next_], &text_[next_] + size);
        next_ += size;
        return traits_type::to_int_type(*gptr());
    }

    std::string text_;
    std::size_t piece_;
    End end_;
    std::size_t next_ = 0;
};

TEST(JsonStream, ThatBreaksInTheMiddle)
{
    for (const std::size_t size : {0U, 1U, 10U, 16000U, 16384U, 40000U}) {
        Driver driver;
        ASSERT_TRUE(driver.Parse("[1]"));
        BreakingBuffer buffer("[\"" + std::string(size, 'x'), 1000, BreakingBuffer::End::Breaks);
        std::istream in(&buffer);
        ExpectThrowsText<std::runtime_error>([&] { driver.Parse(in); }, "input in flex scanner failed");
        EXPECT_EQ(driver.GetValue(), nullptr);
        EXPECT_FALSE(driver.AddToArray(Driver::CreateNull()));
        EXPECT_TRUE(driver.Parse("[2]"));
        EXPECT_EQ(driver.GetJSON(), "[2]");
    }
}

/// Memory that runs out is no broken stream.
TEST(JsonStream, ThatRunsOutOfMemory)
{
    class Hungry : public std::streambuf
    {
        int_type underflow() override { throw std::bad_alloc(); }
    };

    Hungry buffer;
    std::istream in(&buffer);
    Driver driver;
    ASSERT_TRUE(driver.Parse("[1]"));
    EXPECT_THROW(driver.Parse(in), std::bad_alloc);
    EXPECT_EQ(driver.GetValue(), nullptr);
    EXPECT_TRUE(driver.Parse("[2]"));
}

/// The state of the stream itself is not looked at: only its buffer is read.
TEST(JsonStream, ThatHasFailedBefore)
{
    std::istringstream in("[1]");
    in.setstate(std::ios_base::failbit);
    Driver driver;
    EXPECT_TRUE(driver.Parse(in));
    EXPECT_EQ(driver.GetJSON(), "[1]");
}

/// Once a read has come back short, it is not tried again.
TEST(JsonStream, ThatGoesOnAfterItsEnd)
{
    class Twice : public std::streambuf
    {
        std::streamsize xsgetn(char* out, std::streamsize) override
        {
            return static_cast<std::streamsize>(std::string_view(reads_++ == 0 ? "[1" : ",2]").copy(out, 3));
        }

        int reads_ = 0;
    };

    Twice buffer;
    std::istream in(&buffer);
    Driver driver;
    EXPECT_FALSE(driver.Parse(in));
}

/// A standard output that fails in each way it can.
class BrokenOutput : public std::streambuf
{
public:
    enum class How
    {
        Refuses,
        Throws,
        RunsOutOfMemory
    };

    explicit BrokenOutput(How how) : how_(how), former_(std::cout.rdbuf(this)) {}

    ~BrokenOutput() override { std::cout.rdbuf(former_); }

    int Attempts() const { return attempts_; }

private:
    int_type overflow(int_type) override
    {
        ++attempts_;
        if (how_ == How::Throws)
            throw std::runtime_error("the console is gone");
        if (how_ == How::RunsOutOfMemory)
            throw std::bad_alloc();
        return traits_type::eof();
    }

    How how_;
    int attempts_ = 0;
    std::streambuf* former_;
};

TEST(JsonEcho, ThatFailsIsNotTriedAgainAndEndsNoParse)
{
    for (const BrokenOutput::How how : {BrokenOutput::How::Refuses, BrokenOutput::How::Throws}) {
        BrokenOutput output(how);
        Driver driver;
        EXPECT_TRUE(driver.Parse("[1,#2,#3]"));
        EXPECT_EQ(driver.GetJSON(), "[1, 2, 3]");
        EXPECT_EQ(output.Attempts(), 1);
    }
}

TEST(JsonEcho, ThatRunsOutOfMemory)
{
    const BrokenOutput output(BrokenOutput::How::RunsOutOfMemory);
    Driver driver;
    EXPECT_THROW(driver.Parse("[1,#2]"), std::bad_alloc);
    EXPECT_EQ(driver.GetValue(), nullptr);
}

TEST(JsonStream, ThatGivesOneByteAtATime)
{
    const std::string text = R"([{"key":"value\n"},12345,true, "another"])";
    for (const std::size_t piece : {1U, 2U, 3U, 7U}) {
        BreakingBuffer buffer(text, piece, BreakingBuffer::End::Ends);
        std::istream in(&buffer);
        Driver driver;
        EXPECT_TRUE(driver.Parse(in));
        EXPECT_EQ(driver.GetJSON(), R"([{"key": "value\n"}, 12345, true, "another"])");
    }
}

/// Not allowed, as the two share the buffer of strings; but nothing else.
TEST(JsonStream, ThatParsesByItself)
{
    class Nested : public std::streambuf
    {
        std::streamsize xsgetn(char* out, std::streamsize) override
        {
            EXPECT_TRUE(inner_.Parse(R"({"inner":["x"]})"));
            return static_cast<std::streamsize>(std::string_view(R"(["outer",1])").copy(out, 20));
        }

        Driver inner_;
    };

    Nested buffer;
    std::istream in(&buffer);
    Driver driver;
    EXPECT_TRUE(driver.Parse(in));
    EXPECT_EQ(driver.GetJSON(), R"(["outer", 1])");
    EXPECT_TRUE(driver.Parse("[2]"));
    EXPECT_EQ(driver.GetJSON(), "[2]");
}

/// The string that flex itself begins, after an echo, must not go on where another parse has stopped.
TEST(JsonStream, ThatParsesByItselfInTheMiddleOfAString)
{
    class Nested : public std::streambuf
    {
        std::streamsize xsgetn(char* out, std::streamsize size) override
        {
            const std::string piece =
                reads_++ == 0 ? "[\"" + std::string(static_cast<std::size_t>(size) - 2, 'x') : "\"]";
            if (reads_ == 2) {
                const EchoCapture echo;
                Driver inner;
                EXPECT_TRUE(inner.Parse("[#\"y\"]"));
                EXPECT_EQ(inner.GetJSON(), R"(["y"])");
            }
            return static_cast<std::streamsize>(piece.copy(out, piece.size()));
        }

        int reads_ = 0;
    };

    Nested buffer;
    std::istream in(&buffer);
    EXPECT_TRUE(Driver().Parse(in)); // whatever the string is now
}

TEST(JsonStream, WithoutABuffer)
{
    std::istream in(nullptr);
    Driver driver;
    EXPECT_FALSE(driver.Parse(in));
    EXPECT_EQ(driver.GetValue(), nullptr);
}

TEST(JsonStream, AtItsEnd)
{
    std::istringstream in("[1]");
    Driver driver;
    EXPECT_TRUE(driver.Parse(in));
    EXPECT_FALSE(driver.Parse(in));
}

TEST(JsonStream, OutputThatFails)
{
    class FullDevice : public std::streambuf
    {
        int_type overflow(int_type) override { return traits_type::eof(); }
    };

    FullDevice full;
    std::ostream out(&full);
    Driver driver;
    ASSERT_TRUE(driver.Parse("[" + Repeated("1,", 200000) + "1]"));
    driver.GetValue()->Write(out);
    EXPECT_TRUE(out.fail());
    out.clear();
    driver.GetValue()->WriteIndented(out, 100000000); // 400 MB of blanks a line, were they written
    EXPECT_TRUE(out.fail());
}

/// Everything that looks at refills of the scanner's buffer: each kind of token at each place around its size.
TEST(JsonRefill, TokensAtEveryPlaceAroundTheBuffersEnd)
{
    const std::string tokens =
        R"("plain", "\u00e9\\\"\n", -12.5e+3, true, false, null, {"k": [1]}, "", 1.x, "\q\u12", 7e)";
    for (std::size_t place = 16384 - tokens.size() - 4; place < 16384 + 4; ++place) {
        const std::string text = "[" + std::string(place, ' ') + tokens + "]";
        const JsonModel::Outcome expected = JsonModel::Reader(text).Read();
        ASSERT_TRUE(expected.accepted);
        Driver driver;
        const EchoCapture echo;
        EXPECT_TRUE(driver.Parse(text)) << place;
        EXPECT_EQ(driver.GetJSON(), JsonModel::Compact(*expected.root)) << place;
        EXPECT_EQ(echo.Text(), expected.echo) << place;
    }
}

TEST(JsonRefill, StringsAndNumbersOfEverySizeAroundTheBuffers)
{
    for (std::size_t size = 16370; size < 16400; ++size) {
        const std::string digits(size, '7');
        const std::string letters(size, 'x');
        Driver driver;
        ASSERT_TRUE(driver.Parse("[" + digits + ",\"" + letters + "\",{\"" + letters + "\":1}]"));
        EXPECT_EQ(driver.GetValue()->GetArrayValue(0)->GetString(), digits);
        EXPECT_EQ(driver.GetValue()->GetArrayValue(1)->GetString(), letters);
        EXPECT_EQ(driver.GetValue()->GetArrayValue(2)->GetObjectValues()[0]->first, letters);
    }
}

TEST(JsonRefill, NumberThatIsNoneAfterAll)
{
    const std::string digits(50000, '7');
    Driver driver;
    const EchoCapture echo;
    ASSERT_TRUE(driver.Parse("[" + digits + "." + "]"));
    EXPECT_EQ(driver.GetJSON(), "[" + digits + "]");
    EXPECT_EQ(echo.Text(), ".");
}

/// Gives an array's beginning, then digits without end.
class DigitsWithoutEnd : public std::streambuf
{
    std::streamsize xsgetn(char* out, std::streamsize size) override
    {
        std::fill_n(out, size, '7');
        if (!std::exchange(begun_, true))
            *out = '[';
        return size;
    }

    bool begun_ = false;
};

/// Flex counts its buffer's bytes with an int: before that overflows, the parse ends.
TEST(JsonRefill, NumberThatDoesNotEnd)
{
    DigitsWithoutEnd buffer;
    std::istream in(&buffer);
    Driver driver;
    ExpectThrowsText<std::runtime_error>([&] { driver.Parse(in); }, "fatal error - scanner input buffer overflow");
    EXPECT_EQ(driver.GetValue(), nullptr);
    EXPECT_TRUE(driver.Parse("[1]"));
}

/// An item keeps the size of a long text in another place than that of a short one.
TEST(JsonLongTexts, OfEverySizeAroundTheLimit)
{
    for (std::size_t size = 65530; size < 65545; ++size) {
        const std::string text(size, 'x');
        const std::string escaped = "\\n" + text.substr(2);
        EXPECT_EQ(Driver::CreateString(text, false)->GetString(), text);
        EXPECT_EQ(Driver::CreateString(text, false)->Clone()->GetString(), text);
        EXPECT_EQ(Driver::CreateNumber(text)->GetString(), text);
        Driver driver;
        ASSERT_TRUE(driver.Parse("[\"" + escaped + "\",\"" + text + "\"]"));
        EXPECT_EQ(driver.GetValue()->GetArrayValue(0)->GetString(), "\n" + text.substr(2));
        EXPECT_EQ(driver.GetValue()->GetArrayValue(1)->GetString(), text);
    }
}

/// A locale with other digits' grouping and decimal point than the classic one.
class OtherPunctuation : public std::numpunct<char>
{
    char do_decimal_point() const override { return ','; }

    char do_thousands_sep() const override { return '.'; }

    std::string do_grouping() const override { return "\1"; }
};

TEST(JsonLocale, OfTheHostDoesNotMatter)
{
    const std::locale former = std::locale::global(std::locale(std::locale::classic(), new OtherPunctuation));
    std::istringstream in(R"({"n":1234567.5,"i":1234567})");
    Driver driver;
    EXPECT_TRUE(driver.Parse(in));
    std::ostringstream out;
    driver.GetValue()->Write(out);
    driver.GetValue()->WriteIndented(out, 0);
    EXPECT_EQ(out.str(), "{\"n\": 1234567.5, \"i\": 1234567}{\n    \"n\": 1234567.5,\n    \"i\": 1234567\n}");
    EXPECT_EQ(driver.GetValue()->GetObjectValue("i")->GetInteger(), 1234567);
    EXPECT_EQ(driver.GetValue()->GetObjectValue("n")->GetFloat(), 1234567.5F);
    std::locale::global(former);
}

} // namespace
