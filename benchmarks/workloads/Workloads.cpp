// One fixed piece of work of the portable part, for scripts/check-speed.sh, which counts its instructions:
//   workloads          the names
//   workloads NAME     does that work once

#include <KelInsInfra/config/KelInsIniFile.h>
#include <KelInsInfra/config/KelInsJavaProperties.h>
#include <KelInsInfra/config/internal/IniLines.h>
#include <KelInsInfra/foundation/KelInsString.h>
#include <KelInsInfra/hash/KelInsUUID.h>
#include <KelInsInfra/hash/internal/Sha256Engines.h>
#include <KelInsInfra/io/Path.h>
#include <KelInsInfra/io/internal/LineReplacement.h>
#include <KelInsInfra/json/Driver.h>
#include <KelInsInfra/xml/Outputter.h>
#include <KelInsInfra/xml/Parser.h>
#include <functional>
#include <iostream>
#include <map>
#include <sstream>

using Work = std::function<std::size_t()>;

/// Only what runs in here is counted.
extern "C" std::size_t RunWorkload(const Work& work); // the name under which its instructions are counted

extern "C" __attribute__((noinline)) std::size_t RunWorkload(const Work& work)
{
    return work();
}

namespace {

std::string Repeated(const std::string& piece, std::size_t count, const std::string& first = {}, const char* last = "")
{
    std::string text = first;
    for (std::size_t i = 0; i < count; ++i)
        text += piece;
    return text += last;
}

Work JsonParse()
{
    const std::string item =
        R"({"name":"p\u00e4r \"x\"","size":-12.5e3,"kept":true,"parts":[1,22,"three",null,{"a":""}]},)";
    return [text = Repeated(item, 2000, "[", "0]")] {
        JSON::Driver driver;
        return std::size_t{driver.Parse(text)};
    };
}

Work JsonWrite()
{
    const auto driver = std::make_shared<JSON::Driver>();
    driver->Parse(Repeated(R"({"name":"a \"quoted\" word","size":12,"parts":[1,2,"three"]},)", 2000, "[", "0]"));
    return [driver] { return driver->GetJSON().size(); };
}

std::shared_ptr<XML::Document> Parsed(const std::string& text)
{
    std::istringstream stream(text);
    return XML::Parser(stream).Parse();
}

std::string XmlText()
{
    return Repeated(R"(<item name="pear" size='1 &amp; 2'><part>one &lt; two</part><!-- note --><part/>text</item>)",
                    2000, "<r>", "</r>");
}

Work XmlParse()
{
    return [text = XmlText()] { return Parsed(text)->GetContent().size(); };
}

Work XmlPrint()
{
    return [document = Parsed(XmlText())] { return XML::Outputter().ToString(*document).size(); };
}

/// The portable engine: which of the others would serve is the processor's affair.
Work Sha256()
{
    return [text = Repeated("abcdefghijklmnop", 16384)] {
        KelInsHash::Sha256Engines::Words words{};
        KelInsHash::Sha256Engines::Portable(words, reinterpret_cast<const unsigned char*>(text.data()),
                                            text.size() / 64);
        return std::size_t{words[0]};
    };
}

Work Uuids()
{
    return [] {
        std::size_t size = 0;
        for (int i = 0; i < 5000; ++i)
            size += KelInsUUID::GetUUID(true).size();
        return size;
    };
}

Work IniAssignment()
{
    std::string content;
    for (int section = 0; section < 50; ++section)
        content += "[Section" + std::to_string(section) + "]\r\n" +
                   Repeated("Key=C:\\Program Files\\Orchard\\bin\r\n; a comment\r\n", 20);
    return [content] {
        return KelInsIniFile::AssignKey(content, {.fileName = "f",
                                                  .section = "Section40",
                                                  .key = "Other",
                                                  .value = "v",
                                                  .where = KelInsIniFile::Where::Append,
                                                  .separator = ';',
                                                  .shellExport = false})
            .size();
    };
}

Work LineReplacement()
{
    return
        [content = Repeated("directory = C:\\OldPlace\\files\na line in which nothing is to be replaced\r\n", 3000)] {
            return KelInsIO::ReplaceInEachLine(content, "OldPlace", "NewPlace").text.size();
        };
}

Work Properties()
{
    return [text = Repeated("C:\\Program Files\\Gr\xC3\xB6\xC3\x9F"
                            "e = # \t!",
                            1000)] {
        return KelInsJavaProperties::loadConvert(KelInsJavaProperties::saveConvert(text, true)).size();
    };
}

Work Paths()
{
    return [] {
        std::size_t size = 0;
        for (int i = 0; i < 2000; ++i)
            size += KelInsIO::Path("C:/Program Files/Orchard//bin/./../lib/pear.dll").GetParent().GetPath().size();
        return size;
    };
}

Work Texts()
{
    return [list = Repeated("C:\\Program Files\\Orchard\\bin;", 2000)] {
        std::string text = list;
        const auto count = KelInsString::ReplaceAll(text, "Orchard", "Garden Tools");
        return KelInsString::Split(text, ';', true).size() + static_cast<std::size_t>(count);
    };
}

const std::map<std::string, Work (*)()> kWorkloads = {
    {"json_parse", JsonParse},
    {"json_write", JsonWrite},
    {"xml_parse", XmlParse},
    {"xml_print", XmlPrint},
    {"sha256", Sha256},
    {"uuid", Uuids},
    {"ini_write", IniAssignment},
    {"replace_in_lines", LineReplacement},
    {"properties", Properties},
    {"path", Paths},
    {"text", Texts},
};

} // namespace

int main(int count, char** arguments)
{
    if (count < 2) {
        for (const auto& [name, work] : kWorkloads)
            std::cout << name << '\n';
        return 0;
    }
    const auto found = kWorkloads.find(arguments[1]);
    if (found == kWorkloads.end()) {
        std::cerr << "no such work: " << arguments[1] << '\n';
        return 2;
    }
    std::cout << RunWorkload(found->second()) << '\n'; // so that the work cannot be left out
}
