#include <KelInsInfra/xml/internal/Bytes.h>
#include <KelInsInfra/xml/internal/ElementLink.h>
#include <KelInsInfra/xml/internal/Printer.h>
#include <algorithm>
#include <functional>
#include <string_view>

namespace XML {
namespace {

std::string_view ReferenceFor(char c)
{
    switch (c) {
    case '&':
        return "&amp;";
    case '\'':
        return "&apos;";
    case '"':
        return "&quot;";
    case '<':
        return "&lt;";
    default:
        return "&gt;";
    }
}

} // namespace

void Printer::PrintDocument(const Document& document)
{
    PrintDeclaration();
    for (const auto& node : document.content_) {
        if (node->GetType() == ContentElement) {
            PrintElement(static_cast<const Element&>(*node), false);
            lastKind_ = ContentElement;
        } else {
            PrintLeaf(*node);
        }
    }
}

void Printer::PrintDeclaration()
{
    out_ += R"(<?xml version="1.0" encoding="UTF-8"?>)";
}

void Printer::PrintElement(const Element& element, bool noBreak)
{
    if (!OpenElement(element, noBreak))
        return;
    PrintContent(element);
    CloseElement(element);
}

void Printer::PrintContent(const Element& outermost)
{
    struct Level
    {
        const Element* element;
        const Element::Link* next;
    };

    std::vector<Level> levels{{&outermost, outermost.first_}}; // not the caller's stack: any depth is fine
    for (;;) {
        Level& level = levels.back();
        if (level.next == nullptr) {
            if (levels.size() == 1)
                return;
            CloseElement(*level.element);
            lastKind_ = ContentElement;
            levels.pop_back();
            continue;
        }
        const Content& node = *level.next->node;
        level.next = level.next->next;
        if (node.GetType() != ContentElement) {
            PrintLeaf(node);
            continue;
        }
        const auto& element = static_cast<const Element&>(node);
        if (OpenElement(element, false))
            levels.push_back({&element, element.first_});
        else
            lastKind_ = ContentElement;
    }
}

void Printer::PrintLeaf(const Content& node)
{
    if (node.GetType() == ContentComment)
        PrintComment(static_cast<const Comment&>(node).comment_);
    else if (node.GetType() == ContentText)
        PrintText(static_cast<const Text&>(node).text_);
}

/// False where the element is complete: it has no content.
bool Printer::OpenElement(const Element& element, bool noBreak)
{
    if (lastKind_ != ContentText && !noBreak)
        AddLineBreak();
    out_ += '<';
    out_ += element.name_;
    PrintAttributes(element.attributes_);
    if (element.first_ == nullptr) {
        out_ += "/>";
        return false;
    }
    out_ += '>';
    ++depth_;
    return true;
}

void Printer::CloseElement(const Element& element)
{
    --depth_;
    if (lastKind_ != ContentText)
        AddLineBreak();
    out_ += "</";
    out_ += element.name_;
    out_ += '>';
}

void Printer::PrintAttributes(const std::vector<Element::Attribute>& attributes)
{
    attributeStarts_.clear();
    for (const auto& [name, value] : attributes) {
        attributeStarts_.push_back(out_.size());
        out_ += ' ';
        out_ += name;
        out_ += "=\"";
        AppendEscaped(value);
        out_ += '"';
    }
    if (attributes.size() > 1)
        SortAttributes();
}

/// Sorts what has been written of the current tag's attributes, as text.
void Printer::SortAttributes()
{
    attributeTexts_.clear();
    const std::size_t begin = attributeStarts_.front();
    attributeStarts_.push_back(out_.size());
    for (std::size_t i = 0; i + 1 < attributeStarts_.size(); ++i)
        attributeTexts_.emplace_back(out_.data() + attributeStarts_[i], attributeStarts_[i + 1] - attributeStarts_[i]);
    if (std::is_sorted(attributeTexts_.begin(), attributeTexts_.end()))
        return;
    std::sort(attributeTexts_.begin(), attributeTexts_.end());
    sortedAttributes_.clear();
    for (const std::string_view text : attributeTexts_)
        sortedAttributes_ += text;
    out_.replace(begin, sortedAttributes_.size(), sortedAttributes_);
}

void Printer::PrintComment(const std::string& comment)
{
    if (lastKind_ != ContentText)
        AddLineBreak();
    out_ += "<!--";
    out_ += comment;
    lastKind_ = ContentComment;
    if (comment.find_first_of("\r\n") != std::string::npos)
        AddIndent(); // for a text that ends in a line break; kept for all that hold one
    out_ += "-->";
}

void Printer::PrintText(const std::string& text)
{
    if (IsBlank(text))
        return;
    AppendEscaped(text);
    lastKind_ = ContentText;
}

void Printer::AppendEscaped(std::string_view text)
{
    const char* at = text.data();
    const char* const end = at + text.size();
    for (;;) {
        const char* special = FindAny<'&', '\'', '"', '<', '>'>(at, end);
        out_.append(at, special);
        if (special == end)
            return;
        out_ += ReferenceFor(*special);
        at = special + 1;
    }
}

void Printer::AddIndent()
{
    if (indent_.empty())
        return; // not even the loop: trees may be a million levels deep
    for (std::uint32_t level = 1; level < depth_; ++level)
        out_ += indent_;
}

void Printer::AddLineBreak()
{
    out_ += '\n';
    AddIndent();
}

} // namespace XML
