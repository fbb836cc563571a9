#include <KelInsInfra/xml/Comment.h>
#include <KelInsInfra/xml/Outputter.h>
#include <KelInsInfra/xml/Parser.h>
#include <KelInsInfra/xml/Text.h>
#include <gtest/gtest.h>
#include <iomanip>
#include <sstream>
#include <type_traits>

namespace {

using XML::Comment;
using XML::Element;
using XML::Outputter;
using XML::Text;
using namespace std::string_literals;

static_assert(std::is_default_constructible_v<Outputter> && std::is_copy_constructible_v<Outputter> &&
              std::is_copy_assignable_v<Outputter> && std::is_nothrow_move_constructible_v<Outputter> &&
              std::is_nothrow_move_assignable_v<Outputter>);

const std::string kDeclaration = R"(<?xml version="1.0" encoding="UTF-8"?>)";

using Nodes = std::vector<std::shared_ptr<XML::Content>>;

std::shared_ptr<Element> E(const std::string& name, const Nodes& content = {})
{
    auto element = Element::Create(name);
    for (const auto& node : content)
        element->AddChild(node);
    return element;
}

std::shared_ptr<Text> T(const std::string& text)
{
    return Text::Create(text);
}

std::shared_ptr<Comment> C(const std::string& comment)
{
    return Comment::Create(comment);
}

std::unique_ptr<XML::Document> Parse(const std::string& text)
{
    std::istringstream input(text);
    return XML::Parser(input).Parse();
}

struct LayoutCase
{
    const char* label;
    std::shared_ptr<Element> element;
    std::string text;

    friend void PrintTo(const LayoutCase& c, std::ostream* out) { *out << c.text; }
};

class XmlOutputterLayout : public testing::TestWithParam<LayoutCase>
{};

TEST_P(XmlOutputterLayout, ElementAlone)
{
    EXPECT_EQ(Outputter().ToString(*GetParam().element, false), GetParam().text);
}

TEST_P(XmlOutputterLayout, ElementAfterDeclaration)
{
    const std::string expected = kDeclaration + "\n" + GetParam().text;
    EXPECT_EQ(Outputter().ToString(*GetParam().element, true), expected);
    std::ostringstream file;
    Outputter().ToFile(*GetParam().element, file);
    EXPECT_EQ(file.str(), expected);
}

const LayoutCase kLayoutCases[] = {
    {"NoContent", E("a"), "<a/>"},
    {"TextStaysInline", E("a", {T("x")}), "<a>x</a>"},
    {"TextIsNotTrimmed", E("a", {T(" x ")}), "<a> x </a>"},
    {"TextsAreJoined", E("a", {T("x"), T("y")}), "<a>xy</a>"},
    {"ElementsOnLinesOfTheirOwn", E("a", {E("b", {E("c")}), E("d")}), "<a>\n  <b>\n    <c/>\n  </b>\n  <d/>\n</a>"},
    {"ElementAfterTextThenABreak", E("a", {T("t"), E("b"), E("c")}), "<a>t<b/>\n  <c/>\n</a>"},
    {"TextAfterElement", E("a", {E("b"), T("t")}), "<a>\n  <b/>t</a>"},
    {"CommentAfterText", E("a", {T("t"), C("c"), E("b")}), "<a>t<!--c-->\n  <b/>\n</a>"},
    {"CommentOnALineOfItsOwn", E("a", {C("c"), C("d")}), "<a>\n  <!--c-->\n  <!--d-->\n</a>"},
    {"TextAfterComment", E("a", {C("c"), T("t")}), "<a>\n  <!--c-->t</a>"},
    {"BlankTextAlone", E("a", {T("   ")}), "<a>\n</a>"},
    {"BlankTextNested", E("a", {E("b", {T(" \n\r\t")})}), "<a>\n  <b>\n  </b>\n</a>"},
    {"EmptyTextAlone", E("a", {T("")}), "<a>\n</a>"},
    {"BlankTextKeepsTheKindBefore", E("a", {T("t"), T(" "), E("b")}), "<a>t<b/>\n</a>"},
    {"BlankTextInsideAnElementAfterText", E("a", {T("t"), E("b", {T(" ")})}), "<a>t<b></b>\n</a>"},
    {"OtherWhitespaceIsText", E("a", {T("\f")}), "<a>\f</a>"},
    {"ContentOfAnElementAfterText", E("a", {T("t"), E("b", {E("c"), E("d")})}), "<a>t<b><c/>\n    <d/>\n  </b>\n</a>"},
    {"CommentInAnElementAfterText", E("a", {T("t"), E("b", {C("c")})}), "<a>t<b><!--c-->\n  </b>\n</a>"},
    {"TextInAnElementAfterText", E("a", {T("t"), E("b", {T("u")}), E("c")}), "<a>t<b>u</b>\n  <c/>\n</a>"},
    {"ElementWithTextLast", E("a", {E("b", {T("u")})}), "<a>\n  <b>u</b>\n</a>"},
    {"MultiLineCommentGainsTheIndent", E("a", {C("x\n")}), "<a>\n  <!--x\n  -->\n</a>"},
    {"AnyLineBreakInACommentDoes", E("a", {C("x\ny")}), "<a>\n  <!--x\ny  -->\n</a>"},
    {"CarriageReturnInACommentDoes", E("a", {E("b", {C("x\r")})}), "<a>\n  <b>\n    <!--x\r    -->\n  </b>\n</a>"},
    {"MultiLineCommentAfterText", E("a", {T("t"), C("\n")}), "<a>t<!--\n  -->\n</a>"},
    {"CommentIsNotEscaped", E("a", {C("<&>'\"")}), "<a>\n  <!--<&>'\"-->\n</a>"},
    {"TextIsEscaped", E("a", {T("&'\"<>")}), "<a>&amp;&apos;&quot;&lt;&gt;</a>"},
    {"EscapingInALongText", E("a", {T(std::string(20, 'x') + "<" + std::string(20, 'y') + ">")}),
     "<a>" + std::string(20, 'x') + "&lt;" + std::string(20, 'y') + "&gt;</a>"},
    {"OtherBytesAreCopied", E("a", {T("\0\x01\xFF\xC3\xA9"s)}), "<a>\0\x01\xFF\xC3\xA9</a>"s},
    {"NamesAreWrittenAsTheyAre", E("n&<s:a"), "<n&<s:a/>"},
};

INSTANTIATE_TEST_SUITE_P(Table, XmlOutputterLayout, testing::ValuesIn(kLayoutCases),
                         [](const auto& test) { return std::string(test.param.label); });

struct AttributeCase
{
    const char* label;
    std::vector<std::pair<std::string, std::string>> attributes;
    std::string text;

