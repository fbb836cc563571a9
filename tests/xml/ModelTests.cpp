#include <KelInsInfra/xml/Comment.h>
#include <KelInsInfra/xml/Document.h>
#include <KelInsInfra/xml/Element.h>
#include <KelInsInfra/xml/Parser.h>
#include <KelInsInfra/xml/Text.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sstream>
#include <thread>
#include <type_traits>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using XML::Comment;
using XML::Content;
using XML::Document;
using XML::Element;
using XML::Text;

template <typename T>
concept MadeFromBraces = requires
{
    T({}, std::string());
};
template <typename T>
concept MadeFromEmptyBraces = requires
{
    T({});
};

template <typename T>
constexpr bool kMovesOnly = std::is_nothrow_move_constructible_v<T>&& std::is_nothrow_move_assignable_v<T> &&
                            !std::is_copy_constructible_v<T> && !std::is_copy_assignable_v<T>;

static_assert(XML::ContentElement == 0 && XML::ContentComment == 1 && XML::ContentText == 2);
static_assert(std::is_abstract_v<Content> && std::has_virtual_destructor_v<Content>);
static_assert(!std::is_copy_constructible_v<Content> && !std::is_copy_assignable_v<Content>);
static_assert(kMovesOnly<Text> && kMovesOnly<Comment> && kMovesOnly<Element>);
static_assert(!MadeFromBraces<Text> && !MadeFromBraces<Comment> && !MadeFromBraces<Element>);
static_assert(!MadeFromEmptyBraces<Document> && !std::is_default_constructible_v<Document>);
static_assert(!std::is_constructible_v<Text, std::string> && !std::is_constructible_v<Element, std::string>);
static_assert(!std::is_base_of_v<Content, Document>);
static_assert(!std::is_copy_constructible_v<Document> && !std::is_move_constructible_v<Document>);
static_assert(std::is_same_v<decltype(std::declval<const Element&>().Clone()), std::shared_ptr<Content>>);

std::shared_ptr<Element> ElementWithText(const std::string& name, const std::string& text)
{
    auto element = Element::Create(name);
    element->AddChild(Text::Create(text));
    return element;
}

/// [Text "a ", Comment "c", Element b (with text "z"), Text " b"]
std::shared_ptr<Element> MixedContent()
{
    auto element = Element::Create("e");
    element->AddChild(Text::Create("a "));
    element->AddChild(Comment::Create("c"));
    element->AddChild(ElementWithText("b", "z"));
    element->AddChild(Text::Create(" b"));
    return element;
}

std::unique_ptr<Document> Parse(const std::string& text)
{
    std::istringstream input(text);
    return XML::Parser(input).Parse();
}

TEST(XmlContent, EachKindTellsItsType)
{
    EXPECT_EQ(Element::Create("a")->GetType(), XML::ContentElement);
    EXPECT_EQ(Comment::Create("a")->GetType(), XML::ContentComment);
    EXPECT_EQ(Text::Create("a")->GetType(), XML::ContentText);
}

TEST(XmlContent, IsReachedByDynamicCast)
{
    const std::shared_ptr<Content> node = Element::Create("a");
    EXPECT_EQ(std::dynamic_pointer_cast<Element>(node), node);
    EXPECT_EQ(std::dynamic_pointer_cast<Text>(node), nullptr);
}

template <typename T>
class XmlFactory : public testing::Test
{
public:
    static std::string Get(const Text& node) { return node.GetText(); }

    static std::string Get(const Comment& node) { return node.GetComment(); }

    static std::string Get(const Element& node) { return node.GetName(); }
};

using NodeTypes = testing::Types<Text, Comment, Element>;
TYPED_TEST_SUITE(XmlFactory, NodeTypes, );

TYPED_TEST(XmlFactory, CopiesFromAConstReference)
{
    const std::string source(100, 'x');
    const std::shared_ptr<TypeParam> node = TypeParam::Create(source);
    EXPECT_EQ(this->Get(*node), source);
    EXPECT_EQ(source.size(), 100u);
}

