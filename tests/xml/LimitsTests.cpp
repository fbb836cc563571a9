// Depth, size and memory: what must neither crash, nor hang, nor leak.

#include "SmallStack.h"
#include "tests/support/Growth.h"
#include "tests/support/Heap.h"

#include <KelInsInfra/xml/Comment.h>
#include <KelInsInfra/xml/Exception.h>
#include <KelInsInfra/xml/Outputter.h>
#include <KelInsInfra/xml/Parser.h>
#include <KelInsInfra/xml/Text.h>
#include <algorithm>
#include <functional>
#include <gtest/gtest.h>
#include <limits>
#include <sstream>
#include <streambuf>

namespace {

std::unique_ptr<XML::Document> Parse(const std::string& text)
{
    std::istringstream input(text);
    return XML::Parser(input).Parse();
}

std::string Repeated(const std::string& piece, std::size_t times)
{
    std::string text;
    text.reserve(piece.size() * times);
    for (std::size_t i = 0; i < times; ++i)
        text += piece;
    return text;
}

// --- depth: a million levels on a stack of 256 KiB ---

constexpr std::size_t kLevels = 1'000'000;

std::string DeepText()
{
    return Repeated("<a>", kLevels) + "x" + Repeated("</a>", kLevels);
}

TEST(XmlDepth, ParseAndDestroy)
{
    RunOnSmallStack([] {
        auto document = Parse(DeepText());
        std::weak_ptr<XML::Element> root = document->GetRootElement();
        document.reset();
        EXPECT_TRUE(root.expired());
    });
}

TEST(XmlDepth, DestroyAfterAnError)
{
    RunOnSmallStack([] {
        try {
            Parse(Repeated("<a>", kLevels));
            ADD_FAILURE();
        } catch (const XML::Exception& error) {
            EXPECT_STREQ(error.what(), "Not all opened tags are closed (1000000 remaining) (line 1)\n");
        }
    });
}

TEST(XmlDepth, CloneAndPrint)
{
    RunOnSmallStack([] {
        const auto document = Parse(DeepText());
        const auto copy = std::static_pointer_cast<XML::Element>(document->GetRootElement()->Clone());
        XML::Outputter outputter;
        outputter.SetIndent("");
        const std::string printed = outputter.ToString(*copy, false);
        // a line for each level, and the innermost text in line
        EXPECT_EQ(printed.size(), kLevels * 7 + 1 + 2 * (kLevels - 1));
        EXPECT_EQ(printed, outputter.ToString(*document->GetRootElement(), false));
    });
}

TEST(XmlDepth, RemoveAndReplace)
{
    RunOnSmallStack([] {
        const auto root = Parse("<r>" + DeepText() + "</r>")->GetRootElement();
        auto child = std::static_pointer_cast<XML::Element>(root->GetChildren()[0]->Clone());
        EXPECT_TRUE(root->RemoveChild("a"));
        root->AddChild(child->Clone());
        EXPECT_TRUE(root->RemoveChildren("a"));
        root->AddChild(child->Clone());
        root->RemoveAllContent();
        *child = std::move(*XML::Element::Create("b"));
        EXPECT_TRUE(child->GetContent().empty());
    });
}

// --- growth: four times the work takes about four times the time ---

double GrowthFactor(const std::function<std::function<void()>(std::size_t size)>& prepare, std::size_t size)
{
    return ::GrowthFactor(prepare(size), prepare(size * 4));
}

struct GrowthCase
{
    const char* label;
    std::function<std::string(std::size_t)> text;
    std::size_t size; // of the smaller one

