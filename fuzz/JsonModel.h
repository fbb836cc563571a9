#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// What JSON::Driver has to do, once more: written apart from it, as plainly as possible and slow, so that the two can
/// be compared on any text.
namespace JsonModel {

struct Node;
using Pointer = std::shared_ptr<Node>;

/// A value. kind: '{', '[', '0' for a number, '"' for a string, 't', 'f', 'n'.
struct Node
{
    char kind;
    std::string text;
    std::vector<std::pair<std::string, Pointer>> children; ///< the keys of an array's elements are empty
};

inline std::string Unescaped(std::string_view text)
{
    const std::string_view letters = "\"\\/bfnrt";
    const std::string_view bytes = "\"\\/\b\f\n\r\t";
    std::string result;
    bool afterBackslash = false;
    for (const char c : text) {
        if (!afterBackslash) {
            if (c == '\\')
                afterBackslash = true;
            else
                result += c;
            continue;
        }
        afterBackslash = false;
        const std::size_t known = letters.find(c);
        if (c != '\0' && known != std::string_view::npos)
            result += bytes[known];
        else
            result.append("\\").append(1, c);
    }
    return result;
}

inline std::string Escaped(const std::string& text)
{
    std::string result = "\"";
    for (const char c : text) {
        switch (c) {
        case '"':
            result += "\\\"";
            break;
        case '\\':
            result += "\\\\";
            break;
        case '\b':
            result += "\\b";
            break;
        case '\f':
            result += "\\f";
            break;
        case '\n':
            result += "\\n";
            break;
        case '\r':
            result += "\\r";
            break;
        case '\t':
            result += "\\t";
            break;
        default:
            result += c;
        }
    }
    return result + "\"";
}

/// One token at a time, from the longest match of the rules.
class Scanner
{
public:
    explicit Scanner(std::string_view text) : rest_(text) {}

    /// The token's first character ('"' for a string, '0' for a number, 0 at the end), its text in Text().
    char Next()
    {
        while (!rest_.empty()) {
            const char c = rest_.front();
            if (c == '"') {
                rest_.remove_prefix(1);
                return String() ? '"' : '\0';
            }
            for (const std::string_view word : {"{", "}", "[", "]", ",", ":", "true", "false", "null"}) {
                if (rest_.substr(0, word.size()) == word)
                    return Token(c, word.size());
            }
            if (const std::size_t length = NumberLength())
                return Token('0', length);
            if (c != ' ' && c != '\t' && c != '\n')
                echo_ += c;
            rest_.remove_prefix(1);
        }
        return '\0';
    }

    const std::string& Text() const { return text_; }

    const std::string& Echo() const { return echo_; }

private:
    char Token(char kind, std::size_t length)
    {
        text_ = rest_.substr(0, length);
        rest_.remove_prefix(length);
        return kind;
    }

    static bool Is(char c, std::string_view set) { return c != '\0' && set.find(c) != std::string_view::npos; }

    char At(std::size_t index) const { return index < rest_.size() ? rest_[index] : '\0'; }

    std::size_t Digits(std::size_t from) const
    {
        std::size_t end = from;
        while (Is(At(end), "0123456789"))
            ++end;
        return end - from;
    }

    std::size_t NumberLength() const
    {
        std::size_t end = At(0) == '-' ? 1 : 0;
        if (Digits(end) == 0)
            return 0;
        end += Digits(end);
        if (At(end) == '.' && Digits(end + 1) > 0)
            end += 1 + Digits(end + 1);
        if (Is(At(end), "eE")) {
            const std::size_t sign = Is(At(end + 1), "+-") ? 1 : 0;
            if (Digits(end + 1 + sign) > 0)
                end += 1 + sign + Digits(end + 1 + sign);
        }
        return end;
    }

    std::size_t EscapeLength() const
    {
        if (Is(At(1), "\"\\/bfnrt"))
            return 2;
        if (At(1) != 'u')
            return 0;
        for (std::size_t i = 2; i < 6; ++i) {
            if (!Is(At(i), "0123456789abcdefABCDEF"))
                return 0;
        }
        return 6;
    }

    /// Whether the string ends.
    bool String()
    {
        text_.clear();
        while (!rest_.empty()) {
            std::size_t length = 1;
            if (rest_.front() == '"') {
                rest_.remove_prefix(1);
                return true;
            }
            if (rest_.front() == '\\') {
                length = EscapeLength();
                if (length == 0) {
                    echo_ += '\\';
                    rest_.remove_prefix(1);
                    continue;
                }
            }
            text_ += rest_.substr(0, length);
            rest_.remove_prefix(length);
        }
        return false;
    }

    std::string_view rest_;
    std::string text_;
    std::string echo_;
};

/// The building protocol.
class Builder
{
public:
    bool Add(const Pointer& value)
    {
        const bool container = value->kind == '{' || value->kind == '[';
        if (open_.empty()) {
            if (!container)
                return false;
            open_.push_back(value);
            root_ = value;
            return true;
        }
        Node& current = *open_.back();
        if (current.kind == '{') {
            if (nextKey_.empty())
                return false;
            const std::string key = Unescaped(nextKey_);
            nextKey_.clear();
            for (auto child = current.children.begin(); child != current.children.end(); ++child) {
                if (child->first == key) {
                    current.children.erase(child);
                    break;
                }
            }
            current.children.emplace_back(key, value);
        } else {
            current.children.emplace_back("", value);
        }
        if (container && value->children.empty())
            open_.push_back(value);
        return true;
    }

