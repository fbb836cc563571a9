#include "ParserModel.h"

#include <KelInsInfra/xml/Comment.h>
#include <KelInsInfra/xml/Exception.h>
#include <KelInsInfra/xml/Parser.h>
#include <KelInsInfra/xml/Text.h>
#include <cstdint>
#include <memory>
#include <optional>
#include <sstream>
#include <typeinfo>
#include <utility>
#include <vector>

namespace {

/// Length and bytes, so that no two trees look alike.
std::string Quoted(const std::string& text)
{
    return std::to_string(text.size()) + ":" + text;
}

std::string Describe(const XML::ContentList& content);

std::string Describe(const XML::Element& element)
{
    std::string text = "<" + Quoted(element.GetName());
    for (const auto& [name, value] : element.GetAttributes())
        text += " " + Quoted(name) + "=" + Quoted(value);
    return text + ">" + Describe(element.GetContent()) + "</>";
}

std::string Describe(const XML::ContentList& content)
{
    std::string text;
    for (const auto& node : content) {
        if (const auto* element = dynamic_cast<const XML::Element*>(node.get()))
            text += Describe(*element);
        else if (const auto* comment = dynamic_cast<const XML::Comment*>(node.get()))
            text += "comment " + Quoted(comment->GetComment());
        else
            text += "text " + Quoted(dynamic_cast<const XML::Text&>(*node).GetText());
    }
    return text;
}

struct Node
{
    enum Kind
    {
        Element,
        Comment,
        Text
    } kind;

    std::string text; // or the name
    std::vector<std::pair<std::string, std::string>> attributes;
    std::vector<std::unique_ptr<Node>> content;
};

using NodeList = std::vector<std::unique_ptr<Node>>;

std::string Describe(const NodeList& content)
{
    std::string text;
    for (const auto& node : content) {
        switch (node->kind) {
        case Node::Comment:
            text += "comment " + Quoted(node->text);
            break;
        case Node::Text:
            text += "text " + Quoted(node->text);
            break;
        case Node::Element:
            text += "<" + Quoted(node->text);
            for (const auto& [name, value] : node->attributes)
                text += " " + Quoted(name) + "=" + Quoted(value);
            text += ">" + Describe(node->content) + "</>";
        }
    }
    return text;
}

struct SyntaxError
{
    std::string message;
};

struct BadConversion
{};

/// Errors leave as exceptions; the line is that of the moment.
class Model
{
public:
    explicit Model(const std::string& input) : input_(input) {}

    std::string Outcome()
    {
        try {
            Parse();
            return "document " + Describe(top_) + (root_ != nullptr ? " root " + Quoted(root_->text) : "");
        } catch (const SyntaxError& error) {
            const std::string what = error.message + " (line " + std::to_string(line_) + ")\n";
            return "XML::Exception " + std::string(what.c_str()); // what() ends at a zero byte
        } catch (const BadConversion&) {
            return "std::range_error bad conversion";
        }
    }

private:
    void Parse()
    {
        if (input_.empty())
            return;
        while (More()) {
            Step();
            if (current_ == '<') {
                FlushText();
                Markup();
                textStart_ = position_;
                markupEnd_ = position_;
            } else if (current_ == '&' && textStart_) {
                gathered_ += input_.substr(*textStart_, position_ - 1 - *textStart_);
                GetNext();
                gathered_ += DecodeReference();
                textStart_ = position_;
            } else if (current_ == '\n') {
                ++line_;
            }
        }
        if (!open_.empty())
            throw SyntaxError{"Not all opened tags are closed (" + std::to_string(open_.size()) + " remaining)"};
        if (!markupEnd_)
            return;
        for (const char c : input_.substr(*markupEnd_)) {
            if (IsSpace(c))
                continue;
            if (c == '\0')
                throw SyntaxError{"Buffer too long. Make sure the file was opened in binary mode"};
            throw SyntaxError{"Text found outside of the root Element"};
        }
    }