    friend void PrintTo(const AttributeCase& c, std::ostream* out) { *out << c.text; }
};

class XmlOutputterAttributes : public testing::TestWithParam<AttributeCase>
{};

TEST_P(XmlOutputterAttributes, AreSortedByTheirText)
{
    const auto element = E("e");
    for (const auto& [name, value] : GetParam().attributes)
        element->SetAttribute(name, value);
    EXPECT_EQ(Outputter().ToString(*element, false), GetParam().text);
    EXPECT_EQ(element->GetAttributes(), GetParam().attributes); // which are left as they are
}

const AttributeCase kAttributeCases[] = {
    {"One", {{"a", "1"}}, R"(<e a="1"/>)"},
    {"InOrder", {{"a", "2"}, {"b", "1"}}, R"(<e a="2" b="1"/>)"},
    {"OutOfOrder", {{"b", "1"}, {"a", "2"}}, R"(<e a="2" b="1"/>)"},
    {"ManyOutOfOrder", {{"c", "3"}, {"d", ""}, {"b", "2"}, {"a", "1"}}, R"(<e a="1" b="2" c="3" d=""/>)"},
    {"DigitBeforeThePrefix", {{"a", "1"}, {"a1", "2"}}, R"(<e a1="2" a="1"/>)"},
    {"DashAndDotBeforeThePrefix", {{"a", "1"}, {"a.", "2"}, {"a-", "3"}}, R"(<e a-="3" a.="2" a="1"/>)"},
    {"LetterAfterThePrefix", {{"ab", "1"}, {"a", "2"}}, R"(<e a="2" ab="1"/>)"},
    {"UpperCaseBeforeLowerCase", {{"a", "1"}, {"B", "2"}}, R"(<e B="2" a="1"/>)"},
    {"BytesAreUnsigned", {{"\xC3\xA9", "1"}, {"z", "2"}}, "<e z=\"2\" \xC3\xA9=\"1\"/>"},
    {"ValuesAreEscaped", {{"a", "&'\"<>"}}, R"(<e a="&amp;&apos;&quot;&lt;&gt;"/>)"},
    {"EqualsInANameIsComparedWithTheValue",
     {{"a", "m"}, {"a=\"n", "1"}, {"a=\"l", "2"}},
     R"(<e a="l="2" a="m" a="n="1"/>)"},
    {"EqualsInANameIsComparedWithTheWrittenValue", {{"a=", "<"}, {"a", "<b"}}, R"(<e a="&lt;b" a=="&lt;"/>)"},
    {"NoName", {{"a", "1"}, {"", "2"}, {"0", "3"}}, R"(<e 0="3" ="2" a="1"/>)"},
    {"NoNameFirst", {{"", "2"}, {"a", "1"}}, R"(<e ="2" a="1"/>)"},
    {"BlanksInValuesAreCopied", {{"a", " \t\r\n "}}, "<e a=\" \t\r\n \"/>"},
};

INSTANTIATE_TEST_SUITE_P(Table, XmlOutputterAttributes, testing::ValuesIn(kAttributeCases),
                         [](const auto& test) { return std::string(test.param.label); });

TEST(XmlOutputter, DuplicatesAreSortedByTheirWrittenValues)
{
    // as a value < comes after (, as text it is &lt; and comes before it
    EXPECT_EQ(Outputter().ToString(*Parse("<e a='x' a='(' a='&lt;'/>")),
              kDeclaration + "\n<e a=\"&lt;\" a=\"(\" a=\"x\"/>");
}

TEST(XmlOutputter, DuplicatesOfEveryTwoBytesAreSortedAsText)
{
    const auto written = [](const std::string& value) {
        const auto element = E("e");
        element->SetAttribute("a", value);
        const std::string text = Outputter().ToString(*element, false);
        return text.substr(2, text.size() - 4); // " a="..." alone
    };
    const std::string bytes = "&'\"<>\x01 !#az~\x80\xFF";
    for (const char first : bytes) {
        for (const char second : bytes) {
            const std::string one = std::string("x") + first + "y";
            const std::string other = std::string("x") + second;
            // the parser keeps both: bytes as references where they could not stand in a value
            const auto raw = [](char c) { return "&#" + std::to_string(static_cast<unsigned char>(c)) + ";"; };
            const auto quoted = [&](char c, const std::string& tail) {
                return static_cast<unsigned char>(c) < 0x80 ? "x" + raw(c) + tail : std::string("x") + c + tail;
            };
            const auto root =
                Parse("<e a='" + quoted(first, "y") + "' a='" + quoted(second, "") + "'/>")->GetRootElement();
            EXPECT_EQ(Outputter().ToString(*root, false),
                      "<e" + std::min(written(one), written(other)) + std::max(written(one), written(other)) + "/>");
        }
    }
}

TEST(XmlOutputter, DocumentOfTheExample)
{
    const auto document = Parse("<!--generated--><config version='2' name='x&amp;y'>"
                                "<item id='1'>a&lt;b</item><empty/></config>");
    const std::string expected = R"(<?xml version="1.0" encoding="UTF-8"?>
<!--generated-->
<config name="x&amp;y" version="2">
  <item id="1">a&lt;b</item>
  <empty/>
</config>)";
    EXPECT_EQ(Outputter().ToString(*document), expected);
    std::ostringstream file;
    Outputter().ToFile(*document, file);
    EXPECT_EQ(file.str(), expected);
}