    void Close()
    {
        if (!open_.empty())
            open_.pop_back();
    }

    void SetNextKey(const std::string& key) { nextKey_ = key; }

    const std::string& NextKey() const { return nextKey_; }

    const Pointer& Root() const { return root_; }

    const std::vector<Pointer>& Open() const { return open_; }

private:
    Pointer root_;
    std::vector<Pointer> open_;
    std::string nextKey_;
};

struct Outcome
{
    bool accepted;
    Pointer root;
    std::string echo;
    std::string nextKey; ///< what stays pending
};

/// The grammar, read from left to right. What is open by the brackets is not what is open in the builder.
class Reader
{
public:
    explicit Reader(std::string_view text) : scanner_(text) {}

    Outcome Read()
    {
        const bool accepted = Document();
        return {accepted, accepted ? builder_.Root() : nullptr, scanner_.Echo(), builder_.NextKey()};
    }

private:
    bool Document()
    {
        token_ = scanner_.Next();
        if (token_ != '{' && token_ != '[')
            return false;
        do {
            if (!Step())
                return false;
            token_ = scanner_.Next();
        } while (!brackets_.empty());
        return token_ == '\0';
    }

    /// Takes the current token, with the key that it may need before it.
    bool Step()
    {
        if (!brackets_.empty() && !Separator())
            return false;
        switch (token_) {
        case '{':
        case '[':
            builder_.Add(std::make_shared<Node>(Node{token_, {}, {}}));
            brackets_.push_back(token_);
            fresh_ = true;
            return true;
        case '}':
        case ']':
            if (brackets_.back() != (token_ == '}' ? '{' : '[') || !mayClose_)
                return false;
            builder_.Close();
            brackets_.pop_back();
            fresh_ = false;
            return true;
        case '0':
        case 't':
        case 'f':
        case 'n':
            builder_.Add(std::make_shared<Node>(Node{token_, token_ == '0' ? scanner_.Text() : "", {}}));
            fresh_ = false;
            return true;
        case '"': {
            const std::string text = Unescaped(scanner_.Text());
            builder_.Add(std::make_shared<Node>(Node{text.empty() ? 'n' : '"', text, {}}));
            fresh_ = false;
            return true;
        }
        default:
            return false;
        }
    }

    /// Steps over what stands before a value: a comma between two, a key in an object. Afterwards the token is the
    /// value's, or a closing one where that may be.
    bool Separator()
    {
        mayClose_ = true;
        if (token_ == '}' || token_ == ']')
            return true;
        mayClose_ = false;
        if (!fresh_) {
            if (token_ != ',')
                return false;
            token_ = scanner_.Next();
        }
        if (brackets_.back() == '[')
            return true;
        if (token_ != '"')
            return false;
        const std::string key = scanner_.Text();
        if (scanner_.Next() != ':')
            return false;
        builder_.SetNextKey(key);
        token_ = scanner_.Next();
        return true;
    }

    Scanner scanner_;
    Builder builder_;
    std::string brackets_;
    char token_ = '\0';
    bool fresh_ = false;    ///< nothing stands in the innermost brackets yet
    bool mayClose_ = false; ///< no comma or key came before the token
};

/// The compact form. Recursive: for documents of modest depth.
inline std::string Compact(const Node& node)
{
    switch (node.kind) {
    case '0':
        return node.text;
    case '"':
        return Escaped(node.text);
    case 't':
        return "true";
    case 'f':
        return "false";
    case 'n':
        return "null";
    default:
        break;
    }
    std::string result(1, node.kind);
    for (const auto& [key, child] : node.children) {
        if (result.size() > 1)
            result += ", ";
        if (node.kind == '{')
            result += Escaped(key) + ": ";
        result += Compact(*child);
    }
    return result + (node.kind == '{' ? "}" : "]");
}

/// The indented form. Recursive as well.
inline std::string Indented(const Node& node, std::size_t level)
{
    if (node.kind == '"')
        return std::string("\"").append(node.text).append("\"");
    if (node.kind != '{' && node.kind != '[')
        return Compact(node);
    std::string result(1, node.kind);
    for (const auto& [key, child] : node.children) {
        result.append(result.size() > 1 ? ",\n" : "\n").append(4 * (level + 1), ' ');
        if (node.kind == '{')
            result.append("\"").append(key).append("\": ");
        result += Indented(*child, level + 1);
    }
    if (!node.children.empty())
        result.append("\n").append(4 * level, ' ');
    return result + (node.kind == '{' ? "}" : "]");
}

/// The copy: keys are unescaped once more, and may become equal by that.
inline Pointer Clone(const Node& node)
{
    const auto copy = std::make_shared<Node>(Node{node.kind, node.text, {}});
    for (const auto& [storedKey, child] : node.children) {
        const std::string key = node.kind == '{' ? Unescaped(storedKey) : std::string();
        if (node.kind == '{') {
            std::erase_if(copy->children, [&key = key](const auto& other) { return other.first == key; });
        }
        copy->children.emplace_back(key, Clone(*child));
    }
    return copy;
}

} // namespace JsonModel
