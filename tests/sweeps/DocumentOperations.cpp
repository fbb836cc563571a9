#include "Operation.h"

#include <KelInsInfra/json/Driver.h>
#include <KelInsInfra/xml/Comment.h>
#include <KelInsInfra/xml/Element.h>
#include <KelInsInfra/xml/Outputter.h>
#include <KelInsInfra/xml/Parser.h>
#include <KelInsInfra/xml/Text.h>
#include <sstream>

namespace Sweeps {
namespace {

using JSON::Driver;

const std::string kLong = "a text that is longer than small ones";

std::string JsonText()
{
    return R"({")" + kLong + R"(":[1,2.5,"a text with \n an escape in it",true,null,{"x":{}}],"y":")" +
           std::string(300, 'y') + R"(","i":7,"b":false})";
}

std::string ReadMembers(const std::shared_ptr<JSON::Value>& value)
{
    std::int32_t integer = 0;
    std::int64_t integer64 = 0;
    float real = 0;
    bool truth = true;
    std::string text;
    std::shared_ptr<JSON::Value> array;
    Driver::GetAttribute(value, "i", integer);
    Driver::GetAttribute(value, "i", integer64);
    Driver::GetAttribute(value, "i", real);
    Driver::GetAttribute(value, "b", truth);
    Driver::GetAttribute(value, "y", text);
    Driver::GetAttribute(value, kLong, array);
    const auto& item = array->GetArrayValues().front();
    return text + std::to_string(integer + integer64) + InWords(truth) + item->GetString() + item->GetTypeString() +
           std::to_string(item->GetInteger() + item->GetInteger64()) + std::to_string(item->GetFloat()) +
           array->GetArrayValue(0)->GetJSON() + value->GetObjectValue("y")->GetString() +
           value->GetObjectValues().front()->first + InWords(Driver::HasAttribute(value, "z")) +
           InWords(Driver::FindAttribute(value, "z") == nullptr) + JSON::Value::EscapeString(kLong + "\n\"") +
           Driver::RemoveJSONEscaping(kLong + R"(\n\")") + InWords(value->IsObject()) + InWords(item->GetBoolean());
}

std::string BuildByHand()
{
    Driver driver;
    driver.NewArray();
    driver.NewObject();
    driver.SetNextObjectKey(kLong);
    bool all = driver.Add(Driver::CreateArray());
    all &= driver.Add(Driver::CreateNumber("1"));
    all &= driver.AddToArray(Driver::CreateNumber(kLong));
    all &= driver.Add(Driver::CreateString(kLong, false));
    all &= driver.Add(Driver::CreateString("x", true));
    driver.CloseCurrentValue();
    all &= driver.AddToObject(kLong + "2", Driver::CreateBoolean(true));
    all &= driver.AddToObject("t", Driver::CreateTrue());
    all &= driver.AddToObject("f", Driver::CreateFalse());
    all &= driver.AddToObject("n", Driver::CreateNull());
    all &= driver.AddToObject("o", Driver::CreateObject());
    all &= driver.UseValue(driver.GetValue());
    all &= driver.UseAsCurrentValue(kLong);
    std::string text = driver.GetJSON() + InWords(all);
    driver.ResetParser();
    return text + driver.GetJSON();
}

void AddJson(std::vector<Operation>& operations)
{
    operations.push_back({.name = "JsonParse",
                          .exports = {"JSON::Driver::Driver", "JSON::Driver::~Driver", "JSON::Driver::Parse",
                                      "JSON::Driver::GetValue", "JSON::Driver::GetJSON"},
                          .run =
                              [](const Place&) {
                                  Driver driver;
                                  std::istringstream stream(JsonText());
                                  std::string text = InWords(driver.Parse(JsonText()));
                                  text += driver.GetJSON();
                                  text += InWords(driver.Parse(stream));
                                  return text + driver.GetJSON() + driver.GetValue()->GetJSON();
                              },
                          .texts = {"input in flex scanner failed"}});
    operations.push_back(
        {.name = "JsonMembers",
         .exports = {"JSON::Driver::GetAttribute", "JSON::Driver::HasAttribute", "JSON::Driver::FindAttribute",
                     "JSON::Driver::RemoveJSONEscaping", "JSON::Value::"},
         .run = [](const Place&) {
             Driver driver;
             if (!driver.Parse(JsonText()))
                 return std::string("not parsed");
             return ReadMembers(driver.GetValue());
         }});
    operations.push_back({.name = "JsonBuild",
                          .exports = {"JSON::Driver::Add", "JSON::Driver::CloseCurrentValue", "JSON::Driver::Create",
                                      "JSON::Driver::New", "JSON::Driver::SetNextObjectKey", "JSON::Driver::Use",
                                      "JSON::Driver::ResetParser"},
                          .run = [](const Place&) { return BuildByHand(); }});
}