TYPED_TEST(XmlFactory, MovesFromAnRvalue)
{
    std::string source(100, 'x');
    const std::shared_ptr<TypeParam> node = TypeParam::Create(std::move(source));
    EXPECT_EQ(this->Get(*node), std::string(100, 'x'));
    EXPECT_TRUE(source.empty()); // NOLINT(bugprone-use-after-move): that it was moved from is what is tested
}

TYPED_TEST(XmlFactory, ReturnsTheExactClassAndOneOwner)
{
    const auto node = TypeParam::Create("x");
    static_assert(std::is_same_v<decltype(node), const std::shared_ptr<TypeParam>>);
    EXPECT_EQ(node.use_count(), 1);
    EXPECT_EQ(typeid(*node), typeid(TypeParam));
}

TYPED_TEST(XmlFactory, MovedNodeHoldsTheText)
{
    const auto node = TypeParam::Create("x");
    TypeParam moved(std::move(*node));
    EXPECT_EQ(this->Get(moved), "x");
    const auto target = TypeParam::Create("y");
    *target = std::move(moved);
    EXPECT_EQ(this->Get(*target), "x");
}

TYPED_TEST(XmlFactory, KeepsZeroBytesAndAnyOtherByte)
{
    const std::string bytes("\0--><&\xFF", 7);
    EXPECT_EQ(this->Get(*TypeParam::Create(bytes)), bytes);
}

TEST(XmlText, SetTextReplaces)
{
    const auto text = Text::Create("a");
    text->SetText("b");
    EXPECT_EQ(text->GetText(), "b");
}

struct TrimCase
{
    const char* label;
    std::string text;
    std::string trimmed;

    friend void PrintTo(const TrimCase& c, std::ostream* out) { *out << testing::PrintToString(c.text); }
};

const TrimCase kTrimCases[] = {
    {"Empty", "", ""},
    {"OnlyBlanks", " \t\r\n \r\n", ""},
    {"LineFeedsAndSpaces", "\n a b \n", "a b"},
    {"NothingToTrim", "a b", "a b"},
    {"OneCharacter", " x ", "x"},
    {"InnerBlanksStay", "\ta \r\n\t b\r", "a \r\n\t b"},
    {"VerticalTabStays", "\va\v", "\va\v"},
    {"FormFeedStays", "\fa\f", "\fa\f"},
    {"NonBreakingSpaceStays", "\xC2\xA0 a \xC2\xA0", "\xC2\xA0 a \xC2\xA0"},
    {"ZeroByteStays", std::string(" \0 ", 3), std::string("\0", 1)},
};

class XmlTextTrim : public testing::TestWithParam<TrimCase>
{};

TEST_P(XmlTextTrim, RemovesTheFourBlanksAtBothEnds)
{
    EXPECT_EQ(Text::Create(GetParam().text)->GetTextTrim(), GetParam().trimmed);
}

INSTANTIATE_TEST_SUITE_P(Table, XmlTextTrim, testing::ValuesIn(kTrimCases),
                         [](const auto& test) { return std::string(test.param.label); });

TEST(XmlComment, SetCommentReplaces)
{
    const auto comment = Comment::Create("a");
    comment->SetComment("b--");
    EXPECT_EQ(comment->GetComment(), "b--");
}

TEST(XmlClone, TextAndCommentAreNewEqualNodes)
{
    const auto text = Text::Create("t");
    const auto textCopy = std::dynamic_pointer_cast<Text>(text->Clone());
    const auto comment = Comment::Create("c");
    const auto commentCopy = std::dynamic_pointer_cast<Comment>(comment->Clone());
    ASSERT_TRUE(textCopy && commentCopy);
    EXPECT_NE(textCopy, text);
    EXPECT_NE(commentCopy, comment);
    EXPECT_EQ(textCopy->GetText(), "t");
    EXPECT_EQ(commentCopy->GetComment(), "c");
}

TEST(XmlElement, NewElementIsEmpty)
{
    const auto element = Element::Create("a");
    EXPECT_THAT(element->GetAttributes(), IsEmpty());
    EXPECT_THAT(element->GetContent(), IsEmpty());
    EXPECT_THAT(element->GetChildren(), IsEmpty());
    EXPECT_EQ(element->GetText(), "");
    EXPECT_EQ(element->GetTextTrim(), "");
}

