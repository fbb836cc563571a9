#pragma once

#include <KelInsInfra/xml/Comment.h>
#include <KelInsInfra/xml/Document.h>
#include <KelInsInfra/xml/Element.h>
#include <KelInsInfra/xml/Text.h>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace XML {

/// One output of an Outputter: the text so far, and the state that decides about line breaks.
class Printer
{
public:
    explicit Printer(const std::string& indent) : indent_(indent) {}

    void PrintDocument(const Document& document);
    void PrintDeclaration();
    void PrintElement(const Element& element, bool noBreak);

    std::string Take() { return std::move(out_); }

private:
    void PrintContent(const Element& outermost);
    void PrintLeaf(const Content& node);
    bool OpenElement(const Element& element, bool noBreak);
    void CloseElement(const Element& element);
    void PrintAttributes(const std::vector<Element::Attribute>& attributes);
    void PrintComment(const std::string& comment);
    void PrintText(const std::string& text);
    void AppendEscaped(std::string_view text);
    void AddIndent();
    void AddLineBreak();

    const std::string& indent_;
    std::uint32_t depth_ = 1;               // 1 at the outermost level
    ContentType lastKind_ = ContentElement; // what was written last; at the start as after an element
    std::string out_;
    std::vector<const Element::Attribute*> attributes_; // of the current tag, to be sorted
};

} // namespace XML
