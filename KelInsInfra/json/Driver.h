#pragma once

#include <KelInsInfra/json/Array.h>
#include <KelInsInfra/json/Item.h>
#include <KelInsInfra/json/Object.h>
#include <KelInsInfra/json/Value.h>
#include <cstdint>
#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

namespace JSON {

class Scanner;

/// Builds JSON documents, by hand or from text, and reads the members of objects.
///
/// By hand: Add(CreateObject()) opens a container, SetNextObjectKey(key) and Add(value) fill it, CloseCurrentValue()
/// closes it. Values stay alive after the driver. A value that was parsed and outlives its document keeps the piece of
/// memory in which it lies, up to 64 KiB of the document; its clone lies alone. One driver serves one thread at a time.
///
/// The building operations answer whether they did it; what they refuse changes nothing. They throw nothing but
/// std::bad_alloc. A container must not be added to itself, nor to a container inside it.
class Driver
{
public:
    /// No root, nothing open, no pending key.
    KELINS_API Driver();

    KELINS_API ~Driver();
    Driver(const Driver&) = delete;
    Driver& operator=(const Driver&) = delete;

    /// Reads one document: an object or an array, and nothing after it.
    ///
    /// Two parses must not run at once, not even on two drivers: all of them share one string buffer of the process.
    ///
    /// What it makes of the text:
    /// - an empty string as a value becomes null;
    /// - backslash escapes in keys and strings are resolved, but "\u" and its four digits stay as written;
    /// - of a repeated key only the last value stays, at the end of the order;
    /// - a member under an empty key is refused: a scalar is left out, and a container is not entered, so that its
    ///   members go to the object around it, its elements are refused there, and its closing brace or bracket closes
    ///   that object. What follows a root that was closed so is refused, but a container becomes the root in its place;
    /// - every byte that fits no rule is echoed to std::cout and skipped: carriage returns outside strings, a
    ///   byte-order mark, the slashes and letters of comments (what looks like a token in them is one), a backslash in
    ///   a string that begins no escape. Control bytes in strings are accepted;
    /// - numbers keep their text; leading zeros are accepted. One of 512 MiB or more stops the scanner.
    ///
    /// Parse of a string holds the former document until it returns, as the string may be a key in it: ResetParser
    /// first saves that memory.
    ///
    /// @return true: the root is there, and open for Add. False for a syntax error: the driver is empty; nothing is
    ///         printed for it. A pending key of SetNextObjectKey is kept; but each key of the text takes its place, and
    ///         one that no value has used is pending afterwards, whatever the result.
    /// @throws std::runtime_error  with the scanner's text when it cannot go on ("input in flex scanner failed" when
    ///         the stream breaks).
    /// @throws std::bad_alloc      when memory runs out. The driver is empty after either.
    KELINS_API bool Parse(std::istream& in);
    KELINS_API bool Parse(const std::string& text);

    /// Closes everything and releases the root. A pending key stays.
    KELINS_API void ResetParser();

    /// Starts a new document whose root is an empty array, and opens it.
    KELINS_API void NewArray();

    /// Starts a new document whose root is an empty object, and opens it.
    KELINS_API void NewObject();

    /// Makes an array or object the root and opens it. False, changing nothing, for an empty pointer or any other type.
    KELINS_API bool UseValue(std::shared_ptr<Value> value);

    /// Opens the member of the current object under exactly this key. False if the current container is no object, or
    /// the member is missing or neither an array nor an object.
    KELINS_API bool UseAsCurrentValue(const std::string& key);

    /// Names the member that the next Add into an object makes. The key is unescaped when it is inserted.
    KELINS_API void SetNextObjectKey(std::string key);

    /// Adds a value to the current container; an empty container is opened by it. Without a current container only an
    /// array or an object is taken, as the new root. In an object it needs a pending key that is not empty, which is
    /// then cleared.
    /// @return false for an empty pointer, and where the value cannot go.
    KELINS_API bool Add(std::shared_ptr<Value> value);

    /// Appends to the current container if that is an array, and opens an empty container.
    KELINS_API bool AddToArray(std::shared_ptr<Value> value);

