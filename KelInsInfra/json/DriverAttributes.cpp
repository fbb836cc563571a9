#include <KelInsInfra/json/Driver.h>
#include <stdexcept>

namespace JSON {
namespace {

constexpr char kOperation[] = "JSON::Driver::GetAttribute - ";

std::shared_ptr<Value> ExistingAttribute(const std::shared_ptr<Value>& value, const std::string& name)
{
    if (!value)
        throw std::runtime_error(std::string(kOperation) + "Value is null");
    std::shared_ptr<Value> member = value->GetObjectValue(name);
    if (!member)
        throw std::runtime_error(std::string(kOperation) + "Empty field: " + name);
    return member;
}

/// @param expectation  such as " is not a Number".
void ExpectType(bool fits, const Value& member, const std::string& name, const char* expectation)
{
    if (!fits)
        throw std::runtime_error(kOperation + name + expectation + ". Actual type: " + member.GetTypeString());
}

std::shared_ptr<Value> NumberAttribute(const std::shared_ptr<Value>& value, const std::string& name)
{
    std::shared_ptr<Value> member = ExistingAttribute(value, name);
    ExpectType(member->IsNumber(), *member, name, " is not a Number");
    return member;
}

} // namespace

std::shared_ptr<Value> Driver::FindAttribute(const std::shared_ptr<Value>& value, const std::string& name)
{
    return value ? value->GetObjectValue(name) : nullptr;
}

bool Driver::HasAttribute(const std::shared_ptr<Value>& value, const std::string& name)
{
    return FindAttribute(value, name) != nullptr;
}

void Driver::GetAttribute(const std::shared_ptr<Value>& value, const std::string& name, std::int32_t& out)
{
    out = NumberAttribute(value, name)->GetInteger();
}

void Driver::GetAttribute(const std::shared_ptr<Value>& value, const std::string& name, std::int64_t& out)
{
    out = NumberAttribute(value, name)->GetInteger64();
}

void Driver::GetAttribute(const std::shared_ptr<Value>& value, const std::string& name, float& out)
{
    out = NumberAttribute(value, name)->GetFloat();
}

void Driver::GetAttribute(const std::shared_ptr<Value>& value, const std::string& name, bool& out)
{
    const std::shared_ptr<Value> member = ExistingAttribute(value, name);
    ExpectType(member->IsBoolean(), *member, name, " is not a Boolean");
    out = member->IsTrue();
}

void Driver::GetAttribute(const std::shared_ptr<Value>& value, const std::string& name, std::string& out)
{
    const std::shared_ptr<Value> member = ExistingAttribute(value, name);
    ExpectType(member->IsString(), *member, name, " is not a String");
    out = member->GetString();
}

void Driver::GetAttribute(const std::shared_ptr<Value>& value, const std::string& name, std::shared_ptr<Value>& out)
{
    std::shared_ptr<Value> member = ExistingAttribute(value, name);
    ExpectType(member->IsArray() || member->IsObject(), *member, name, " is neither an Array nor an Object");
    out = std::move(member);
}

} // namespace JSON
