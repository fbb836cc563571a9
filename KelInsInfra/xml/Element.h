#pragma once

#include <KelInsInfra/xml/Content.h>
#include <string>
#include <utility>
#include <vector>

namespace XML {

/// An element: a name, attributes in their order, and child nodes in theirs.
///
/// Names are compared byte for byte; a prefix is part of the name. SetAttribute keeps names unique, but the parser
/// keeps an attribute that is written twice: every function that takes a name then means the first.
///
/// Attributes are found by linear search. Any nesting depth is fine: destroying and cloning do not recurse. As with the
/// containers of the standard library, a tree must not be released on one thread while another one locks weak pointers
/// to its nodes.
class KELINS_API Element final : public Content
{
    struct Token // only Create can make one, yet std::make_shared can call the constructor
    {
        explicit Token() = default;
    };

public:
    using Attribute = std::pair<std::string, std::string>; ///< name and value, unescaped

    Element(Token, std::string name);             ///< what Create calls: nobody else has a Token
    Element(Element&& other) noexcept;            ///< other is left without name, attributes and content
    Element& operator=(Element&& other) noexcept; ///< other may be a descendant of this element
    ~Element() override;

    /// An element without attributes and content.
    static std::shared_ptr<Element> Create(const std::string& name);
    static std::shared_ptr<Element> Create(std::string&& name);

    /// A deep copy. Of attributes with one name the copy has one: in the place of the first, with the last value.
    std::shared_ptr<Content> Clone() const override;
    ContentType GetType() const override; ///< ContentElement

    std::string GetName() const;           ///< with its prefix, if it has one
    void SetName(const std::string& name); ///< takes any text as it is

    std::vector<Attribute> GetAttributes() const;     ///< copies, in their order
    bool HasAttribute(const std::string& name) const; ///< whether there is one, even with an empty value

    /// The attribute's value, possibly empty; defaultValue only where there is no such attribute.
    std::string GetAttributeValue(const std::string& name, const std::string& defaultValue) const;

    /// Replaces the value in its place, or adds the attribute at the end. A bool is stored as "true" or "false", and so
    /// is whatever else turns into one: write numbers with std::to_string. A null pointer is not allowed.
    void SetAttribute(const std::string& name, const std::string& value);
    void SetAttribute(const std::string& name, const char* value);
    void SetAttribute(const std::string& name, bool value);

    /// @return false where there is no such attribute.
    bool RemoveAttribute(const std::string& name);

    /// Appends a node, whatever its kind and wherever else it stands. An empty pointer is ignored. An element that is
    /// made its own descendant is never released.
    void AddChild(std::shared_ptr<Content> content);

    /// A new list of the same nodes.
    ContentList GetContent() const;

    /// The child elements; not their descendants.
    std::vector<std::shared_ptr<Element>> GetChildren() const;

    /// The child texts joined, without a separator; nothing of comments, child elements and their texts.
    std::string GetText() const;

    /// The same with each child text trimmed on its own (Text::GetTextTrim): "a " and " b" give "ab".
    std::string GetTextTrim() const;

    void RemoveAllContent(); ///< removes elements, texts and comments; attributes stay

    /// Removes the first child element of that name.
    /// @return false where there is none.
    bool RemoveChild(const std::string& name);

    /// Removes all child elements of that name.
    /// @return false where there is none.
    bool RemoveChildren(const std::string& name);

    /// Removes the first entry that is this very node; an equal one does not count.
    /// @return false where there is none.
    bool RemoveContent(const std::shared_ptr<Content>& content);

private:
    bool RemoveElements(const std::string& name, bool onlyFirst);

    friend class Printer;
    friend class Parser;

    struct Link; // one entry of the content

    std::string name_;
    std::vector<Attribute> attributes_;
    Link* first_ = nullptr;
    Link* last_ = nullptr;
};

} // namespace XML
