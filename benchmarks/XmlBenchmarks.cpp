// Parsing a text into a tree and releasing it, and printing a tree, beside tinyxml2 and pugixml.

#include <KelInsInfra/xml/Outputter.h>
#include <KelInsInfra/xml/Parser.h>
#include <benchmark/benchmark.h>
#include <fstream>
#include <iterator>
#include <memory>
#include <pugixml.hpp>
#include <sstream>
#include <streambuf>
#include <string>
#include <tinyxml2.h>

namespace {

/// A stream over a text that somebody else holds, so that no contestant pays for a copy that the others do not need.
class TextBuffer : public std::streambuf
{
public:
    explicit TextBuffer(std::string& text) { setg(text.data(), text.data(), text.data() + text.size()); }

protected:
    pos_type seekoff(off_type offset, std::ios_base::seekdir from, std::ios_base::openmode) override
    {
        char* base = from == std::ios_base::beg ? eback() : from == std::ios_base::cur ? gptr() : egptr();
        setg(eback(), base + offset, egptr());
        return gptr() - eback();
    }
};

std::unique_ptr<XML::Document> ParseOurs(std::string& text)
{
    TextBuffer buffer(text);
    std::istream input(&buffer);
    return XML::Parser(input).Parse();
}

struct StringWriter : pugi::xml_writer
{
    std::string text;

    void write(const void* data, std::size_t size) override { text.append(static_cast<const char*>(data), size); }
};

void AddParsing(const std::string& work, const std::shared_ptr<std::string>& text)
{
    benchmark::RegisterBenchmark((work + "/KelInsInfra").c_str(), [text](benchmark::State& state) {
        for (auto _ : state)
            benchmark::DoNotOptimize(ParseOurs(*text));
    });
    benchmark::RegisterBenchmark((work + "/tinyxml2").c_str(), [text](benchmark::State& state) {
        for (auto _ : state) {
            tinyxml2::XMLDocument document;
            if (document.Parse(text->data(), text->size()) != tinyxml2::XML_SUCCESS)
                state.SkipWithError("tinyxml2 refuses the text");
        }
    });
    benchmark::RegisterBenchmark((work + "/pugixml").c_str(), [text](benchmark::State& state) {
        for (auto _ : state) {
            pugi::xml_document document;
            if (!document.load_buffer(text->data(), text->size()))
                state.SkipWithError("pugixml refuses the text");
        }
    });
}

void AddPrinting(const std::string& work, const std::shared_ptr<std::string>& text)
{
    benchmark::RegisterBenchmark((work + "/KelInsInfra").c_str(), [text](benchmark::State& state) {
        const auto document = ParseOurs(*text);
        XML::Outputter outputter;
        for (auto _ : state)
            benchmark::DoNotOptimize(outputter.ToString(*document));
    });
    benchmark::RegisterBenchmark((work + "/tinyxml2").c_str(), [text](benchmark::State& state) {
        tinyxml2::XMLDocument document;
        document.Parse(text->data(), text->size());
        for (auto _ : state) {
            tinyxml2::XMLPrinter printer;
            document.Print(&printer);
            benchmark::DoNotOptimize(printer.CStr());
        }
    });
    benchmark::RegisterBenchmark((work + "/pugixml").c_str(), [text](benchmark::State& state) {
        pugi::xml_document document;
        document.load_buffer(text->data(), text->size());
        for (auto _ : state) {
            StringWriter writer;
            document.save(writer, "  ");
            benchmark::DoNotOptimize(writer.text);
        }
    });
}

const bool kRegistered = [] {
    for (const std::string name : {"authoring", "feed", "attributes"}) {
        std::ifstream file(KELINS_BENCHMARK_DATA "/xml/" + name + ".xml", std::ios::binary);
        const auto text =
            std::make_shared<std::string>(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
        AddParsing("XML parse " + name, text);
        AddPrinting("XML print " + name, text);
    }
    return true;
}();

} // namespace
