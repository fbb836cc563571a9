// The parser beside the model of the tests; and printed text, which must come back as it was.

#include "tests/xml/ParserModel.h"

#include <KelInsInfra/xml/Comment.h>
#include <KelInsInfra/xml/Outputter.h>
#include <KelInsInfra/xml/Parser.h>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <sstream>

namespace {

void ExpectSame(const char* what, const std::string& one, const std::string& other)
{
    if (one == other)
        return;
    std::fprintf(stderr, "%s:\n%s\n--\n%s\n", what, one.c_str(), other.c_str());
    std::abort();
}

std::unique_ptr<XML::Document> Parse(const std::string& text)
{
    std::istringstream input(text);
    return XML::Parser(input).Parse();
}

/// A comment of several lines gains its indentation each time it is printed.
bool HasIndentedCommentOfLines(const XML::Element& element)
{
    const auto content = element.GetContent();
    return std::any_of(content.begin(), content.end(), [](const auto& node) {
        if (const auto* comment = dynamic_cast<const XML::Comment*>(node.get()))
            return comment->GetComment().find_first_of("\r\n") != std::string::npos;
        const auto* child = dynamic_cast<const XML::Element*>(node.get());
        return child != nullptr && HasIndentedCommentOfLines(*child);
    });
}

void ExpectPrintedTextComesBack(const XML::Document& document, const std::string& indent)
{
    XML::Outputter outputter;
    outputter.SetIndent(indent);
    const std::string once = outputter.ToString(document);
    ExpectSame("printed twice", once, outputter.ToString(*Parse(once)));
    if (const auto root = document.GetRootElement()) {
        const auto copy = std::static_pointer_cast<XML::Element>(root->Clone());
        const std::string printedCopy = outputter.ToString(*copy, true);
        ExpectSame("copy", printedCopy, outputter.ToString(*Parse(printedCopy)->GetRootElement(), true));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size)
{
    const std::string text(data, data + size);
    const std::string outcome = OutcomeOfParser(text);
    ExpectSame("parser and model", outcome, OutcomeOfModel(text));
    if (!outcome.starts_with("document "))
        return 0;
    const auto document = Parse(text);
    ExpectPrintedTextComesBack(*document, "");
    const auto root = document->GetRootElement();
    if (root == nullptr || !HasIndentedCommentOfLines(*root))
        ExpectPrintedTextComesBack(*document, "  ");
    return 0;
}