TEST(XmlElement, SetNameKeepsAttributesAndContent)
{
    const auto element = ElementWithText("a", "t");
    element->SetAttribute("k", "v");
    element->SetName("b");
    EXPECT_EQ(element->GetName(), "b");
    EXPECT_EQ(element->GetText(), "t");
    EXPECT_THAT(element->GetAttributes(), ElementsAre(Pair("k", "v")));
}

TEST(XmlElement, MoveTakesEverything)
{
    const auto element = MixedContent();
    element->SetAttribute("k", "v");
    Element moved(std::move(*element));
    EXPECT_EQ(moved.GetName(), "e");
    EXPECT_THAT(moved.GetAttributes(), ElementsAre(Pair("k", "v")));
    EXPECT_EQ(moved.GetContent().size(), 4u);
}

TEST(XmlElement, CanBeReplacedByItsOwnDescendant)
{
    const auto root = Element::Create("root");
    {
        const auto child = ElementWithText("child", "t");
        const auto middle = Element::Create("middle");
        middle->AddChild(child);
        root->AddChild(middle);
    }
    auto* child = root->GetChildren()[0]->GetChildren()[0].get();
    *root = std::move(*child); // releases middle, and with it the element that is moved from
    EXPECT_EQ(root->GetName(), "child");
    EXPECT_EQ(root->GetText(), "t");
}

TEST(XmlAttributes, SetReplacesInPlace)
{
    const auto element = Element::Create("e");
    element->SetAttribute("a", "1");
    element->SetAttribute("b", "2");
    element->SetAttribute("a", "3");
    EXPECT_THAT(element->GetAttributes(), ElementsAre(Pair("a", "3"), Pair("b", "2")));
}

TEST(XmlAttributes, OverloadsForStringPointerAndBool)
{
    const auto element = Element::Create("e");
    const char* pointer = "p";
    char array[] = "array";
    element->SetAttribute("string", std::string("s\0t", 3));
    element->SetAttribute("pointer", pointer);
    element->SetAttribute("array", array);
    element->SetAttribute("yes", true);
    element->SetAttribute("no", false);
    EXPECT_THAT(element->GetAttributes(),
                ElementsAre(Pair("string", std::string("s\0t", 3)), Pair("pointer", "p"), Pair("array", "array"),
                            Pair("yes", "true"), Pair("no", "false")));
}

TEST(XmlAttributes, NamesAreComparedByteForByte)
{
    const auto element = Element::Create("e");
    element->SetAttribute("name", "1");
    element->SetAttribute("Name", "2");
    element->SetAttribute("ns:name", "3");
    element->SetAttribute("", "4");
    EXPECT_EQ(element->GetAttributes().size(), 4u);
    EXPECT_EQ(element->GetAttributeValue("Name", ""), "2");
    EXPECT_EQ(element->GetAttributeValue("", "x"), "4");
    EXPECT_FALSE(element->HasAttribute("NAME"));
}

TEST(XmlAttributes, MissingGivesTheDefaultEmptyGivesEmpty)
{
    const auto element = Element::Create("e");
    element->SetAttribute("empty", "");
    EXPECT_EQ(element->GetAttributeValue("missing", "x"), "x");
    EXPECT_EQ(element->GetAttributeValue("empty", "x"), "");
    EXPECT_TRUE(element->HasAttribute("empty"));
    EXPECT_FALSE(element->HasAttribute("missing"));
}

TEST(XmlAttributes, RemoveKeepsTheOrderOfTheOthers)
{
    const auto element = Element::Create("e");
    for (const char* name : {"a", "b", "c"})
        element->SetAttribute(name, "");
    EXPECT_TRUE(element->RemoveAttribute("b"));
    EXPECT_THAT(element->GetAttributes(), ElementsAre(Pair("a", ""), Pair("c", "")));
}

TEST(XmlAttributes, RemoveOfAMissingNameChangesNothing)
{
    const auto element = Element::Create("e");
    element->SetAttribute("a", "1");
    EXPECT_FALSE(element->RemoveAttribute("A"));
    EXPECT_THAT(element->GetAttributes(), ElementsAre(Pair("a", "1")));
}

