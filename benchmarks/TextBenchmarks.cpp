// Text utilities and paths beside what one would write with the standard library alone.

#include <KelInsInfra/foundation/KelInsString.h>
#include <KelInsInfra/io/Path.h>
#include <benchmark/benchmark.h>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

namespace {

std::string Repeated(const std::string& piece, std::size_t count)
{
    std::string text;
    for (std::size_t i = 0; i < count; ++i)
        text += piece;
    return text;
}

template <typename Work>
void Register(const char* name, Work work)
{
    benchmark::RegisterBenchmark(name, [work](benchmark::State& state) {
        for (auto _ : state)
            benchmark::DoNotOptimize(work());
    });
}

/// Every occurrence replaced in place, as most programs do it.
std::string ReplaceInPlace(std::string text, const std::string& from, const std::string& to)
{
    for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size())
        text.replace(at, from.size(), to);
    return text;
}

std::vector<std::string> SplitByStream(const std::string& text)
{
    std::istringstream stream(text);
    std::vector<std::string> pieces;
    for (std::string piece; std::getline(stream, piece, ';');)
        pieces.push_back(piece);
    return pieces;
}

const bool kRegistered = [] {
    for (const std::size_t lines : {10U, 1000U}) {
        const std::string text = Repeated("C:\\OldPlace\\bin;C:\\OldPlace\\lib and more words\r\n", lines);
        const std::string work = "ReplaceAll, " + std::to_string(2 * lines) + " replacements/";
        Register((work + "KelInsInfra").c_str(), [text] {
            std::string copy = text;
            KelInsString::ReplaceAll(copy, "OldPlace", "AnotherPlace");
            return copy;
        });
        Register((work + "find and replace in place").c_str(),
                 [text] { return ReplaceInPlace(text, "OldPlace", "AnotherPlace"); });
    }
    const std::string list = Repeated("C:\\Program Files\\Orchard\\bin;", 50);
    Register("Split of 50 pieces/KelInsInfra", [list] { return KelInsString::Split(list, ';', true); });
    Register("Split of 50 pieces/istringstream and getline", [list] { return SplitByStream(list); });
    const std::string path = "C:/Program Files/Orchard//bin/./../lib/pear.dll";
    Register("Path of 47 bytes/KelInsInfra", [path] { return KelInsIO::Path(path).GetPath(); });
    Register("Path of 47 bytes/filesystem::path::lexically_normal",
             [path] { return std::filesystem::path(path).lexically_normal().string(); });
    return true;
}();

} // namespace
