#include <KelInsInfra/xml/Element.h>
#include <KelInsInfra/xml/Text.h>
#include <KelInsInfra/xml/internal/ElementLink.h>
#include <algorithm>
#include <map>
#include <string_view>
#include <utility>

namespace XML {

Content::~Content() = default;

namespace {

/// Up to here a linear search is cheaper than a map.
constexpr std::size_t kFewAttributes = 16;

auto FindAttribute(auto& attributes, std::string_view name)
{
    return std::find_if(attributes.begin(), attributes.end(),
                        [name](const Element::Attribute& attribute) { return attribute.first == name; });
}

void SetIn(std::vector<Element::Attribute>& attributes, const std::string& name, const std::string& value)
{
    const auto found = FindAttribute(attributes, name);
    if (found != attributes.end())
        found->second = value;
    else
        attributes.emplace_back(name, value);
}

/// What setting one attribute after the other gives, without a search through all for each.
std::vector<Element::Attribute> CopyUnique(const std::vector<Element::Attribute>& source)
{
    std::vector<Element::Attribute> result;
    result.reserve(source.size());
    if (source.size() <= kFewAttributes) {
        for (const auto& [name, value] : source)
            SetIn(result, name, value);
        return result;
    }
    std::map<std::string_view, std::size_t> places; // ordered: no choice of names makes it slow
    for (const auto& [name, value] : source) {
        const auto [entry, isNew] = places.try_emplace(name, result.size());
        if (isNew)
            result.emplace_back(name, value);
        else
            result[entry->second].second = value;
    }
    return result;
}

/// The element that a node is, if it is one.
const Element* AsElement(const Content& node)
{
    return node.GetType() == ContentElement ? static_cast<const Element*>(&node) : nullptr;
}

template <typename Link, typename Matches>
bool RemoveLinks(Link*& first, Link*& last, bool onlyFirst, const Matches& matches)
{
    bool removed = false;
    Link* previous = nullptr;
    for (Link* link = first; link != nullptr && !(removed && onlyFirst);) {
        Link* const next = link->next;
        if (matches(link->node)) {
            (previous == nullptr ? first : previous->next) = next;
            if (next == nullptr)
                last = previous;
            Link::Destroy(link);
            removed = true;
        } else {
            previous = link;
        }
        link = next;
    }
    return removed;
}

} // namespace

Element::Element(Token, std::string name) : name_(std::move(name)) {}

Element::Element(Element&& other) noexcept
    : name_(std::move(other.name_)),
      attributes_(std::move(other.attributes_)),
      first_(std::exchange(other.first_, nullptr)),
      last_(std::exchange(other.last_, nullptr))
{}

Element& Element::operator=(Element&& other) noexcept
{
    Element taken(std::move(other)); // first of all: releasing our content may release other
    name_.swap(taken.name_);
    attributes_.swap(taken.attributes_);
    std::swap(first_, taken.first_);
    std::swap(last_, taken.last_);
    return *this;
}

Element::~Element()
{
    RemoveAllContent();
}

std::shared_ptr<Element> Element::Create(const std::string& name)
{
    return std::make_shared<Element>(Token(), name);
}

std::shared_ptr<Element> Element::Create(std::string&& name)
{
    return std::make_shared<Element>(Token(), std::move(name));
}

std::shared_ptr<Content> Element::Clone() const
{
    struct Level
    {
        Element* copy;
        const Link* next; // of the source
    };

    const auto begin = [](const Element& source, Element& copy) {
        copy.attributes_ = CopyUnique(source.attributes_);
        return Level{&copy, source.first_};
    };
    const auto result = Create(name_);
    std::vector<Level> levels{begin(*this, *result)}; // not the caller's stack: any depth is fine
    while (!levels.empty()) {
        Level& level = levels.back();
        if (level.next == nullptr) {
            levels.pop_back();
            continue;
        }
        const Content& node = *level.next->node;
        level.next = level.next->next;
        const Element* source = AsElement(node);
        if (source == nullptr) {
            level.copy->AddChild(node.Clone());
            continue;
        }
        const auto copy = Create(source->name_);
        level.copy->AddChild(copy);
        levels.push_back(begin(*source, *copy));
    }
    return result;
}

ContentType Element::GetType() const
{
    return ContentElement;
}

std::string Element::GetName() const
{
    return name_;
}

void Element::SetName(const std::string& name)
{
    name_ = name;
}

std::vector<Element::Attribute> Element::GetAttributes() const
{
    return attributes_;
}

bool Element::HasAttribute(const std::string& name) const
{
    return FindAttribute(attributes_, name) != attributes_.end();
}

std::string Element::GetAttributeValue(const std::string& name, const std::string& defaultValue) const
{
    const auto found = FindAttribute(attributes_, name);
    return found != attributes_.end() ? found->second : defaultValue;
}

void Element::SetAttribute(const std::string& name, const std::string& value)
{
    SetIn(attributes_, name, value);
}

void Element::SetAttribute(const std::string& name, const char* value)
{
    SetAttribute(name, std::string(value));
}

void Element::SetAttribute(const std::string& name, bool value)
{
    SetAttribute(name, value ? "true" : "false");
}

bool Element::RemoveAttribute(const std::string& name)
{
    const auto found = FindAttribute(attributes_, name);
    if (found == attributes_.end())
        return false;
    attributes_.erase(found);
    return true;
}

void Element::AddChild(std::shared_ptr<Content> content)
{
    if (content != nullptr)
        Link::Append(*this, Link::Create(std::move(content)));
}

ContentList Element::GetContent() const
{
    ContentList content;
    for (const Link* link = first_; link != nullptr; link = link->next)
        content.push_back(link->node);
    return content;
}

std::vector<std::shared_ptr<Element>> Element::GetChildren() const
{
    std::vector<std::shared_ptr<Element>> children;
    for (const Link* link = first_; link != nullptr; link = link->next) {
        if (link->node->GetType() == ContentElement)
            children.push_back(std::static_pointer_cast<Element>(link->node));
    }
    return children;
}

std::string Element::GetText() const
{
    std::string text;
    for (const Link* link = first_; link != nullptr; link = link->next) {
        if (link->node->GetType() == ContentText)
            text += static_cast<const Text&>(*link->node).GetText();
    }
    return text;
}

std::string Element::GetTextTrim() const
{
    std::string text;
    for (const Link* link = first_; link != nullptr; link = link->next) {
        if (link->node->GetType() == ContentText)
            text += static_cast<const Text&>(*link->node).GetTextTrim();
    }
    return text;
}

/// Releases whole subtrees node by node, where their own destructors would recurse once per level: the content of every
/// element that nobody else holds is put before what is still to be released.
void Element::RemoveAllContent()
{
    Link* link = std::exchange(first_, nullptr);
    last_ = nullptr;
    while (link != nullptr) {
        if (link->node.use_count() == 1 && link->node->GetType() == ContentElement) {
            const std::shared_ptr<Content> node =
                link->node; // counting up orders us after the last other owner's release
            if (auto& element = static_cast<Element&>(*node); element.first_ != nullptr) {
                element.last_->next = link->next;
                link->next = std::exchange(element.first_, nullptr);
                element.last_ = nullptr;
            }
        }
        Link::Destroy(std::exchange(link, link->next));
    }
}

bool Element::RemoveChild(const std::string& name)
{
    return RemoveElements(name, true);
}

bool Element::RemoveChildren(const std::string& name)
{
    return RemoveElements(name, false);
}

bool Element::RemoveElements(const std::string& name, bool onlyFirst)
{
    return RemoveLinks(first_, last_, onlyFirst, [&name](const auto& node) {
        const Element* element = AsElement(*node);
        return element != nullptr && element->name_ == name; // GetName would copy, and could run out of memory half-way
    });
}

bool Element::RemoveContent(const std::shared_ptr<Content>& content)
{
    return RemoveLinks(first_, last_, true, [&content](const auto& node) { return node == content; });
}

} // namespace XML