TEST(XmlOutputter, EmptyDocumentIsTheDeclaration)
{
    EXPECT_EQ(Outputter().ToString(*Parse("")), kDeclaration);
}

TEST(XmlOutputter, MultiLineCommentOfTheTopLevelGainsNothing)
{
    EXPECT_EQ(Outputter().ToString(*Parse("<!--x\n--><a/>")), kDeclaration + "\n<!--x\n-->\n<a/>");
}

TEST(XmlOutputter, IndentCanBeAnyText)
{
    const auto element = E("a", {E("b", {E("c")})});
    Outputter outputter;
    outputter.SetIndent("\t");
    EXPECT_EQ(outputter.ToString(*element, false), "<a>\n\t<b>\n\t\t<c/>\n\t</b>\n</a>");
    outputter.SetIndent("");
    EXPECT_EQ(outputter.ToString(*element, false), "<a>\n<b>\n<c/>\n</b>\n</a>");
    outputter.SetIndent("<&");
    EXPECT_EQ(outputter.ToString(*element, false), "<a>\n<&<b>\n<&<&<c/>\n<&</b>\n</a>");
}

TEST(XmlOutputter, CanBeUsedAgain)
{
    const auto endsInText = E("a", {T("t"), E("b", {T("u")})});
    Outputter outputter;
    const std::string first = outputter.ToString(*endsInText, true);
    EXPECT_EQ(outputter.ToString(*endsInText, true), first);
    EXPECT_EQ(outputter.ToString(*Parse("<a/>")), kDeclaration + "\n<a/>");
    EXPECT_EQ(outputter.ToString(*E("a"), false), "<a/>");
}