    /// Inserts into the current container if that is an object, and opens an empty container. The key is unescaped (see
    /// RemoveJSONEscaping); a key that is there already gets the new value and moves to the end.
    KELINS_API bool AddToObject(std::string key, std::shared_ptr<Value> value);

    /// Closes the current container, if there is one.
    KELINS_API void CloseCurrentValue();

    /// The root; empty if there is none.
    KELINS_API std::shared_ptr<Value> GetValue() const;

    /// The compact text form of the root (Value::GetJSON); empty if there is none.
    KELINS_API std::string GetJSON() const;

    KELINS_API static std::shared_ptr<Object> CreateObject(); ///< an empty one
    KELINS_API static std::shared_ptr<Array> CreateArray();   ///< an empty one

    /// A number with this text, which is not checked. A null pointer counts as an empty text, here and below.
    KELINS_API static std::shared_ptr<Item> CreateNumber(const std::string& text);
    KELINS_API static std::shared_ptr<Item> CreateNumber(const char* text);

    /// A string with this text as it is (nothing is unescaped).
    /// @param emptyIsNull  gives null instead of an empty string.
    KELINS_API static std::shared_ptr<Item> CreateString(const std::string& text, bool emptyIsNull);
    KELINS_API static std::shared_ptr<Item> CreateString(const char* text, bool emptyIsNull);

    KELINS_API static std::shared_ptr<Item> CreateBoolean(bool value); ///< true or false
    KELINS_API static std::shared_ptr<Item> CreateTrue();              ///< true
    KELINS_API static std::shared_ptr<Item> CreateFalse();             ///< false
    KELINS_API static std::shared_ptr<Item> CreateNull();              ///< null

    /// The member under exactly this name; empty if value is empty, is no object or has none. Never throws.
    KELINS_API static std::shared_ptr<Value> FindAttribute(const std::shared_ptr<Value>& value,
                                                           const std::string& name);

    /// Whether FindAttribute would find one. Never throws.
    KELINS_API static bool HasAttribute(const std::shared_ptr<Value>& value, const std::string& name);

    /// Reads one member of an object into out, which keeps its value on any throw.
    ///
    /// @throws std::runtime_error  "JSON::Driver::GetAttribute - Value is null" if value is empty;
    ///         "JSON::Driver::GetAttribute - Empty field: <name>" if there is no such member;
    ///         "JSON::Driver::GetAttribute - <name> is not a Number. Actual type: <type>" (or " is not a Boolean", " is
    ///         not a String", " is neither an Array nor an Object") if the member is of another type than out takes. A
    ///         null, also one that was written as an empty string, fits none.
    /// @throws std::invalid_argument  and std::out_of_range as GetInteger, GetInteger64 and GetFloat do.
    KELINS_API static void GetAttribute(const std::shared_ptr<Value>& value, const std::string& name,
                                        std::int32_t& out);
    KELINS_API static void GetAttribute(const std::shared_ptr<Value>& value, const std::string& name,
                                        std::int64_t& out);
    KELINS_API static void GetAttribute(const std::shared_ptr<Value>& value, const std::string& name, float& out);
    KELINS_API static void GetAttribute(const std::shared_ptr<Value>& value, const std::string& name, bool& out);
    KELINS_API static void GetAttribute(const std::shared_ptr<Value>& value, const std::string& name, std::string& out);

    /// Reads a member that is an array or an object; as above in all else.
    KELINS_API static void GetAttribute(const std::shared_ptr<Value>& value, const std::string& name,
                                        std::shared_ptr<Value>& out);

    /// Resolves backslash escapes: quote, backslash, '/', b, f, n, r, t. Any other byte after a backslash keeps it, so
    /// "\u0041" stays as written; a single backslash at the very end is dropped.
    KELINS_API static std::string RemoveJSONEscaping(const std::string& text);

private:
    bool Run(Scanner& scanner);
    void ReserveOpen();
    void Open(std::shared_ptr<Value> container);
    void OpenIfEmpty(std::shared_ptr<Value> container);

    std::shared_ptr<Value> root_;
    std::vector<std::shared_ptr<Value>> open_; ///< the last one is the current container
    std::string nextKey_;
};

} // namespace JSON
