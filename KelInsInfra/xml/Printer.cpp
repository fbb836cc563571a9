#include <KelInsInfra/xml/internal/Bytes.h>
#include <KelInsInfra/xml/internal/ElementLink.h>
#include <KelInsInfra/xml/internal/Printer.h>
#include <algorithm>
#include <array>
#include <functional>
#include <string_view>

namespace XML {
namespace {

constexpr auto kReferences = [] {
    std::array<std::string_view, 256> table{}; // empty for what is written as it is
    table['&'] = "&amp;";
    table['\''] = "&apos;";
    table['"'] = "&quot;";
    table['<'] = "&lt;";
    table['>'] = "&gt;";
    return table;
}();

std::string_view ReferenceFor(char c)
{
    return kReferences[static_cast<unsigned char>(c)];
}

std::string Written(const Element::Attribute& attribute)
{
    std::string text = attribute.first + "=\"";
    for (const char c : attribute.second) {
        if (const std::string_view reference = ReferenceFor(c); !reference.empty())
            text += reference;
        else
            text += c;
    }
    return text += '"';
}

/// How the value goes on from a place in it, as far as it takes to tell it from another.
std::string_view NextWritten(const std::string& value, std::size_t at)
{
    if (at == value.size())
        return "\"";
    const std::string_view reference = ReferenceFor(value[at]);
    return reference.empty() ? std::string_view(value).substr(at, 1) : reference;
}

/// The order of the written forms (name="value", byte by byte), told without writing them.
bool IsWrittenBefore(const Element::Attribute* a, const Element::Attribute* b)
{
    const auto differAt = [](const std::string& one, const std::string& other) {
        return static_cast<std::size_t>(std::mismatch(one.begin(), one.end(), other.begin(), other.end()).first -
                                        one.begin());
    };
    const std::string& name = a->first;
    const std::string& otherName = b->first;
    if (!name.empty() && !otherName.empty() && name[0] != otherName[0]) // most often
        return static_cast<unsigned char>(name[0]) < static_cast<unsigned char>(otherName[0]);
    std::size_t at = differAt(name, otherName);
    if (at == name.size() && at == otherName.size()) {
        at = differAt(a->second, b->second);
        return NextWritten(a->second, at) < NextWritten(b->second, at);
    }
    const auto byte = [at](const std::string& text) {
        return static_cast<unsigned char>(at < text.size() ? text[at] : '=');
    };
    if (byte(name) != byte(otherName))
        return byte(name) < byte(otherName);
    return Written(*a) < Written(*b); // a name with a '=' in it: no parser makes one
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
    attributes_.clear();
    for (const Element::Attribute& attribute : attributes)
        attributes_.push_back(&attribute);
    if (!std::is_sorted(attributes_.begin(), attributes_.end(), IsWrittenBefore))
        std::sort(attributes_.begin(), attributes_.end(), IsWrittenBefore);
    for (const Element::Attribute* attribute : attributes_) {
        out_ += ' ';
        out_ += attribute->first;
        out_ += "=\"";
        AppendEscaped(attribute->second);
        out_ += '"';
    }
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
        const char* special = at;
        if (end - at >= 16)
            special = FindAny<'&', '\'', '"', '<', '>'>(at, end);
        else
            while (special != end && ReferenceFor(*special).empty())
                ++special;
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