TEST(XmlAttributes, ParsedTwiceMeansTheFirst)
{
    const auto root = Parse("<a x='1' y='2' x='3'/>")->GetRootElement();
    EXPECT_EQ(root->GetAttributeValue("x", ""), "1");
    root->SetAttribute("x", "4");
    EXPECT_THAT(root->GetAttributes(), ElementsAre(Pair("x", "4"), Pair("y", "2"), Pair("x", "3")));
    EXPECT_TRUE(root->RemoveAttribute("x"));
    EXPECT_THAT(root->GetAttributes(), ElementsAre(Pair("y", "2"), Pair("x", "3")));
}

TEST(XmlAttributes, ListIsACopy)
{
    const auto element = Element::Create("e");
    element->SetAttribute("a", "1");
    element->GetAttributes().clear();
    EXPECT_TRUE(element->HasAttribute("a"));
}

TEST(XmlElementContent, KeepsNodesInOrderAndShared)
{
    const auto element = Element::Create("e");
    const auto child = Element::Create("c");
    const auto text = Text::Create("t");
    element->AddChild(child);
    element->AddChild(text);
    element->AddChild(child); // again: nothing checks whether it has a place already
    EXPECT_THAT(element->GetContent(), ElementsAre(child, text, child));
    EXPECT_EQ(child.use_count(), 3);
}

TEST(XmlElementContent, IgnoresAnEmptyPointer)
{
    const auto element = Element::Create("e");
    element->AddChild(nullptr);
    EXPECT_THAT(element->GetContent(), IsEmpty());
}

TEST(XmlElementContent, ListIsACopyOfTheSameNodes)
{
    const auto element = MixedContent();
    auto content = element->GetContent();
    std::static_pointer_cast<Text>(content.front())->SetText("changed");
    content.clear();
    EXPECT_EQ(element->GetText(), "changed b");
}

TEST(XmlElementContent, TextsOfDirectChildrenAreJoined)
{
    EXPECT_EQ(MixedContent()->GetText(), "a  b");
}

TEST(XmlElementContent, TrimmedTextsAreTrimmedOneByOne)
{
    EXPECT_EQ(MixedContent()->GetTextTrim(), "ab");
}

TEST(XmlElementContent, ChildrenAreTheDirectElements)
{
    const auto element = MixedContent();
    element->GetChildren()[0]->AddChild(Element::Create("grandchild"));
    element->AddChild(Element::Create("last"));
    const auto children = element->GetChildren();
    static_assert(std::is_same_v<decltype(children), const std::vector<std::shared_ptr<Element>>>);
    ASSERT_EQ(children.size(), 2u);
    EXPECT_EQ(children[0]->GetName(), "b");
    EXPECT_EQ(children[1]->GetName(), "last");
}

TEST(XmlElementContent, RemoveAllLeavesNameAndAttributes)
{
    const auto element = MixedContent();
    element->SetAttribute("k", "v");
    element->RemoveAllContent();
    EXPECT_THAT(element->GetContent(), IsEmpty());
    EXPECT_TRUE(element->HasAttribute("k"));
    EXPECT_EQ(element->GetName(), "e");
}

std::shared_ptr<Element> TwoOfB()
{
    auto element = Element::Create("e");
    element->AddChild(Text::Create("b"));
    element->AddChild(Comment::Create("b"));
    element->AddChild(ElementWithText("b", "1"));
    element->AddChild(Element::Create("B"));
    element->AddChild(ElementWithText("b", "2"));
    return element;
}

TEST(XmlElementContent, RemoveChildTakesTheFirstOfThatName)
{
    const auto element = TwoOfB();
    EXPECT_TRUE(element->RemoveChild("b"));
    ASSERT_EQ(element->GetChildren().size(), 2u);
    EXPECT_EQ(element->GetChildren()[1]->GetText(), "2");
    EXPECT_EQ(element->GetContent().size(), 4u);
}

