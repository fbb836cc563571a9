// How the time of the portable part grows with the size of its input.

#include "Growth.h"

#include <KelInsInfra/hash/SHA256.h>
#include <KelInsInfra/json/Driver.h>
#include <KelInsInfra/xml/Outputter.h>
#include <KelInsInfra/xml/Parser.h>
#include <benchmark/benchmark.h>
#include <functional>
#include <memory>
#include <sstream>
#include <string>

namespace {

using Work = std::function<void()>;

std::string JsonText(std::size_t megabytes)
{
    return TextOfMegabytes(megabytes, "[0", R"(,{"name":"pear","size":123,"kept":true,"parts":[1,2,"three"]})", "]");
}

std::shared_ptr<XML::Document> ParseXml(const std::string& text)
{
    std::istringstream stream(text);
    return XML::Parser(stream).Parse();
}

std::string XmlText(std::size_t megabytes)
{
    return TextOfMegabytes(megabytes, "<r>", R"(<item name="pear" size="123"><part>one</part><part/>text</item>)",
                           "</r>");
}

const bool kRegistered = [] {
    RegisterGrowth("JSON parse", [](std::size_t megabytes) -> Work {
        return [text = JsonText(megabytes)] { JSON::Driver().Parse(text); };
    });
    RegisterGrowth("JSON parse of one string", [](std::size_t megabytes) -> Work {
        return [text = TextOfMegabytes(megabytes, "[\"", "abcdefghijklmnop", "\"]")] { JSON::Driver().Parse(text); };
    });
    RegisterGrowth("JSON write", [](std::size_t megabytes) -> Work {
        const auto driver = std::make_shared<JSON::Driver>();
        driver->Parse(JsonText(megabytes));
        return [driver] { benchmark::DoNotOptimize(driver->GetJSON()); };
    });
    RegisterGrowth("XML parse",
                   [](std::size_t megabytes) -> Work { return [text = XmlText(megabytes)] { ParseXml(text); }; });
    RegisterGrowth("XML print", [](std::size_t megabytes) -> Work {
        return [document = ParseXml(XmlText(megabytes))] {
            XML::Outputter outputter;
            benchmark::DoNotOptimize(outputter.ToString(*document));
        };
    });
    RegisterGrowth("SHA-256", [](std::size_t megabytes) -> Work {
        return [text = TextOfMegabytes(megabytes, "", "abcdefghijklmnop", "")] {
            benchmark::DoNotOptimize(KelInsHash::SHA256().GetHash(text));
        };
    });
    return true;
}();

} // namespace
