#include <KelInsInfra/json/Driver.h>
#include <KelInsInfra/json/internal/Escapes.h>
#include <KelInsInfra/json/internal/Make.h>
#include <algorithm>
#include <utility>

namespace JSON {
namespace {

bool IsContainer(const std::shared_ptr<Value>& value)
{
    return value && (value->IsArray() || value->IsObject());
}

std::string_view TextOf(const char* text)
{
    return text != nullptr ? std::string_view(text) : std::string_view();
}

std::shared_ptr<Item> MakeAlone(Type type, std::string_view text = {})
{
    Pool pool;
    return MakeItem(pool, type, text);
}

std::shared_ptr<Item> MakeString(std::string_view text, bool emptyIsNull)
{
    return MakeAlone(text.empty() && emptyIsNull ? Type::Null : Type::String, text);
}

} // namespace

Driver::Driver() = default;
Driver::~Driver() = default;

void Driver::ResetParser()
{
    open_.clear();
    root_.reset();
}

void Driver::NewArray()
{
    UseValue(CreateArray());
}

void Driver::NewObject()
{
    UseValue(CreateObject());
}

bool Driver::UseValue(std::shared_ptr<Value> value)
{
    if (!IsContainer(value))
        return false;
    ResetParser();
    Open(value);
    root_ = std::move(value);
    return true;
}

bool Driver::UseAsCurrentValue(const std::string& key)
{
    if (open_.empty() || !open_.back()->IsObject())
        return false;
    std::shared_ptr<Value> member = open_.back()->GetObjectValue(key);
    if (!IsContainer(member))
        return false;
    Open(std::move(member));
    return true;
}

void Driver::SetNextObjectKey(std::string key)
{
    nextKey_ = std::move(key);
}

bool Driver::Add(std::shared_ptr<Value> value)
{
    if (!value)
        return false;
    if (open_.empty()) {
        if (!IsContainer(value))
            return false;
        Open(value);
        root_ = std::move(value);
        return true;
    }
    if (open_.back()->IsArray())
        return AddToArray(std::move(value));
    if (nextKey_.empty())
        return false;
    return AddToObject(std::exchange(nextKey_, {}), std::move(value));
}

bool Driver::AddToArray(std::shared_ptr<Value> value)
{
    if (open_.empty() || !value || !open_.back()->IsArray())
        return false;
    auto& array = static_cast<Array&>(*open_.back());
    if (!IsContainer(value)) {
        array.Append(std::move(value));
        return true;
    }
    ReserveOpen();
    array.Append(value);
    OpenIfEmpty(std::move(value));
    return true;
}

bool Driver::AddToObject(std::string key, std::shared_ptr<Value> value)
{
    if (open_.empty() || !value || !open_.back()->IsObject())
        return false;
    auto& object = static_cast<Object&>(*open_.back());
    const std::shared_ptr<Value> container = IsContainer(value) ? value : nullptr;
    if (container)
        ReserveOpen();
    object.Insert(std::move(key), std::move(value));
    if (container)
        OpenIfEmpty(container);
    return true;
}

/// Makes room for one more, so that a value is either added and opened, or memory runs out before anything happens.
void Driver::ReserveOpen()
{
    if (open_.size() == open_.capacity())
        open_.reserve(std::max<std::size_t>(16, 2 * open_.size()));
}

void Driver::Open(std::shared_ptr<Value> container)
{
    ReserveOpen();
    open_.push_back(std::move(container));
}

/// A container that holds values already is only attached.
void Driver::OpenIfEmpty(std::shared_ptr<Value> container)
{
    if (container->GetSize() == 0)
        Open(std::move(container));
}

void Driver::CloseCurrentValue()
{
    if (!open_.empty())
        open_.pop_back();
}

std::shared_ptr<Value> Driver::GetValue() const
{
    return root_;
}

std::string Driver::GetJSON() const
{
    return root_ ? root_->GetJSON() : std::string();
}

std::shared_ptr<Object> Driver::CreateObject()
{
    Pool pool;
    return MakeContainer<Object>(pool);
}

std::shared_ptr<Array> Driver::CreateArray()
{
    Pool pool;
    return MakeContainer<Array>(pool);
}

std::shared_ptr<Item> Driver::CreateNumber(const std::string& text)
{
    return MakeAlone(Type::Number, text);
}

std::shared_ptr<Item> Driver::CreateNumber(const char* text)
{
    return MakeAlone(Type::Number, TextOf(text));
}

std::shared_ptr<Item> Driver::CreateString(const std::string& text, bool emptyIsNull)
{
    return MakeString(text, emptyIsNull);
}

std::shared_ptr<Item> Driver::CreateString(const char* text, bool emptyIsNull)
{
    return MakeString(TextOf(text), emptyIsNull);
}

std::shared_ptr<Item> Driver::CreateBoolean(bool value)
{
    return value ? CreateTrue() : CreateFalse();
}

std::shared_ptr<Item> Driver::CreateTrue()
{
    return MakeAlone(Type::True);
}

std::shared_ptr<Item> Driver::CreateFalse()
{
    return MakeAlone(Type::False);
}

std::shared_ptr<Item> Driver::CreateNull()
{
    return MakeAlone(Type::Null);
}

std::string Driver::RemoveJSONEscaping(const std::string& text)
{
    std::string result(text.size(), '\0');
    result.resize(static_cast<std::size_t>(Unescape(text, result.data()) - result.data()));
    return result;
}

} // namespace JSON
