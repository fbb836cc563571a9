// XML files that other people wrote, as Debian installs them: each either gives the tree that pugixml reads from it, or
// is refused for a reason that pugixml's view of it explains.

#include <KelInsInfra/xml/Comment.h>
#include <KelInsInfra/xml/Exception.h>
#include <KelInsInfra/xml/Outputter.h>
#include <KelInsInfra/xml/Parser.h>
#include <KelInsInfra/xml/Text.h>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iostream>
#include <iterator>
#include <map>
#include <pugixml.hpp>
#include <sstream>

namespace {

/// Packages shared-mime-info, fontconfig-config, iso-codes, docbook-xml, adwaita-icon-theme.
constexpr const char* kFolders[] = {
    "/usr/share/mime", "/usr/share/fontconfig/conf.avail", "/etc/fonts",
    "/usr/share/xml",  "/usr/share/icons/Adwaita",         "/usr/share/iso-codes",
};

std::vector<std::filesystem::path> FindFiles()
{
    std::vector<std::filesystem::path> files;
    for (const char* folder : kFolders) {
        std::error_code ignored;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(folder, ignored)) {
            const auto extension = entry.path().extension();
            if (entry.is_regular_file() && (extension == ".xml" || extension == ".svg" || extension == ".conf"))
                files.push_back(entry.path());
        }
    }
    return files;
}

std::string ReadFile(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

bool IsBlank(const std::string& text)
{
    return text.find_first_not_of(" \t\r\n") == std::string::npos;
}

std::string Describe(const XML::ContentList& content)
{
    std::string text;
    for (const auto& node : content) {
        if (const auto* element = dynamic_cast<const XML::Element*>(node.get())) {
            text += "<" + element->GetName();
            for (const auto& [name, value] : element->GetAttributes())
                text += " " + name + "='" + value + "'";
            text += ">" + Describe(element->GetContent()) + "</>";
        } else if (const auto* comment = dynamic_cast<const XML::Comment*>(node.get())) {
            text += "{" + comment->GetComment() + "}";
        } else {
            text += "'" + dynamic_cast<const XML::Text&>(*node).GetText() + "'";
        }
    }
    return text;
}

/// The same of pugixml's tree, with what our subset leaves out left out.
std::string Describe(const pugi::xml_node& parent)
{
    std::string text;
    for (const auto& node : parent.children()) {
        if (node.type() == pugi::node_element) {
            text += std::string("<") + node.name();
            for (const auto& attribute : node.attributes())
                text += std::string(" ") + attribute.name() + "='" + attribute.value() + "'";
            text += ">" + Describe(node) + "</>";
        } else if (node.type() == pugi::node_comment) {
            text += std::string("{") + node.value() + "}";
        } else if (node.type() == pugi::node_pcdata && !IsBlank(node.value())) {
            text += std::string("'") + node.value() + "'";
        }
    }
    return text;
}

bool HasName(const pugi::xml_node& parent, bool (*matches)(const std::string&))
{
    for (const auto& node : parent.children()) {
        if (matches(node.name()) || HasName(node, matches))
            return true;
        for (const auto& attribute : node.attributes()) {
            if (matches(attribute.name()))
                return true;
        }
    }
    return false;
}

/// Why our subset may refuse a file that is sound XML; empty where there is no reason.
std::string ReasonToRefuse(const pugi::xml_document& document, const std::string& text)
{
    for (const auto& node : document.children()) {
        if (node.type() == pugi::node_doctype && std::string(node.value()).find('[') != std::string::npos)
            return "internal subset in the document type declaration";
    }
    if (HasName(document, [](const std::string& name) { return name.find(':') != std::string::npos; }))
        return "colon in a name";
    if (text.find("<![CDATA[") != std::string::npos)
        return "CDATA section with '>' in it";
    return {};
}

TEST(XmlRealFiles, GiveTheTreeThatPugixmlReads)
{
    const auto files = FindFiles();
    if (files.size() < 200)
        GTEST_SKIP() << "only " << files.size() << " XML files found: install shared-mime-info, fontconfig-config, "
                     << "iso-codes, docbook-xml and adwaita-icon-theme";
    std::map<std::string, int> outcomes;
    for (const auto& path : files) {
        SCOPED_TRACE(path.string());
        const std::string text = ReadFile(path);
        pugi::xml_document expected;
        const auto options = pugi::parse_cdata | pugi::parse_escapes | pugi::parse_comments | pugi::parse_pi |
                             pugi::parse_declaration | pugi::parse_doctype;
        const auto result = expected.load_buffer(text.data(), text.size(), options, pugi::encoding_utf8);
        // a text without any element is an empty document for us
        const bool isSound = result || result.status == pugi::status_no_document_element;
        const std::string reason = isSound ? ReasonToRefuse(expected, text) : "pugixml refuses it too";
        std::istringstream input(text);
        try {
            const auto document = XML::Parser(input).Parse();
            ASSERT_TRUE(isSound);
            EXPECT_EQ(Describe(document->GetContent()), Describe(expected));
            XML::Outputter outputter;
            outputter.SetIndent("");
            const std::string printed = outputter.ToString(*document);
            std::istringstream again(printed);
            EXPECT_EQ(outputter.ToString(*XML::Parser(again).Parse()), printed);
            ++outcomes["accepted"];
        } catch (const XML::Exception& error) {
            EXPECT_NE(reason, "") << error.what();
            ++outcomes["refused: " + reason];
        }
    }
    for (const auto& [outcome, count] : outcomes)
        std::cout << count << " " << outcome << "\n";
    EXPECT_GE(outcomes["accepted"], 100);
}

} // namespace