    void FlushText()
    {
        if (textStart_)
            gathered_ += input_.substr(*textStart_, position_ - 1 - *textStart_);
        bool visible = false;
        for (const char c : gathered_)
            visible = visible || !IsSpace(c);
        if (visible && open_.empty())
            throw SyntaxError{"Text found outside of the root Element"};
        if (visible)
            Add(Node::Text, gathered_);
        gathered_.clear();
    }

    void Markup()
    {
        GetNext();
        if (IsNameStart(current_)) {
            OpeningTag();
        } else if (current_ == '/') {
            ClosingTag();
        } else if (current_ == '!') {
            if (input_.substr(position_, 2) == "--") {
                position_ += 2;
                Add(Node::Comment, ScanTo("-->"));
            } else {
                ScanTo(">");
            }
        } else if (current_ == '?') {
            ScanTo("?>");
        } else {
            throw SyntaxError{"Malformed opening tag"};
        }
    }

    void OpeningTag()
    {
        std::string name(1, current_);
        GetNext();
        name += ReadName();
        auto element = std::make_unique<Node>(Node{Node::Element, name, {}, {}});
        EatWhitespace();
        while (IsNameStart(current_))
            element->attributes.push_back(Attribute());
        Node* added = element.get();
        if (!open_.empty()) {
            open_.back()->content.push_back(std::move(element));
        } else {
            if (root_ != nullptr)
                throw SyntaxError{"Unexpected opening tag " + name + " after end of XML tree"};
            root_ = added;
            top_.push_back(std::move(element));
        }
        bool empty = false;
        if (current_ == '/') {
            GetNext();
            empty = true;
        }
        if (current_ != '>')
            throw SyntaxError{"Malformed opening tag: " + name + ". Missing closing >"};
        if (!empty)
            open_.push_back(added);
    }

    std::pair<std::string, std::string> Attribute()
    {
        std::string name(1, current_);
        GetNext();
        name += ReadName();
        EatWhitespace();
        if (current_ != '=')
            throw SyntaxError{"Malformed attribute: " + name};
        GetNext();
        EatWhitespace();
        const char delimiter = current_;
        if (delimiter != '"' && delimiter != '\'')
            throw SyntaxError{"Opening delimiter not found for attribute " + name};
        GetNext();
        std::string value;
        while (current_ != delimiter && current_ != '<') {
            if (current_ == '&') {
                GetNext();
                value += DecodeReference();
            } else {
                value += current_;
                if (current_ == '\n')
                    ++line_;
            }
            if (!More())
                break;
            Step();
        }
        if (current_ != delimiter)
            throw SyntaxError{"Closing delimiter not found for attribute " + name};
        GetNext();
        EatWhitespace();
        return {name, value};
    }

    void ClosingTag()
    {
        GetNext();
        if (!IsNameStart(current_))
            throw SyntaxError{"Malformed closing tag"};
        std::string name(1, current_);
        GetNext();
        name += ReadName();
        EatWhitespace();
        if (current_ != '>')
            throw SyntaxError{"Malformed closing tag: " + name};
        if (open_.empty())
            throw SyntaxError{"Closing tag for " + name + " is not open"};
        if (open_.back()->text != name)
            throw SyntaxError{"Unexpected closing tag: " + name + " instead of " + open_.back()->text};
        open_.pop_back();
    }

    /// What stands before the given end, which is stepped over.
    std::string ScanTo(const std::string& end)
    {
        std::string scanned;
        while (scanned.size() < end.size() || scanned.substr(scanned.size() - end.size()) != end) {
            GetNext();
            if (current_ == '\n')
                ++line_;
            scanned += current_;
        }
        return scanned.substr(0, scanned.size() - end.size());
    }

