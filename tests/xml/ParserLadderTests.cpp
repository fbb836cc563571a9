// Damaged documents: whatever is cut off, replaced or doubled, the outcome is that of the model.

#include "ParserModel.h"

#include <gtest/gtest.h>
#include <string>
#include <string_view>

namespace {

/// Holds every construct, in several surroundings, with line feeds in all of them.
constexpr std::string_view kEverything = "\xEF\xBB\xBF<?xml version='1.0'\n encoding=\"UTF-8\"?>\r\n"
                                         "<!DOCTYPE a\nSYSTEM 'x'>\n"
                                         "<!-- first\n - -- -> -->\n"
                                         "<a one='1'two = \"2'\n&quot;&#10;&#x1F600;\"\n three='>\"&apos;&lt;'\t>\n"
                                         "  text &amp; &lt;&gt;\n&#65;&#x42;\n"
                                         "  <b/><b\n/><c-d.e_9 x='' ></c-d.e_9\n>\n"
                                         "  <!----><![CDATA[lost\n]]>tail<?p i?>\n"
                                         "  <\xC3\xA9>\xE2\x82\xAC&#32;</\xC3\xA9>\n"
                                         "</a>\n"
                                         "<!--last--> \t\r\n<?p?>\n";

void ExpectSameOutcome(const std::string& text)
{
    EXPECT_EQ(OutcomeOfParser(text), OutcomeOfModel(text)) << testing::PrintToString(text);
}

TEST(XmlParserLadder, EverythingIsAccepted)
{
    EXPECT_EQ(OutcomeOfParser(std::string(kEverything)).substr(0, 9), "document ");
    ExpectSameOutcome(std::string(kEverything));
}

TEST(XmlParserLadder, CutOffAfterEveryByte)
{
    for (std::size_t length = 0; length < kEverything.size(); ++length)
        ExpectSameOutcome(std::string(kEverything.substr(0, length)));
}

TEST(XmlParserLadder, CutOffAfterEveryByteAndFilledWithZeros)
{
    for (std::size_t length = 0; length < kEverything.size(); ++length)
        ExpectSameOutcome(std::string(kEverything.substr(0, length)) + std::string(3, '\0'));
}

TEST(XmlParserLadder, BegunAtEveryByte)
{
    for (std::size_t start = 0; start < kEverything.size(); ++start)
        ExpectSameOutcome(std::string(kEverything.substr(start)));
}

TEST(XmlParserLadder, EveryByteLeftOut)
{
    for (std::size_t at = 0; at < kEverything.size(); ++at)
        ExpectSameOutcome(std::string(kEverything).erase(at, 1));
}

TEST(XmlParserLadder, EveryByteReplacedByEveryByteThatMeansSomething)
{
    using namespace std::string_view_literals;
    for (const char replacement : "<>&'\"/!?-=#;x0a:\n \r\0\x97\xB7\xFF"sv) {
        for (std::size_t at = 0; at < kEverything.size(); ++at) {
            std::string text(kEverything);
            text[at] = replacement;
            ExpectSameOutcome(text);
        }
    }
}

TEST(XmlParserLadder, EveryTextOfFewBytesThatMeanSomething)
{
    const std::string_view bytes = "<>&'/!-=#;a\n";
    for (std::size_t number = 0; number < 12 * 12 * 12 * 12; ++number) {
        std::string text = "<";
        for (std::size_t rest = number; rest > 0; rest /= bytes.size())
            text += bytes[rest % bytes.size()];
        ExpectSameOutcome(text);
        ExpectSameOutcome("<a>" + text);
        ExpectSameOutcome("<a b='" + text.substr(1));
    }
}

} // namespace
