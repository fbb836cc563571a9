// Heap memory that a parsed document holds for each of its nodes, beside its peers. The "bytes" of each run is what the
// report shows; the time says nothing.

#include <KelInsInfra/json/Driver.h>
#include <KelInsInfra/xml/Parser.h>
#include <benchmark/benchmark.h>
#include <fstream>
#include <functional>
#include <iterator>
#include <malloc.h>
#include <memory>
#include <nlohmann/json.hpp>
#include <pugixml.hpp>
#include <rapidjson/document.h>
#include <sstream>
#include <string>
#include <tinyxml2.h>

namespace {

std::string ReadFile(const std::string& path)
{
    std::ifstream in(KELINS_BENCHMARK_DATA "/" + path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

std::size_t BytesInUse()
{
    const struct mallinfo2 heap = ::mallinfo2();
    return heap.uordblks + heap.hblkhd;
}

/// @param parse  gives something that holds the document.
void Register(const std::string& name, std::size_t nodes, const std::function<std::shared_ptr<void>()>& parse)
{
    const auto run = [nodes, parse](benchmark::State& state) {
        for (auto _ : state) {
            const std::size_t before = BytesInUse();
            const std::shared_ptr<void> document = parse();
            state.counters["bytes"] = static_cast<double>(BytesInUse() - before) / static_cast<double>(nodes);
        }
    };
    benchmark::RegisterBenchmark(name.c_str(), run)->Iterations(1);
}

std::size_t CountNodes(const nlohmann::json& value)
{
    std::size_t count = 1;
    if (value.is_structured())
        for (const auto& element : value)
            count += CountNodes(element);
    return count;
}

void RegisterJson(const std::string& file)
{
    const std::string text = ReadFile("json/" + file + ".json");
    if (text.empty())
        return; // the report shows what is missing
    const std::string work = "Memory per JSON value, " + file;
    const std::size_t nodes = CountNodes(nlohmann::json::parse(text));
    Register(work + "/KelInsInfra", nodes, [text] {
        auto driver = std::make_shared<JSON::Driver>();
        driver->Parse(text);
        return driver;
    });
    Register(work + "/nlohmann", nodes,
             [text] { return std::make_shared<nlohmann::json>(nlohmann::json::parse(text)); });
    Register(work + "/RapidJSON", nodes, [text] {
        auto document = std::make_shared<rapidjson::Document>();
        document->Parse(text.c_str(), text.size());
        return document;
    });
}

/// Elements, texts and comments.
std::size_t CountNodes(const pugi::xml_node& node)
{
    std::size_t count = 1;
    for (const pugi::xml_node& child : node.children())
        count += CountNodes(child);
    return count;
}

void RegisterXml(const std::string& file)
{
    const std::string text = ReadFile("xml/" + file + ".xml");
    pugi::xml_document document;
    if (!document.load_buffer(text.data(), text.size()))
        return;
    const std::string work = "Memory per XML node, " + file;
    const std::size_t nodes = CountNodes(document);
    Register(work + "/KelInsInfra", nodes, [text] {
        std::istringstream stream(text);
        return std::shared_ptr<XML::Document>(XML::Parser(stream).Parse());
    });
    Register(work + "/tinyxml2", nodes, [text] {
        auto parsed = std::make_shared<tinyxml2::XMLDocument>();
        parsed->Parse(text.data(), text.size());
        return parsed;
    });
    Register(work + "/pugixml", nodes, [text] {
        auto parsed = std::make_shared<pugi::xml_document>();
        parsed->load_buffer(text.data(), text.size());
        return parsed;
    });
}

const bool kRegistered = [] {
    for (const std::string file : {"twitter", "citm_catalog", "canada"})
        RegisterJson(file);
    for (const std::string file : {"authoring", "feed", "attributes"})
        RegisterXml(file);
    return true;
}();

} // namespace