    friend void PrintTo(const GrowthCase& c, std::ostream* out) { *out << c.label; }
};

std::string ManyAttributes(std::size_t count)
{
    std::string text = "<a";
    for (std::size_t i = count; i > 0; --i) // not in the order they are printed in
        text += " n" + std::to_string(i) + "='v'";
    return text + "/>";
}

std::string OneAttributeManyTimes(std::size_t count)
{
    return "<a" + Repeated(" n='v'", count) + "/>";
}

std::string AttributesThatBeginAlike(std::size_t count)
{
    std::string text = "<a";
    for (std::size_t i = 0; i < count; ++i)
        text += " " + std::string(i, 'n') + "a='v'";
    return text + "/>";
}

constexpr std::size_t kMiB = 1024 * 1024;

const GrowthCase kGrowthCases[] = {
    {"Attributes", ManyAttributes, 100'000},
    {"DuplicateAttributes", OneAttributeManyTimes, 100'000},
    {"Siblings", [](std::size_t n) { return "<a>" + Repeated("<b/>", n) + "</a>"; }, 250'000},
    {"Depth", [](std::size_t n) { return Repeated("<a>", n) + Repeated("</a>", n); }, 250'000},
    {"Comments", [](std::size_t n) { return Repeated("<!---->", n); }, 250'000},
    {"PiecesOfText", [](std::size_t n) { return "<a>" + Repeated("x<?p?>", n) + "</a>"; }, 250'000},
    {"Text", [](std::size_t n) { return "<a>" + std::string(n, 'x') + "</a>"; }, 16 * kMiB},
    {"BlankText", [](std::size_t n) { return "<a>" + std::string(n, '\n') + "</a>"; }, 16 * kMiB},
    {"LeadingText", [](std::size_t n) { return std::string(n, '&') + "<a/>"; }, 16 * kMiB},
    {"Value", [](std::size_t n) { return "<a b='" + std::string(n, '\n') + "'/>"; }, 16 * kMiB},
    {"Name", [](std::size_t n) { return "<" + std::string(n, 'a') + "/>"; }, 16 * kMiB},
    {"BlanksInATag", [](std::size_t n) { return "<a" + std::string(n, '\n') + "/>"; }, 16 * kMiB},
    {"Comment", [](std::size_t n) { return "<!--" + std::string(n, '-') + "-->"; }, 16 * kMiB},
    {"CommentOfAlmostEnds", [](std::size_t n) { return "<!--" + Repeated("-- ", n / 3) + "-->"; }, 16 * kMiB},
    {"Instruction", [](std::size_t n) { return "<?" + std::string(n, '?') + ">"; }, 16 * kMiB},
    {"ReferencesInText", [](std::size_t n) { return "<a>" + Repeated("&amp;", n) + "</a>"; }, 250'000},
    {"ReferencesInAValue", [](std::size_t n) { return "<a b='" + Repeated("&#65;", n) + "'/>"; }, 250'000},
    {"DigitsOfAReference", [](std::size_t n) { return "<a>&#" + std::string(n, '0') + "65;</a>"; }, 16 * kMiB},
};

class XmlGrowth : public testing::TestWithParam<GrowthCase>
{};

TEST_P(XmlGrowth, ParsingIsLinear)
{
    const double factor = GrowthFactor(
        [](std::size_t size) {
            const auto text = std::make_shared<std::string>(GetParam().text(size));
            return [text] { Parse(*text); };
        },
        GetParam().size);
    EXPECT_LT(factor, kGrowthLimit);
}

TEST_P(XmlGrowth, CloningIsLinear)
{
    const double factor = GrowthFactor(
        [](std::size_t size) {
            const std::shared_ptr<XML::Document> document = Parse(GetParam().text(size));
            return [document] {
                if (const auto root = document->GetRootElement())
                    root->Clone();
                for (const auto& node : document->GetContent())
                    node->Clone();
            };
        },
        GetParam().size);
    EXPECT_LT(factor, kGrowthLimit);
}

TEST_P(XmlGrowth, PrintingIsLinear)
{
    const double factor = GrowthFactor(
        [](std::size_t size) {
            const std::shared_ptr<XML::Document> document = Parse(GetParam().text(size));
            return [document] {
                XML::Outputter outputter;
                outputter.SetIndent("");
                EXPECT_FALSE(outputter.ToString(*document).empty());
            };
        },
        GetParam().size);
    EXPECT_LT(factor, kGrowthLimit);
}

INSTANTIATE_TEST_SUITE_P(Table, XmlGrowth, testing::ValuesIn(kGrowthCases),
                         [](const auto& test) { return std::string(test.param.label); });

TEST(XmlGrowth, AttributesThatBeginAlikeArePrintedInTime)
{
    const auto document = Parse(AttributesThatBeginAlike(4'000)); // 8 MB of names
    const std::string printed = XML::Outputter().ToString(*document);
    EXPECT_EQ(printed.substr(printed.size() - 8, 8), "na=\"v\"/>");
}

TEST(XmlGrowth, MemoryOfATextIsAskedForOnce)
{
    const std::string text = "<a>" + std::string(kMiB, 'x') + "</a>";
    std::istringstream input(text);
    XML::Parser parser(input);
    const std::size_t before = Heap::Allocations();
    const auto document = parser.Parse();
    EXPECT_LT(Heap::Allocations() - before, 12U);
}

// --- exhausted heap: at every allocation in turn, bad_alloc and nothing else, and nothing is lost ---

constexpr auto kSmallDocument =
    "<?xml version='1.0'?><!-- a comment that is longer than a short string -->"
    "<root-element-with-a-long-name one='1' two='a value that is longer than a short string'"
    " three='&lt;a decoded value that is longer than a short string&gt;'>"
    "<b><c/>text &amp; more text that is longer than a short string</b><d><e>x</e></d>"
    "</root-element-with-a-long-name>";

/// Returns how many allocations the work needs.
std::size_t ExhaustAtEveryAllocation(const std::function<void()>& work)
{
    for (std::size_t allocations = 0;; ++allocations) {
        const std::size_t before = Heap::BlocksInUse();
        bool finished = false;
        bool otherException = false;
        {
            const Heap::Exhaustion exhaustion(allocations);
            try {
                work();
                finished = true;
            } catch (const std::bad_alloc&) {
            } catch (...) {
                otherException = true;
            }
        }
        EXPECT_EQ(Heap::BlocksInUse(), before) << "after " << allocations << " allocations";
        EXPECT_FALSE(otherException) << "after " << allocations << " allocations";
        if (finished || otherException)
            return allocations;
    }
}

TEST(XmlExhaustedHeap, Reading)
{
    std::istringstream input(kSmallDocument);
    EXPECT_GE(ExhaustAtEveryAllocation([&] { XML::Parser parser(input); }), 1U);
}

TEST(XmlExhaustedHeap, Parsing)
{
    std::istringstream input(kSmallDocument);
    EXPECT_GE(ExhaustAtEveryAllocation([&] { XML::Parser(input).Parse(); }), 12U);
}

TEST(XmlExhaustedHeap, AnErrorIsTold)
{
    std::istringstream input("<a><b x='1'>text</a>");
    EXPECT_GE(ExhaustAtEveryAllocation([&] {
                  try {
                      XML::Parser(input).Parse();
                  } catch (const XML::Exception&) {
                  }
              }),
              5U);
}

TEST(XmlExhaustedHeap, Cloning)
{
    const auto root = Parse(kSmallDocument)->GetRootElement();
    EXPECT_GE(ExhaustAtEveryAllocation([&] { root->Clone(); }), 15U);
}

TEST(XmlExhaustedHeap, Printing)
{
    const auto document = Parse(kSmallDocument);
    EXPECT_GE(ExhaustAtEveryAllocation([&] { XML::Outputter().ToString(*document); }), 3U);
    EXPECT_GE(ExhaustAtEveryAllocation([&] { XML::Outputter().ToString(*document->GetRootElement(), true); }), 3U);
}

TEST(XmlExhaustedHeap, FailedEditLeavesTheElementAsItWas)
{
    const std::string name = "an attribute name that is longer than a short string";
    const auto element = XML::Element::Create("a");
    element->SetAttribute("b", "1");
    ExhaustAtEveryAllocation([&] {
        element->SetAttribute(name, name);
        element->RemoveAttribute(name);
    });
    EXPECT_EQ(element->GetAttributes().size(), 1U);
    ExhaustAtEveryAllocation([&] {
        element->AddChild(XML::Text::Create(name));
        element->RemoveAllContent();
    });
    EXPECT_TRUE(element->GetContent().empty());
}

TEST(XmlExhaustedHeap, ReleasingNeedsNoMemory)
{
    auto document = Parse(kSmallDocument);
    const Heap::Exhaustion exhaustion(0);
    document.reset();
}

/// A source that tells a size that no machine has.
class Huge : public std::streambuf
{
protected:
    pos_type seekoff(off_type, std::ios_base::seekdir, std::ios_base::openmode) override { return pos_type(size); }

    pos_type seekpos(pos_type, std::ios_base::openmode) override { return 0; }

    static constexpr off_type size = std::numeric_limits<off_type>::max() - 1;
};

TEST(XmlExhaustedHeap, SizeBeyondAllMemory)
{
    Huge source;
    std::istream input(&source);
    EXPECT_THROW(XML::Parser parser(input), std::bad_alloc);
}

} // namespace
