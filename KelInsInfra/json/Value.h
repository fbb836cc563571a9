#pragma once

#include <KelInsInfra/Export.h>
#include <cstdint>
#include <iosfwd>
#include <memory>
#include <string>
#include <utility>
#include <vector>

/// JSON documents: values, a driver that builds them by hand or from text, and their text forms.
///
/// Text is UTF-8 by convention; bytes are kept and written as they come, never checked or converted.
namespace JSON {

class Value;

/// What a value is. True and false are two types of their own.
enum class Type : std::int32_t
{
    Object = 0,
    Array = 1,
    Number = 2,
    String = 3,
    True = 4,
    False = 5,
    Null = 6,
};

/// One member of an object: position->first is the key, position->second the value. Valid as long as the object lives,
/// whatever is added to it meanwhile.
using POSITION = const std::pair<const std::string, std::shared_ptr<Value>>*;

/// Any JSON value: an Item (every scalar), an Array or an Object. Made by JSON::Driver only, held by shared pointers.
///
/// The readers below work on every type; asked for what a value is not, they answer with the stated substitute. Values
/// may be read on several threads at once, and released on any. Nesting is limited by memory alone: the stack
/// that releasing takes is that of 64 levels at most, and nothing else here recurses. A weak pointer to an inner value
/// must not be locked while another thread releases the document.
class Value
{
public:
    virtual ~Value() = default; // the order of these five is part of the binary interface

    /// A deep copy. Every key passes through Driver::RemoveJSONEscaping once more on the way: a key that still holds a
    /// backslash sequence differs in the copy.
    virtual std::shared_ptr<Value> Clone() const = 0;

    /// Writes the compact text form, which GetJSON returns. Stops early once the stream has failed.
    virtual void Write(std::ostream& out) const = 0;

    /// Number of elements of an array, of members of an object; 0 for every other type.
    virtual std::uint64_t GetSize() const;

    /// Writes the indented text form: line feeds, four blanks a level. Neither keys nor strings are escaped, so the
    /// text is for reading: a quote, a backslash or a line feed in a string makes it no JSON. Stops early once the
    /// stream has failed.
    /// @param level  of the value itself; 0 for a document. Its first line is never indented.
    virtual void WriteIndented(std::ostream& out, std::int32_t level) const = 0;

    Value(const Value&) = delete;
    Value& operator=(const Value&) = delete;

    /// What this is.
    KELINS_API_INLINE Type GetType() const { return type_; }

    /// The name of the type ("Object", "Array", "Number", "String", "True", "False", "Null"); "???" for any other.
    KELINS_API std::string GetTypeString() const;

    /// Whether this is an object.
    KELINS_API_INLINE bool IsObject() const { return type_ == Type::Object; }

    /// Whether this is an array.
    KELINS_API_INLINE bool IsArray() const { return type_ == Type::Array; }

    /// Whether this is a number.
    KELINS_API_INLINE bool IsNumber() const { return type_ == Type::Number; }

    /// Whether this is a string.
    KELINS_API_INLINE bool IsString() const { return type_ == Type::String; }

    /// Whether this is null.
    KELINS_API_INLINE bool IsNull() const { return type_ == Type::Null; }

    /// Whether this is true.
    KELINS_API_INLINE bool IsTrue() const { return type_ == Type::True; }

    /// Whether this is false.
    KELINS_API_INLINE bool IsFalse() const { return type_ == Type::False; }

    /// Whether this is true or false.
    KELINS_API_INLINE bool IsBoolean() const { return IsTrue() || IsFalse(); }

    /// Whether this is true. False, null, a string and all others give false.
    KELINS_API_INLINE bool GetBoolean() const { return IsTrue(); }

    /// The element at an index from 0; empty where there is none, and for any type but Array. Never throws.
    KELINS_API std::shared_ptr<Value> GetArrayValue(std::int32_t index) const;

    /// The elements in order. The vector is made by the first call, as a second owner of the elements; it stays the
    /// same one, and what is added to the array later shows in it.
    /// @throws std::runtime_error  "JSON::Value::GetArrayValues - Value is not an Array. Actual type: <type>"
    /// @throws std::bad_alloc      when memory runs out for the vector.
    KELINS_API const std::vector<std::shared_ptr<Value>>& GetArrayValues() const;

    /// The member under exactly this key (it is not unescaped); empty where there is none, and for any type but Object.
    KELINS_API std::shared_ptr<Value> GetObjectValue(const std::string& key) const;

    /// The members in the order of their insertion; a key given again has moved to the end. The vector is made
    /// by the first call; it stays the same one.
    /// @throws std::runtime_error  "JSON::Value::GetObjectValues - Value is not an Object. Actual type: <type>"
    /// @throws std::bad_alloc      when memory runs out for the vector.
    KELINS_API const std::vector<POSITION>& GetObjectValues() const;

    /// The text of a string, or of a number as it was written ("1.0E+2" stays so); empty for any other type.
    KELINS_API std::string GetString() const;

    /// The number as std::stoi (base 10) reads its text: leading white space is skipped, reading stops where it no
    /// longer fits ("1.5" and "1e3" give 1). -1 for any type but Number.
    /// @throws std::invalid_argument  "invalid stoi argument"
    /// @throws std::out_of_range      "stoi argument out of range"
    KELINS_API std::int32_t GetInteger() const;

    /// The same in 64 bits, as std::stoll.
    /// @throws std::invalid_argument  "invalid stoll argument"
    /// @throws std::out_of_range      "stoll argument out of range"
    KELINS_API std::int64_t GetInteger64() const;

    /// The number as std::stof reads its text, with the decimal point of the C library's locale. -1.0 for any type but
    /// Number.
    /// @throws std::invalid_argument  "invalid stof argument"
    /// @throws std::out_of_range      "stof argument out of range"
    KELINS_API float GetFloat() const;

    /// The compact text form, in one line: {"a": [1, 2.50], "b": "x\ty", "c": null}. Keys and strings are escaped with
    /// EscapeString; numbers keep their written form.
    KELINS_API std::string GetJSON() const;

    /// The text in double quotes, with quote, backslash, backspace, form feed, line feed, carriage return and tab
    /// escaped; every other byte, control bytes included, as it is. "\u" sequences are never made.
    KELINS_API static std::string EscapeString(const std::string& text);

protected:
    /// For the three classes of this library.
    explicit Value(Type type) : type_(type) {}

private:
    const Type type_;
};

} // namespace JSON
