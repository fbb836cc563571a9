#include <KelInsInfra/json/Driver.h>
#include <fstream>
#include <fuzz/JsonModel.h>
#include <gtest/gtest.h>
#include <iterator>
#include <sstream>
#include <string>
#include <tests/json/EchoCapture.h>
#include <vector>

namespace {

using JSON::Driver;

std::string ReadFile(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

bool Exists(const std::string& path)
{
    return std::ifstream(path, std::ios::binary).is_open();
}

/// As the table of outcomes writes bytes.
std::string Shown(const std::string& bytes)
{
    const char* const digits = "0123456789ABCDEF";
    std::string text;
    for (const char c : bytes.substr(0, bytes.size() > 400 ? 40 : bytes.size())) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte >= 32 && byte < 127 && c != '\\')
            text += c;
        else
            text.append("\\x").append(1, digits[byte / 16]).append(1, digits[byte % 16]);
    }
    if (bytes.size() > 400)
        return "#" + std::to_string(bytes.size()) + ":" + text + "...";
    return text.empty() ? "-" : text;
}

struct Outcome
{
    std::string file;
    std::string verdict;
    std::string echo;
    std::string json;
    std::string reason;
};

std::vector<Outcome> Outcomes()
{
    std::ifstream in(KELINS_JSON_SUITE_OUTCOMES);
    std::vector<Outcome> outcomes;
    for (std::string line; std::getline(in, line);) {
        if (line.empty() || line[0] == '#')
            continue;
        std::istringstream fields(line);
        Outcome outcome;
        std::getline(fields, outcome.file, '\t');
        std::getline(fields, outcome.verdict, '\t');
        std::getline(fields, outcome.echo, '\t');
        std::getline(fields, outcome.json, '\t');
        std::getline(fields, outcome.reason);
        outcomes.push_back(outcome);
    }
    return outcomes;
}

TEST(JsonSuite, EveryTextHasItsOutcome)
{
    const std::string folder = std::string(KELINS_TEST_DATA) + "/json-suite/";
    if (!Exists(folder + "y_array_empty.json"))
        GTEST_SKIP() << "no texts in " << folder;
    const std::vector<Outcome> outcomes = Outcomes();
    ASSERT_EQ(outcomes.size(), 318U);
    for (const Outcome& outcome : outcomes) {
        SCOPED_TRACE(outcome.file + ": " + outcome.reason);
        ASSERT_TRUE(Exists(folder + outcome.file));
        const std::string text = ReadFile(folder + outcome.file);
        Driver driver;
        const EchoCapture echo;
        const bool accepted = driver.Parse(text);
        EXPECT_EQ(accepted ? "accepted" : "refused", outcome.verdict);
        EXPECT_EQ(Shown(echo.Text()), outcome.echo);
        EXPECT_EQ(Shown(driver.GetJSON()), outcome.json);
        if (text.size() > 10000)
            continue; // too deep for the model
        const JsonModel::Outcome expected = JsonModel::Reader(text).Read();
        EXPECT_EQ(accepted, expected.accepted);
        EXPECT_EQ(echo.Text(), expected.echo);
        EXPECT_EQ(driver.GetJSON(), accepted ? JsonModel::Compact(*expected.root) : "");
    }
}

class JsonCorpus : public testing::TestWithParam<const char*>
{};

TEST_P(JsonCorpus, WrittenTextParsesToTheSameText)
{
    const std::string path = std::string(KELINS_TEST_DATA) + "/json/" + GetParam() + ".json";
    if (!Exists(path))
        GTEST_SKIP() << "no file " << path;
    const std::string text = ReadFile(path);
    Driver driver;
    const EchoCapture echo;
    ASSERT_TRUE(driver.Parse(text));
    const std::string written = driver.GetJSON();
    EXPECT_TRUE(written == JsonModel::Compact(*JsonModel::Reader(text).Read().root));
    EXPECT_TRUE(written == driver.GetValue()->Clone()->GetJSON());
    std::ostringstream indented;
    driver.GetValue()->WriteIndented(indented, 0);
    EXPECT_TRUE(indented.str() == JsonModel::Indented(*JsonModel::Reader(text).Read().root, 0));
    // "\u" stays as written: its backslash is escaped in the text, and stands for one again when that is read
    Driver again;
    ASSERT_TRUE(again.Parse(written));
    EXPECT_TRUE(again.GetJSON() == written);
    EXPECT_EQ(echo.Text().find_first_not_of('\r'), std::string::npos);
}

INSTANTIATE_TEST_SUITE_P(Json, JsonCorpus, testing::Values("twitter", "citm_catalog", "canada", "config"));

} // namespace