TEST(XmlElementContent, RemoveChildrenTakesAllOfThatName)
{
    const auto element = TwoOfB();
    EXPECT_TRUE(element->RemoveChildren("b"));
    ASSERT_EQ(element->GetChildren().size(), 1u);
    EXPECT_EQ(element->GetChildren()[0]->GetName(), "B");
    EXPECT_EQ(element->GetContent().size(), 3u);
}

TEST(XmlElementContent, TextsAndCommentsNeverMatchAName)
{
    const auto element = Element::Create("e");
    element->AddChild(Text::Create("b"));
    element->AddChild(Comment::Create("b"));
    EXPECT_FALSE(element->RemoveChild("b"));
    EXPECT_FALSE(element->RemoveChildren("b"));
    EXPECT_EQ(element->GetContent().size(), 2u);
}

TEST(XmlElementContent, GrandchildrenAreNotRemoved)
{
    const auto element = Element::Create("e");
    const auto child = Element::Create("c");
    child->AddChild(Element::Create("b"));
    element->AddChild(child);
    EXPECT_FALSE(element->RemoveChild("b"));
    EXPECT_FALSE(element->RemoveChildren("b"));
}

TEST(XmlElementContent, RemoveContentGoesByIdentity)
{
    const auto element = Element::Create("e");
    const std::shared_ptr<Content> text = Text::Create("t");
    const std::shared_ptr<Content> equal = Text::Create("t");
    element->AddChild(text);
    EXPECT_FALSE(element->RemoveContent(equal));
    EXPECT_FALSE(element->RemoveContent(nullptr));
    EXPECT_TRUE(element->RemoveContent(text));
    EXPECT_THAT(element->GetContent(), IsEmpty());
}

TEST(XmlElementContent, RemoveContentTakesTheFirstEntry)
{
    const auto element = Element::Create("e");
    const std::shared_ptr<Content> twice = Text::Create("t");
    const std::shared_ptr<Content> other = Text::Create("o");
    for (const auto& node : {twice, other, twice})
        element->AddChild(node);
    EXPECT_TRUE(element->RemoveContent(twice));
    EXPECT_THAT(element->GetContent(), ElementsAre(other, twice));
}

TEST(XmlClone, ElementIsCopiedWhole)
{
    const auto element = MixedContent();
    element->SetAttribute("b", "1");
    element->SetAttribute("a", "2");
    const auto copy = std::dynamic_pointer_cast<Element>(element->Clone());
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(copy->GetName(), "e");
    EXPECT_THAT(copy->GetAttributes(), ElementsAre(Pair("b", "1"), Pair("a", "2")));
    EXPECT_EQ(copy->GetText(), "a  b");
    EXPECT_EQ(copy->GetChildren()[0]->GetText(), "z");
    EXPECT_EQ(std::static_pointer_cast<Comment>(*std::next(copy->GetContent().begin()))->GetComment(), "c");
}

TEST(XmlClone, SharesNothingWithItsSource)
{
    const auto element = MixedContent();
    const auto copy = std::static_pointer_cast<Element>(element->Clone());
    copy->GetChildren()[0]->SetName("changed");
    std::static_pointer_cast<Text>(copy->GetContent().front())->SetText("changed");
    copy->SetAttribute("new", true);
    EXPECT_EQ(element->GetChildren()[0]->GetName(), "b");
    EXPECT_EQ(element->GetText(), "a  b");
    EXPECT_FALSE(element->HasAttribute("new"));
}

TEST(XmlClone, NodeThatStandsTwiceIsCopiedTwice)
{
    const auto element = Element::Create("e");
    const auto child = Element::Create("c");
    element->AddChild(child);
    element->AddChild(child);
    const auto children = std::static_pointer_cast<Element>(element->Clone())->GetChildren();
    ASSERT_EQ(children.size(), 2u);
    EXPECT_NE(children[0], children[1]);
}

TEST(XmlClone, DuplicateAttributesCollapseToTheFirstPlaceAndTheLastValue)
{
    const auto root = Parse("<a x='1' y='2' x='3' y='4' z='5' x='6'/>")->GetRootElement();
    EXPECT_THAT(std::static_pointer_cast<Element>(root->Clone())->GetAttributes(),
                ElementsAre(Pair("x", "6"), Pair("y", "4"), Pair("z", "5")));
}

