// What a header defines is compiled by each user for himself, and exported with the rest all the same.

#include <KelInsInfra/foundation/internal/WindowsApi.h>
#include <KelInsInfra/json/Driver.h>
#include <KelInsInfra/json/Item.h>
#include <gtest/gtest.h>

namespace {

using JSON::Driver;
using JSON::Value;
using Question = bool (*)(const Value*);

struct Exported
{
    const char* label;
    const char* name; // as the compiler decorates it
    bool (Value::*inlined)() const;

    friend void PrintTo(const Exported& c, std::ostream* out) { *out << c.label; }
};

constexpr Exported kExported[] = {
    {"IsObject", "_ZNK4JSON5Value8IsObjectEv", &Value::IsObject},
    {"IsArray", "_ZNK4JSON5Value7IsArrayEv", &Value::IsArray},
    {"IsNumber", "_ZNK4JSON5Value8IsNumberEv", &Value::IsNumber},
    {"IsString", "_ZNK4JSON5Value8IsStringEv", &Value::IsString},
    {"IsNull", "_ZNK4JSON5Value6IsNullEv", &Value::IsNull},
    {"IsTrue", "_ZNK4JSON5Value6IsTrueEv", &Value::IsTrue},
    {"IsFalse", "_ZNK4JSON5Value7IsFalseEv", &Value::IsFalse},
    {"IsBoolean", "_ZNK4JSON5Value9IsBooleanEv", &Value::IsBoolean},
    {"GetBoolean", "_ZNK4JSON5Value10GetBooleanEv", &Value::GetBoolean},
};

class JsonExportedInline : public testing::TestWithParam<Exported>
{};

TEST_P(JsonExportedInline, AnswersAsTheInlinedOne)
{
    const FARPROC address = ::GetProcAddress(::GetModuleHandleW(L"KelInsInfra.dll"), GetParam().name);
    ASSERT_NE(address, nullptr);
    const auto question = reinterpret_cast<Question>(reinterpret_cast<void*>(address));
    Driver driver;
    ASSERT_TRUE(driver.Parse(R"([{}, [], 1, "x", null, true, false])"));
    for (const auto& value : driver.GetValue()->GetArrayValues())
        EXPECT_EQ(question(value.get()), (value.get()->*GetParam().inlined)()) << value->GetTypeString();
}

INSTANTIATE_TEST_SUITE_P(Table, JsonExportedInline, testing::ValuesIn(kExported),
                         [](const auto& test) { return std::string(test.param.label); });

} // namespace