    std::string DecodeReference()
    {
        const std::size_t remaining = input_.size() - position_;
        const auto named = [&](char first, const std::string& rest, std::size_t needed) {
            if (current_ != first || remaining < needed || input_.substr(position_, rest.size()) != rest)
                return false;
            position_ += rest.size();
            return true;
        };
        if (named('q', "uot;", 5))
            return "\"";
        if (named('a', "pos;", 5))
            return "'";
        if (named('l', "t;", 3))
            return "<";
        if (named('g', "t;", 3))
            return ">";
        if (named('a', "mp;", 4))
            return "&";
        if (current_ != '#')
            throw SyntaxError{std::string("Unknown reference starting with ") + current_};
        GetNext();
        std::string digits = "0123456789";
        if (current_ == 'x') {
            GetNext();
            digits += "abcdef";
        }
        const auto digit = [&] {
            const char lower = digits.size() == 16 && current_ >= 'A' && current_ <= 'F'
                                   ? static_cast<char>(current_ - 'A' + 'a')
                                   : current_;
            return digits.find(lower);
        };
        std::uint32_t value = 0;
        for (;;) {
            if (digit() == std::string::npos) {
                if (current_ != ';' || value == 0)
                    throw SyntaxError{std::string("Unexpected character '") + current_ +
                                      "' found in character reference"};
                break;
            }
            value = static_cast<std::uint32_t>(value * digits.size() + digit());
            if (!More())
                break;
            Step();
        }
        return Utf8(value);
    }

    static std::string Utf8(std::uint32_t value)
    {
        const auto byte = [](std::uint32_t bits) { return static_cast<char>(static_cast<unsigned char>(bits)); };
        if (value > 0x10FFFF)
            throw BadConversion();
        if (value < 0x80)
            return {byte(value)};
        if (value < 0x800)
            return {byte(0xC0 + value / 64), byte(0x80 + value % 64)};
        if (value < 0x10000)
            return {byte(0xE0 + value / 4096), byte(0x80 + value / 64 % 64), byte(0x80 + value % 64)};
        return {byte(0xF0 + value / 262144), byte(0x80 + value / 4096 % 64), byte(0x80 + value / 64 % 64),
                byte(0x80 + value % 64)};
    }

    std::string ReadName()
    {
        std::string name;
        while (IsName(current_)) {
            name += current_;
            GetNext();
        }
        return name;
    }

    void EatWhitespace()
    {
        while (More() && IsSpace(current_)) {
            if (current_ == '\n')
                ++line_;
            Step();
        }
    }

    bool More() const { return position_ < input_.size(); }

    void Step() { current_ = input_[position_++]; }

    void GetNext()
    {
        if (!More())
            throw SyntaxError{"Unexpected end of file"};
        Step();
    }

    void Add(Node::Kind kind, const std::string& text)
    {
        (open_.empty() ? top_ : open_.back()->content).push_back(std::make_unique<Node>(Node{kind, text, {}, {}}));
    }

    static bool IsSpace(char c) { return c == 32 || c == 9 || c == 13 || c == 10; }

    static bool IsNameStart(char c)
    {
        const auto byte = static_cast<unsigned char>(c);
        for (const int excluded : {int('['), int('\\'), int(']'), int('^'), int('`'), int('{'), int('|'), int('}'),
                                   int('~'), 127, 0x97, 0xB7}) {
            if (byte == excluded)
                return false;
        }
        return byte > 64;
    }

    static bool IsName(char c)
    {
        static const std::string kAscii = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-._";
        return static_cast<unsigned char>(c) >= 0x80 || kAscii.find(c) != std::string::npos;
    }

    const std::string& input_;
    std::size_t position_ = 0;
    char current_ = 0;
    unsigned line_ = 1;
    std::optional<std::size_t> textStart_; // none before the first markup
    std::optional<std::size_t> markupEnd_;
    std::string gathered_;
    NodeList top_;
    Node* root_ = nullptr;
    std::vector<Node*> open_;
};

} // namespace

std::string OutcomeOfParser(const std::string& text)
{
    std::istringstream input(text);
    try {
        const auto document = XML::Parser(input).Parse();
        const auto root = document->GetRootElement();
        return "document " + Describe(document->GetContent()) +
               (root != nullptr ? " root " + Quoted(root->GetName()) : "");
    } catch (const XML::Exception& error) {
        return std::string("XML::Exception ") + error.what();
    } catch (const std::range_error& error) {
        return std::string("std::range_error ") + error.what();
    }
}

std::string OutcomeOfModel(const std::string& text)
{
    return Model(text).Outcome();
}