TEST(XmlClone, DuplicatesCollapseAlikeAmongManyAttributes)
{
    std::string text = "<a";
    for (int i = 0; i < 100; ++i)
        text += " n" + std::to_string(i % 40) + "='" + std::to_string(i) + "'";
    const auto copy = std::static_pointer_cast<Element>(Parse(text + "/>")->GetRootElement()->Clone());
    const auto attributes = copy->GetAttributes();
    ASSERT_EQ(attributes.size(), 40u);
    for (std::size_t i = 0; i < 40; ++i) {
        EXPECT_EQ(attributes[i].first, "n" + std::to_string(i));
        EXPECT_EQ(attributes[i].second, std::to_string(i < 20 ? i + 80 : i + 40));
    }
}

/// A node of a caller's own kind.
class ForeignNode : public Content
{
public:
    explicit ForeignNode(bool& destroyed) : destroyed_(destroyed) {}

    std::shared_ptr<Content> Clone() const override { return std::make_shared<ForeignNode>(destroyed_); }

    ~ForeignNode() override { destroyed_ = true; }

    XML::ContentType GetType() const override { return static_cast<XML::ContentType>(99); }

private:
    bool& destroyed_;
};

TEST(XmlContent, ForeignKindsAreClonedReleasedAndOtherwisePassedOver)
{
    bool destroyed = false;
    {
        const auto element = Element::Create("e");
        element->AddChild(std::make_shared<ForeignNode>(destroyed));
        EXPECT_EQ(element->GetText(), "");
        EXPECT_THAT(element->GetChildren(), IsEmpty());
        EXPECT_FALSE(element->RemoveChild(""));
        const auto copy = std::static_pointer_cast<Element>(element->Clone());
        EXPECT_EQ(copy->GetContent().size(), 1u);
        EXPECT_FALSE(destroyed);
    }
    EXPECT_TRUE(destroyed);
}

TEST(XmlLifetime, NodesHeldElsewhereKeepTheirSubtrees)
{
    std::shared_ptr<Element> kept;
    {
        const auto root = Parse("<a><b><c>t</c></b><d/></a>")->GetRootElement();
        kept = root->GetChildren()[0];
    }
    ASSERT_EQ(kept->GetChildren().size(), 1u);
    EXPECT_EQ(kept->GetChildren()[0]->GetText(), "t");
}

TEST(XmlLifetime, SubtreeListedAtSeveralPlacesIsReleasedOnce)
{
    auto a = Element::Create("a");
    auto b = Element::Create("b");
    auto c = Element::Create("c");
    const std::weak_ptr<Element> watch = c;
    b->AddChild(c);
    b->AddChild(c);
    a->AddChild(b);
    a->AddChild(c);
    a->AddChild(b);
    c.reset();
    b.reset();
    EXPECT_FALSE(watch.expired());
    a.reset();
    EXPECT_TRUE(watch.expired());
}

TEST(XmlLifetime, TreesWithSharedPartsAreReleasedOnTwoThreads)
{
    for (int round = 0; round < 200; ++round) {
        auto shared = MixedContent();
        auto first = Element::Create("first");
        auto second = Element::Create("second");
        first->AddChild(shared);
        second->AddChild(shared);
        shared.reset();
        std::thread other([mine = std::move(second)]() mutable {
            EXPECT_EQ(mine->GetChildren()[0]->GetText(), "a  b");
            mine.reset();
        });
        EXPECT_EQ(first->GetChildren()[0]->GetText(), "a  b");
        first.reset();
        other.join();
    }
}

TEST(XmlDocument, RootIsTheSameObjectAsInTheContent)
{
    const auto document = Parse("<!--c--><a/>");
    EXPECT_EQ(document->GetContent().back(), document->GetRootElement());
}

TEST(XmlDocument, NodesOutliveTheirDocument)
{
    auto document = Parse("<a><b/></a>");
    const auto root = document->GetRootElement();
    const auto content = document->GetContent();
    document.reset();
    EXPECT_EQ(root->GetChildren()[0]->GetName(), "b");
    EXPECT_THAT(content, ElementsAre(root));
}

} // namespace
