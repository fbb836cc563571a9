// Widen and Narrow beside the usual two calls: ask for the size, then convert into a string of that size.

#include <KelInsInfra/foundation/KelInsString.h>
#include <KelInsInfra/foundation/internal/WindowsApi.h>
#include <benchmark/benchmark.h>
#include <string>

namespace {

std::wstring WidenInTwoCalls(const std::string& text)
{
    const int length = static_cast<int>(text.size());
    const int needed = ::MultiByteToWideChar(CP_UTF8, 0, text.data(), length, nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(needed), L'\0');
    ::MultiByteToWideChar(CP_UTF8, 0, text.data(), length, wide.data(), needed);
    return wide;
}

std::string NarrowInTwoCalls(const std::wstring& text)
{
    const int length = static_cast<int>(text.size());
    const int needed = ::WideCharToMultiByte(CP_UTF8, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
    std::string narrow(static_cast<std::size_t>(needed), '\0');
    ::WideCharToMultiByte(CP_UTF8, 0, text.data(), length, narrow.data(), needed, nullptr, nullptr);
    return narrow;
}

struct Text
{
    const char* name;
    std::string narrow;
};

std::string Repeated(const std::string& piece, std::size_t bytes)
{
    std::string text;
    while (text.size() < bytes)
        text += piece;
    text.resize(bytes);
    return text;
}

void Register(const Text& text)
{
    const std::wstring wide = WidenInTwoCalls(text.narrow);
    const std::string widen = std::string("Widen, ") + text.name;
    const std::string narrow = std::string("Narrow, ") + text.name;
    const auto add = [](const std::string& name, auto function, const auto& argument) {
        benchmark::RegisterBenchmark(name.c_str(), [function, argument](benchmark::State& state) {
            for (auto _ : state)
                benchmark::DoNotOptimize(function(argument));
        });
    };
    add(
        widen + "/KelInsInfra", [](const std::string& t) { return KelInsString::Widen(t); }, text.narrow);
    add(widen + "/size query and conversion", WidenInTwoCalls, text.narrow);
    add(
        narrow + "/KelInsInfra", [](const std::wstring& t) { return KelInsString::Narrow(t); }, wide);
    add(narrow + "/size query and conversion", NarrowInTwoCalls, wide);
}

const bool kRegistered = [] {
    const std::string ascii = "C:\\Program Files\\Orchard\\bin\\";
    Register({"20 bytes ASCII", Repeated(ascii, 20)});
    Register({"200 bytes ASCII", Repeated(ascii, 200)});
    Register({"200 bytes Greek", Repeated("\xCE\xB1\xCE\xB2", 200)});
    Register({"20000 bytes ASCII", Repeated(ascii, 20'000)});
    return true;
}();

} // namespace