std::string XmlText()
{
    return "<?xml version=\"1.0\"?><!-- " + kLong + " --><root a=\"" + kLong + "\" b='2'>" + kLong +
           "<child>text &amp; more of it, and long</child><child/><c><!--x--></c></root>";
}

std::string ParseAndPrint()
{
    std::istringstream stream(XmlText());
    XML::Parser parser(stream);
    const std::unique_ptr<XML::Document> document = parser.Parse();
    XML::Outputter outputter;
    outputter.SetIndent("  ");
    return outputter.ToString(*document) + std::to_string(document->GetContent().size());
}

/// To a stream of the caller's that reports nothing but its state.
std::string PrintToStream()
{
    std::istringstream stream(XmlText());
    const std::unique_ptr<XML::Document> document = XML::Parser(stream).Parse();
    std::ostringstream output;
    XML::Outputter().ToFile(*document, output);
    XML::Outputter().ToFile(*document->GetRootElement(), output);
    if (!output)
        throw std::bad_alloc();
    return output.str();
}

std::string EditTree()
{
    auto root = XML::Element::Create(std::string("root with a name longer than small ones"));
    root->SetAttribute(kLong, kLong);
    root->SetAttribute("b", true);
    root->SetAttribute("c", kLong.c_str());
    const auto text = XML::Text::Create(" " + kLong);
    text->SetText(text->GetText() + " ");
    const auto comment = XML::Comment::Create(kLong);
    comment->SetComment(comment->GetComment() + ".");
    root->AddChild(text);
    root->AddChild(comment);
    const std::string childName = kLong + " child";
    root->AddChild(XML::Element::Create(childName));
    root->AddChild(XML::Element::Create(childName));
    const auto copy = std::static_pointer_cast<XML::Element>(root->Clone());
    std::string result =
        XML::Outputter().ToString(*copy, true) + root->GetText() + root->GetTextTrim() + text->GetTextTrim() +
        root->GetAttributeValue(kLong, "") + root->GetName() +
        std::to_string(root->GetAttributes().size() + root->GetContent().size() + root->GetChildren().size()) +
        InWords(root->HasAttribute("b"));
    copy->SetName(kLong);
    result += InWords(root->RemoveAttribute("b")) + InWords(root->RemoveContent(comment)) +
              InWords(root->RemoveChild(childName)) + InWords(root->RemoveChildren(childName));
    *root = std::move(*copy);
    XML::Element moved(std::move(*root));
    result += std::to_string(moved.GetType() + text->GetType() + comment->GetType()) + moved.GetName();
    moved.AddChild(text->Clone());
    moved.AddChild(comment->Clone());
    moved.RemoveAllContent();
    return result;
}

void AddXml(std::vector<Operation>& operations)
{
    operations.push_back(
        {.name = "XmlParse",
         .exports = {"XML::Parser::", "XML::Document::", "XML::Outputter::SetIndent", "XML::Outputter::ToString"},
         .run = [](const Place&) { return ParseAndPrint(); },
         .texts = {"Cannot read XML data"}});
    operations.push_back({.name = "XmlToStream",
                          .exports = {"XML::Outputter::ToFile"},
                          .run = [](const Place&) { return PrintToStream(); },
                          .texts = {"Cannot read XML data"}});
    operations.push_back({.name = "XmlTree",
                          .exports = {"XML::Element::", "XML::Text::", "XML::Comment::", "XML::Content::",
                                      "typeinfo for", "vtable for", "XML::Outputter::ToString"},
                          .run = [](const Place&) { return EditTree(); }});
}

} // namespace

void AddDocumentOperations(std::vector<Operation>& operations)
{
    AddJson(operations);
    AddXml(operations);
}

} // namespace Sweeps
