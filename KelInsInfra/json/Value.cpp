#include <KelInsInfra/json/Array.h>
#include <KelInsInfra/json/Item.h>
#include <KelInsInfra/json/Object.h>
#include <KelInsInfra/json/internal/TextOutput.h>
#include <KelInsInfra/json/internal/Writer.h>
#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <stdexcept>

namespace JSON {
namespace {

bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}

/// Reads a text as the standard library's stoi and stoll do, with the same rules whatever the locale.
/// @param name  of that function, for the exception's text.
template <typename Integer>
Integer ToInteger(std::string_view text, const std::string& name)
{
    text.remove_prefix(std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size()));
    if (text.size() > 1 && text[0] == '+' && IsDigit(text[1]))
        text.remove_prefix(1);
    Integer result = 0;
    const std::errc error = std::from_chars(text.data(), text.data() + text.size(), result).ec;
    if (error == std::errc::invalid_argument)
        throw std::invalid_argument("invalid " + name + " argument");
    if (error == std::errc::result_out_of_range)
        throw std::out_of_range(name + " argument out of range");
    return result;
}

float ToFloat(const std::string& text)
{
    const int outerError = std::exchange(errno, 0);
    char* end = nullptr;
    const float result = std::strtof(text.c_str(), &end);
    const int error = std::exchange(errno, outerError);
    if (end == text.c_str())
        throw std::invalid_argument("invalid stof argument");
    if (error == ERANGE)
        throw std::out_of_range("stof argument out of range");
    return result;
}

} // namespace

std::uint64_t Value::GetSize() const
{
    return 0;
}

std::string Value::GetTypeString() const
{
    switch (type_) {
    case Type::Object:
        return "Object";
    case Type::Array:
        return "Array";
    case Type::Number:
        return "Number";
    case Type::String:
        return "String";
    case Type::True:
        return "True";
    case Type::False:
        return "False";
    case Type::Null:
        return "Null";
    }
    return "???";
}

std::shared_ptr<Value> Value::GetArrayValue(std::int32_t index) const
{
    if (!IsArray() || index < 0)
        return nullptr;
    const auto elements = static_cast<const Array&>(*this).Elements();
    const auto place = static_cast<std::size_t>(index);
    return place < elements.size() ? elements[place] : nullptr;
}

const std::vector<std::shared_ptr<Value>>& Value::GetArrayValues() const
{
    if (!IsArray())
        throw std::runtime_error("JSON::Value::GetArrayValues - Value is not an Array. Actual type: " +
                                 GetTypeString());
    return static_cast<const Array&>(*this).Vector();
}

std::shared_ptr<Value> Value::GetObjectValue(const std::string& key) const
{
    const POSITION member = IsObject() ? static_cast<const Object&>(*this).Find(key) : nullptr;
    return member != nullptr ? member->second : nullptr;
}

const std::vector<POSITION>& Value::GetObjectValues() const
{
    if (!IsObject())
        throw std::runtime_error("JSON::Value::GetObjectValues - Value is not an Object. Actual type: " +
                                 GetTypeString());
    return static_cast<const Object&>(*this).Order();
}

std::string Value::GetString() const
{
    return IsNumber() || IsString() ? std::string(static_cast<const Item&>(*this).Text()) : std::string();
}

std::int32_t Value::GetInteger() const
{
    return IsNumber() ? ToInteger<std::int32_t>(static_cast<const Item&>(*this).Text(), "stoi") : -1;
}

std::int64_t Value::GetInteger64() const
{
    return IsNumber() ? ToInteger<std::int64_t>(static_cast<const Item&>(*this).Text(), "stoll") : -1;
}

float Value::GetFloat() const
{
    return IsNumber() ? ToFloat(GetString()) : -1.0F;
}

std::string Value::GetJSON() const
{
    return CompactText(*this);
}

std::string Value::EscapeString(const std::string& text)
{
    StringOutput output;
    output.PutEscaped(text);
    return output.Take();
}

} // namespace JSON
