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

/// Parsing and freeing a document, and writing it in compact form.

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
        RegisterWriting(name, text);
    }
    return true;
}();

} // namespace