TEST(XmlOutputter, CopiesAndMovesTakeTheIndentAlong)
{
    const auto element = E("a", {E("b")});
    Outputter outputter;
    outputter.SetIndent("\t");
    Outputter copy(outputter);
    Outputter assigned;
    assigned = copy;
    Outputter moved(std::move(copy));
    copy = std::move(assigned);
    outputter.SetIndent("changed");
    EXPECT_EQ(moved.ToString(*element, false), "<a>\n\t<b/>\n</a>");
    EXPECT_EQ(copy.ToString(*element, false), "<a>\n\t<b/>\n</a>");
}

TEST(XmlOutputter, KeepsNoReferenceToWhatItWrote)
{
    const auto element = E("a");
    Outputter outputter;
    outputter.ToString(*element, true);
    EXPECT_EQ(element.use_count(), 1);
}

TEST(XmlOutputter, StreamFormatIsIgnored)
{
    std::ostringstream file;
    file << std::setw(500) << std::setfill('.');
    Outputter().ToFile(*E("a"), file);
    EXPECT_EQ(file.str(), kDeclaration + "\n<a/>");
}

TEST(XmlOutputter, FailedStreamIsLeftToItself)
{
    std::ostringstream file;
    file.setstate(std::ios_base::failbit);
    Outputter().ToFile(*E("a"), file);
    Outputter().ToFile(*Parse("<a/>"), file);
    EXPECT_EQ(file.str(), "");
    EXPECT_TRUE(file.fail());
}

/// Counts what it is told to flush.
class FlushCounter : public std::stringbuf
{
public:
    int count = 0;

protected:
    int sync() override { return ++count, 0; }
};

TEST(XmlOutputter, StreamIsNotFlushed)
{
    FlushCounter buffer;
    std::ostream file(&buffer);
    Outputter().ToFile(*E("a"), file);
    EXPECT_EQ(buffer.count, 0);
    EXPECT_EQ(buffer.str(), kDeclaration + "\n<a/>");
}

/// A node of a user's own class, of none of the three kinds.
class Foreign : public XML::Content
{
public:
    std::shared_ptr<XML::Content> Clone() const override { return std::make_shared<Foreign>(); }

    XML::ContentType GetType() const override { return static_cast<XML::ContentType>(3); }
};

TEST(XmlOutputter, NodeOfAnotherKindIsNotWritten)
{
    EXPECT_EQ(Outputter().ToString(*E("a", {std::make_shared<Foreign>(), E("b")}), false), "<a>\n  <b/>\n</a>");
}

TEST(XmlOutputter, NodeThatStandsTwiceIsWrittenTwice)
{
    const auto child = E("b", {T("t")});
    EXPECT_EQ(Outputter().ToString(*E("a", {child, child}), false), "<a>\n  <b>t</b>\n  <b>t</b>\n</a>");
}

TEST(XmlOutputter, ParsingTheOutputGivesTheSameTree)
{
    const std::string text = "<!--c--><a b='2' a='&#10;1'> x <b/> y<c>z</c><!--multi\nline\n--></a>";
    const std::string once = Outputter().ToString(*Parse(text));
    EXPECT_EQ(once,
              kDeclaration + "\n<!--c-->\n<a a=\"\n1\" b=\"2\"> x <b/> y<c>z</c>\n  <!--multi\nline\n  -->\n</a>");
    const auto root = Parse(once)->GetRootElement();
    EXPECT_EQ(root->GetText(), " x  y");
    EXPECT_EQ(root->GetAttributeValue("a", ""), "\n1");
}

} // namespace
