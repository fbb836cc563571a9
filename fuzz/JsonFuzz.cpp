#include <KelInsInfra/json/Driver.h>
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fuzz/JsonModel.h>
#include <iostream>
#include <sstream>

/// Any text: the library and a model of it must agree on everything that can be seen.

namespace {

constexpr std::size_t kDeepest = 1000; ///< the model recurses

void Expect(bool holds, const char* what)
{
    if (holds)
        return;
    std::fprintf(stderr, "The library and the model differ in: %s\n", what);
    std::abort();
}

std::string Indented(const JSON::Value& value)
{
    std::ostringstream out;
    value.WriteIndented(out, 0);
    return out.str();
}

bool Same(const JSON::Value& value, const JsonModel::Node& node)
{
    switch (node.kind) {
    case '0':
        return value.IsNumber() && value.GetString() == node.text;
    case '"':
        return value.IsString() && value.GetString() == node.text;
    case 't':
        return value.IsTrue();
    case 'f':
        return value.IsFalse();
    case 'n':
        return value.IsNull();
    default:
        break;
    }
    if (value.GetSize() != node.children.size() || value.IsArray() != (node.kind == '[') ||
        value.IsObject() != (node.kind == '{'))
        return false;
    for (std::size_t i = 0; i < node.children.size(); ++i) {
        const auto& [key, child] = node.children[i];
        const auto element =
            node.kind == '[' ? value.GetArrayValue(static_cast<std::int32_t>(i)) : value.GetObjectValue(key);
        const bool asked = node.children.size() % 2 == 0; // the others are written and cloned without a vector
        if (node.kind == '[' && asked && value.GetArrayValues()[i] != element)
            return false;
        if (!element || (node.kind == '{' && value.GetObjectValues()[i]->first != key) || !Same(*element, *child))
            return false;
    }
    return true;
}

void CompareTrees(const JSON::Driver& driver, const JsonModel::Node& root)
{
    const std::string compact = JsonModel::Compact(root);
    Expect(Same(*driver.GetValue(), root), "the tree");
    Expect(driver.GetJSON() == compact, "the compact text");
    Expect(Indented(*driver.GetValue()) == JsonModel::Indented(root, 0), "the indented text");
    const JsonModel::Pointer clone = JsonModel::Clone(root);
    Expect(driver.GetValue()->Clone()->GetJSON() == JsonModel::Compact(*clone), "the clone");
}

/// What a parse leaves pending shows in the next object made by hand.
void ComparePendingKey(JSON::Driver& driver, const std::string& key)
{
    driver.NewObject();
    Expect(driver.Add(JSON::Driver::CreateTrue()) == !key.empty(), "whether a key is pending");
    if (!key.empty())
        Expect(driver.GetValue()->GetObjectValues()[0]->first == JsonModel::Unescaped(key), "the pending key");
}

class Capture
{
public:
    Capture() : former_(std::cout.rdbuf(gathered_.rdbuf())) {}

    ~Capture() { std::cout.rdbuf(former_); }

    std::string Text() const { return gathered_.str(); }

private:
    std::ostringstream gathered_;
    std::streambuf* former_;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text(reinterpret_cast<const char*>(data), size);
    if (static_cast<std::size_t>(std::count(text.begin(), text.end(), '[') +
                                 std::count(text.begin(), text.end(), '{')) > kDeepest)
        return 0;
    const JsonModel::Outcome expected = JsonModel::Reader(text).Read();

    JSON::Driver driver;
    std::string echo;
    bool accepted = false;
    {
        const Capture capture;
        accepted = driver.Parse(text);
        echo = capture.Text();
    }
    Expect(accepted == expected.accepted, "acceptance");
    Expect(echo == expected.echo, "the echoed bytes");
    Expect((driver.GetValue() != nullptr) == accepted, "whether there is a root");
    if (accepted)
        CompareTrees(driver, *expected.root);
    ComparePendingKey(driver, expected.nextKey);
    Expect(JSON::Driver::RemoveJSONEscaping(text) == JsonModel::Unescaped(text), "unescaping");
    Expect(JSON::Value::EscapeString(text) == JsonModel::Escaped(text), "escaping");
    return 0;
}
