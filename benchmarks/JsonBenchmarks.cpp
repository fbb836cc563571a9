#include <KelInsInfra/json/Driver.h>
#include <benchmark/benchmark.h>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <iterator>
#include <nlohmann/json.hpp>
#include <rapidjson/document.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>
#include <string>

/// Parsing and freeing a document, walking through it, and writing it in compact form.

namespace {

std::string ReadFile(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

void Register(const std::string& name, std::size_t bytes, const std::function<bool()>& work)
{
    benchmark::RegisterBenchmark(name.c_str(), [bytes, work](benchmark::State& state) {
        for (auto _ : state) {
            if (!work())
                state.SkipWithError("it does not work");
        }
        state.SetBytesProcessed(static_cast<std::int64_t>(bytes) * state.iterations());
    });
}

void RegisterParsing(const std::string& name, const std::string& text)
{
    Register("JSON parse " + name + "/KelInsInfra", text.size(), [text] {
        JSON::Driver driver;
        return driver.Parse(text);
    });
    Register("JSON parse " + name + "/nlohmann", text.size(),
             [text] { return !nlohmann::json::parse(text).is_discarded(); });
    Register("JSON parse " + name + "/RapidJSON", text.size(), [text] {
        rapidjson::Document document;
        return !document.Parse(text.c_str(), text.size()).HasParseError();
    });
}

std::size_t Values(const JSON::Value& value)
{
    std::size_t count = 1;
    if (value.IsArray()) {
        for (const auto& element : value.GetArrayValues())
            count += Values(*element);
    } else if (value.IsObject()) {
        for (const JSON::POSITION member : value.GetObjectValues())
            count += Values(*member->second);
    }
    return count;
}

std::size_t Values(const nlohmann::json& value)
{
    std::size_t count = 1;
    for (const nlohmann::json& part : value) // a scalar but null has itself as its only part
        count += value.is_structured() ? Values(part) : 0;
    return count;
}

std::size_t Values(const rapidjson::Value& value)
{
    std::size_t count = 1;
    if (value.IsArray()) {
        for (const rapidjson::Value& element : value.GetArray())
            count += Values(element);
    } else if (value.IsObject()) {
        for (const auto& member : value.GetObject())
            count += Values(member.value);
    }
    return count;
}

/// With a walk through all values, for which our containers make vectors of what they hold.
void RegisterReading(const std::string& name, const std::string& text)
{
    const std::size_t expected = Values(nlohmann::json::parse(text));
    Register("JSON parse and walk " + name + "/KelInsInfra", text.size(), [=] {
        JSON::Driver driver;
        return driver.Parse(text) && Values(*driver.GetValue()) == expected;
    });
    Register("JSON parse and walk " + name + "/nlohmann", text.size(),
             [=] { return Values(nlohmann::json::parse(text)) == expected; });
    Register("JSON parse and walk " + name + "/RapidJSON", text.size(), [=] {
        rapidjson::Document document;
        return !document.Parse(text.c_str(), text.size()).HasParseError() && Values(document) == expected;
    });
}

void RegisterWriting(const std::string& name, const std::string& text)
{
    const auto driver = std::make_shared<JSON::Driver>();
    if (!driver->Parse(text))
        std::abort();
    Register("JSON write " + name + "/KelInsInfra", text.size(), [driver] { return !driver->GetJSON().empty(); });
    const auto document = std::make_shared<rapidjson::Document>();
    document->Parse(text.c_str(), text.size());
    Register("JSON write " + name + "/RapidJSON", text.size(), [document] {
        rapidjson::StringBuffer buffer;
        rapidjson::Writer<rapidjson::StringBuffer> writer(buffer);
        document->Accept(writer);
        return !std::string(buffer.GetString(), buffer.GetSize()).empty(); // a string, as ours gives
    });
}

/// That long strings take no longer for each byte than others.
void RegisterLongString()
{
    const std::string half(4U << 20U, 'x');
    const std::string name = "JSON parse of a string of 8 MiB";
    for (const auto& [contestant, text] : {std::pair("KelInsInfra", "[\"" + half + half + "\"]"),
                                           std::pair("two of 4 MiB", "[\"" + half + "\",\"" + half + "\"]")})
        Register(name + "/" + contestant, text.size(), [text = text] { return JSON::Driver().Parse(text); });
}

const bool kRegistered = [] {
    RegisterLongString();
    for (const std::string name : {"twitter", "citm_catalog", "canada", "config"}) {
        const std::string text = ReadFile(std::string(KELINS_BENCHMARK_DATA) + "/json/" + name + ".json");
        if (text.empty())
            continue; // the report shows what is missing
        RegisterParsing(name, text);
        RegisterReading(name, text);
        RegisterWriting(name, text);
    }
    return true;
}();

} // namespace
