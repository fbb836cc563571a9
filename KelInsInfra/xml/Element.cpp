#include <KelInsInfra/xml/Element.h>
#include <KelInsInfra/xml/Text.h>
#include <algorithm>
#include <atomic>
#include <map>
#include <string_view>

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

bool IsElementNamed(const std::shared_ptr<Content>& node, const std::string& name)
{
    const Element* element = AsElement(*node);
    return element != nullptr && element->GetName() == name;
}

} // namespace

Element::Element(Token, std::string name) : name_(std::move(name)) {}

Element::Element(Element&& other) noexcept = default;

Element& Element::operator=(Element&& other) noexcept
{
    Element taken(std::move(other)); // first of all: releasing our content may release other
    name_.swap(taken.name_);
    attributes_.swap(taken.attributes_);
    content_.swap(taken.content_);
    return *this;
}

/// Releases the subtree node by node, where the members' own destructors would recurse once per level: the content of
/// every element that nobody else holds goes into the list of what is still to be released, in document order.
Element::~Element()
{
    while (!content_.empty()) {
        std::shared_ptr<Content>& node = content_.front();
        if (node.use_count() == 1 && node->GetType() == ContentElement) {
            std::atomic_thread_fence(std::memory_order_acquire); // see all that the last other owner did
            content_.splice(std::next(content_.begin()), static_cast<Element&>(*node).content_);
        }
        content_.pop_front();
    }
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
        const Element* source;
        Element* copy;
        ContentList::const_iterator next;
    };

    const auto begin = [](const Element& source, Element& copy) {
        copy.attributes_ = CopyUnique(source.attributes_);
        return Level{&source, &copy, source.content_.begin()};
    };
    const auto result = Create(name_);
    std::vector<Level> levels{begin(*this, *result)}; // not the caller's stack: any depth is fine
    while (!levels.empty()) {
        Level& level = levels.back();
        if (level.next == level.source->content_.end()) {
            levels.pop_back();
            continue;
        }
        const Content& node = **level.next++;
        const Element* source = AsElement(node);
        if (source == nullptr) {
            level.copy->content_.push_back(node.Clone());
            continue;
        }
        const auto copy = Create(source->name_);
        level.copy->content_.push_back(copy);
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
        content_.push_back(std::move(content));
}

ContentList Element::GetContent() const
{
    return content_;
}

std::vector<std::shared_ptr<Element>> Element::GetChildren() const
{
    std::vector<std::shared_ptr<Element>> children;
    for (const auto& node : content_) {
        if (node->GetType() == ContentElement)
            children.push_back(std::static_pointer_cast<Element>(node));
    }
    return children;
}

std::string Element::GetText() const
{
    std::string text;
    for (const auto& node : content_) {
        if (node->GetType() == ContentText)
            text += static_cast<const Text&>(*node).GetText();
    }
    return text;
}

std::string Element::GetTextTrim() const
{
    std::string text;
    for (const auto& node : content_) {
        if (node->GetType() == ContentText)
            text += static_cast<const Text&>(*node).GetTextTrim();
    }
    return text;
}

void Element::RemoveAllContent()
{
    content_.clear();
}

bool Element::RemoveChild(const std::string& name)
{
    const auto found = std::find_if(content_.begin(), content_.end(),
                                    [&name](const auto& node) { return IsElementNamed(node, name); });
    if (found == content_.end())
        return false;
    content_.erase(found);
    return true;
}

bool Element::RemoveChildren(const std::string& name)
{
    return content_.remove_if([&name](const auto& node) { return IsElementNamed(node, name); }) > 0;
}

bool Element::RemoveContent(const std::shared_ptr<Content>& content)
{
    const auto found = std::find(content_.begin(), content_.end(), content);
    if (found == content_.end())
        return false;
    content_.erase(found);
    return true;
}

} // namespace XML
