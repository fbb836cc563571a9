// INI files: the library's reading and editing of lines beside the rules written out literally.
//
// Input: one byte of options, four texts that end in a zero byte (section, key, value, separator), and the file's
// content, which may hold zero bytes.

#include <KelInsInfra/config/internal/IniLines.h>
#include <KelInsInfra/io/internal/TextLines.h>
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <tests/config/IniModel.h>

namespace {

[[noreturn]] void Differ(const char* what, const std::string& library, const std::string& model)
{
    std::fprintf(stderr, "%s differs\nlibrary: %s\nmodel: %s\n", what, library.c_str(), model.c_str());
    std::abort();
}

std::string TakeText(std::string_view& input)
{
    const std::size_t end = std::min(input.find('\0'), input.size());
    const std::string text(input.substr(0, end));
    input.remove_prefix(std::min(end + 1, input.size()));
    return text;
}

void CompareWriting(const std::string& content, const IniModel::Request& request)
{
    std::string expected;
    try {
        expected = IniModel::Write(content, request);
    } catch (const std::runtime_error& error) {
        expected = std::string("f") + error.what();
    }
    std::string actual;
    try {
        actual = KelInsIniFile::AssignKey(content, {.fileName = "f",
                                                    .section = request.section,
                                                    .key = request.key,
                                                    .value = request.value,
                                                    .where = static_cast<KelInsIniFile::Where>(request.where),
                                                    .separator = request.separator,
                                                    .shellExport = request.shellExport});
    } catch (const std::runtime_error& error) {
        actual = error.what();
    }
    if (actual != expected)
        Differ("Writing", actual, expected);
}

void CompareReading(const std::string& content, const IniModel::Request& request)
{
    std::string expected = "not found";
    try {
        expected = "found " + IniModel::Read(content, request.section, request.key);
    } catch (const IniModel::NotFound&) {
    }
    std::string actual = "not found";
    KelInsIniFile::KeySearch search(request.section, request.key);
    for (std::string_view rest = content; !rest.empty() && actual == "not found";)
        if (const auto value = search.Examine(KelInsIO::TakeLine(rest)))
            actual = "found " + std::string(*value);
    if (actual != expected)
        Differ("Reading", actual, expected);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0)
        return 0;
    std::string_view input(reinterpret_cast<const char*>(data) + 1, size - 1);
    IniModel::Request request;
    request.where = data[0] & 3;
    request.shellExport = (data[0] & 4) != 0;
    request.section = TakeText(input);
    request.key = TakeText(input);
    request.value = TakeText(input);
    const std::string separator = TakeText(input);
    request.separator = separator.empty() ? '\0' : separator[0];
    if (request.key.empty()) // refused before any line is looked at
        return 0;
    const std::string content(input);
    CompareWriting(content, request);
    CompareReading(content, request);
    return 0;
}
