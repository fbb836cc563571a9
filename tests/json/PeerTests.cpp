#include <KelInsInfra/json/Driver.h>
#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <string>
#include <tests/json/EchoCapture.h>

/// Another parser's view of the same files. What may differ: "\u" stays as written, an empty string is null.

namespace {

using Peer = nlohmann::ordered_json;

/// The text with its "\u" sequences decoded, by the peer itself.
std::string Decoded(const std::string& text)
{
    if (text.find("\\u") == std::string::npos)
        return text;
    std::string quoted = JSON::Value::EscapeString(text); // the backslash of each "\\u" is a pair now: one of them goes
    for (std::size_t i = quoted.find("\\\\u"); i != std::string::npos; i = quoted.find("\\\\u", i + 1))
        quoted.erase(i, 1);
    return Peer::parse(quoted).get<std::string>();
}

std::size_t compared = 0;

void ExpectSame(const JSON::Value& value, const Peer& peer)
{
    ++compared;
    if (peer.is_object()) {
        ASSERT_TRUE(value.IsObject());
        ASSERT_EQ(value.GetSize(), peer.size());
        auto position = value.GetObjectValues().begin();
        for (const auto& [key, child] : peer.items()) {
            EXPECT_EQ(Decoded((*position)->first), key);
            ExpectSame(*(*position++)->second, child);
        }
    } else if (peer.is_array()) {
        ASSERT_TRUE(value.IsArray());
        ASSERT_EQ(value.GetSize(), peer.size());
        for (std::size_t i = 0; i < peer.size(); ++i)
            ExpectSame(*value.GetArrayValues()[i], peer[i]);
    } else if (peer.is_string()) {
        const auto& text = peer.get_ref<const std::string&>();
        EXPECT_EQ(text.empty() ? value.IsNull() : value.IsString(), true);
        EXPECT_EQ(Decoded(value.GetString()), text);
    } else if (peer.is_number()) {
        ASSERT_TRUE(value.IsNumber());
        EXPECT_EQ(std::strtod(value.GetString().c_str(), nullptr), peer.get<double>());
        if (peer.is_number_integer()) {
            EXPECT_EQ(value.GetInteger64(), peer.get<std::int64_t>());
        }
    } else {
        EXPECT_EQ(value.IsTrue(), peer.is_boolean() && peer.get<bool>());
        EXPECT_EQ(value.IsFalse(), peer.is_boolean() && !peer.get<bool>());
        EXPECT_EQ(value.IsNull(), peer.is_null());
    }
}

class JsonPeer : public testing::TestWithParam<const char*>
{};

TEST_P(JsonPeer, SeesTheSame)
{
    const std::string path = std::string(KELINS_TEST_DATA) + "/json/" + GetParam() + ".json";
    std::ifstream in(path, std::ios::binary);
    if (!in)
        GTEST_SKIP() << "no file " << path;
    JSON::Driver driver;
    const EchoCapture echo;
    ASSERT_TRUE(driver.Parse(in));
    std::ifstream once(path, std::ios::binary);
    compared = 0;
    ExpectSame(*driver.GetValue(), Peer::parse(once));
    EXPECT_GT(compared, 10U);
}

INSTANTIATE_TEST_SUITE_P(Json, JsonPeer, testing::Values("twitter", "citm_catalog", "canada", "config"));

} // namespace
