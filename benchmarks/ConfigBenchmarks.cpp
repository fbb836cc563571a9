// INI keys beside the system's own functions; ReplaceInLines beside sed, and beside reading and writing the same bytes.

#include "Workplace.h"

#include <KelInsInfra/config/KelInsIniFile.h>
#include <KelInsInfra/foundation/KelInsString.h>
#include <KelInsInfra/foundation/internal/WindowsApi.h>
#include <KelInsInfra/io/KelInsIO.h>
#include <array>
#include <benchmark/benchmark.h>
#include <filesystem>
#include <fstream>
#include <string>

namespace {

/// 1,000 lines: 50 sections of 19 keys.
std::string IniContent()
{
    std::string content;
    for (int section = 0; section < 50; ++section) {
        content += "[Section" + std::to_string(section) + "]\r\n";
        for (int key = 0; key < 19; ++key)
            content +=
                "Key" + std::to_string(key) + "=C:\\Program Files\\Orchard\\bin\\" + std::to_string(key) + "\r\n";
    }
    return content;
}

constexpr const char* kSection = "Section25";
constexpr const char* kKey = "Key9";
constexpr const wchar_t* kWideSection = L"Section25";
constexpr const wchar_t* kWideKey = L"Key9";

/// Another value each time: a system that finds the value in place already need not write.
std::string NextValue()
{
    static unsigned counter = 0;
    return "C:\\Program Files\\Orchard\\" + std::to_string(1'000'000 + ++counter % 1'000'000);
}

void WriteIni(benchmark::State& state, const Workplace& place)
{
    const std::string file = place.MakeFile("write_ours.ini", IniContent());
    for (auto _ : state)
        KelInsIniFile::Write(file, kSection, kKey, NextValue(), KelInsIniFile::Where::Replace, ';', false);
}

void WriteIniBySystem(benchmark::State& state, const Workplace& place)
{
    const std::wstring file = KelInsString::Widen(place.MakeFile("write_system.ini", IniContent()));
    for (auto _ : state)
        if (!::WritePrivateProfileStringW(kWideSection, kWideKey, KelInsString::Widen(NextValue()).c_str(),
                                          file.c_str()))
            state.SkipWithError("WritePrivateProfileStringW failed");
}

void ReadIni(benchmark::State& state)
{
    const std::string file = Workplace::InMemory().MakeFile("read_ours.ini", IniContent());
    for (auto _ : state)
        benchmark::DoNotOptimize(KelInsIniFile::ReadValueOfKey(file, kSection, kKey));
}

/// The system keeps a few files in memory as long as they do not change, so it is asked about more of them than that.
void ReadIniBySystem(benchmark::State& state)
{
    std::array<std::wstring, 16> files;
    for (std::size_t i = 0; i < files.size(); ++i)
        files[i] = KelInsString::Widen(
            Workplace::InMemory().MakeFile("read_system" + std::to_string(i) + ".ini", IniContent()));
    std::array<wchar_t, 256> value;
    std::size_t next = 0;
    for (auto _ : state)
        if (::GetPrivateProfileStringW(kWideSection, kWideKey, L"", value.data(), 256,
                                       files[next++ % files.size()].c_str()) == 0)
            state.SkipWithError("GetPrivateProfileStringW found nothing");
}

std::string TextOfMegabytes(std::size_t megabytes)
{
    std::string content;
    content.reserve(megabytes << 20);
    for (int line = 0; content.size() < megabytes << 20; ++line)
        content +=
            line % 10 == 0 ? "directory = C:\\OldPlace\\files\r\n" : "a line in which nothing is to be replaced\r\n";
    return content;
}

void ReplaceLines(benchmark::State& state, std::size_t megabytes)
{
    const std::string file = Workplace::InMemory().MakeFile("replace_ours.txt", TextOfMegabytes(megabytes));
    bool back = false;
    for (auto _ : state) {
        back = !back;
        benchmark::DoNotOptimize(back ? KelInsIO::ReplaceInLines(file, "OldPlace", "NewPlace")
                                      : KelInsIO::ReplaceInLines(file, "NewPlace", "OldPlace"));
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * static_cast<std::int64_t>(megabytes << 20));
    std::filesystem::remove(file);
}

/// What no rewriting can do without: the bytes read once and written once.
void ReadAndWrite(benchmark::State& state, std::size_t megabytes)
{
    const std::string file = Workplace::InMemory().MakeFile("replace_raw.txt", TextOfMegabytes(megabytes));
    std::string content(std::filesystem::file_size(file), '\0');
    for (auto _ : state) {
        std::ifstream(file, std::ios_base::binary).read(content.data(), static_cast<std::streamsize>(content.size()));
        std::ofstream(file, std::ios_base::binary).write(content.data(), static_cast<std::streamsize>(content.size()));
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * static_cast<std::int64_t>(megabytes << 20));
    std::filesystem::remove(file);
}

/// What Unix programs call a file on drive Z:, which stands for their root.
std::string UnixName(const std::string& file)
{
    std::string name = file.substr(2);
    KelInsString::ReplaceAll(name, "\\", "/", 0);
    return name;
}

/// Runs a line of the Unix shell from under Wine. Such a program has no process handle to wait for, so a file that it
/// makes at its end is waited for instead.
bool RunUnixShell(const std::string& line, const std::string& doneFile)
{
    std::wstring command = KelInsString::Widen(R"(Z:\bin\sh -c ")" + line + "; : >" + UnixName(doneFile) + '"');
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process{};
    if (!::CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &process))
        return false;
    while (!std::filesystem::exists(doneFile))
        ::Sleep(1);
    std::filesystem::remove(doneFile);
    return true;
}

bool Holds(const std::string& file, const char* text)
{
    std::ifstream stream(file, std::ios_base::binary);
    std::string line;
    return std::getline(stream, line) && line.find(text) != std::string::npos;
}

/// sed -i, which writes a new file beside the old one and renames it. Starting it is in its time: some milliseconds.
void ReplaceLinesBySed(benchmark::State& state, std::size_t megabytes)
{
    const std::string file = Workplace::InMemory().MakeFile("replace_sed.txt", TextOfMegabytes(megabytes));
    if (!file.starts_with("Z:"))
        state.SkipWithError("sed reaches files of drive Z: only; see KELINS_BENCHMARK_MEMORY");
    bool back = false;
    for (auto _ : state) {
        back = !back;
        const std::string edit = back ? "sed -i s/OldPlace/NewPlace/g " : "sed -i s/NewPlace/OldPlace/g ";
        if (!RunUnixShell(edit + UnixName(file), file + ".done") || !Holds(file, back ? "NewPlace" : "OldPlace")) {
            state.SkipWithError("sed cannot be run from here");
            break;
        }
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * static_cast<std::int64_t>(megabytes << 20));
    std::filesystem::remove(file);
}

const bool kRegistered = [] {
    using benchmark::RegisterBenchmark;
    const auto writing = [](const std::string& work, const Workplace& place) {
        RegisterBenchmark((work + "/KelInsInfra").c_str(), [&place](auto& state) { WriteIni(state, place); });
        RegisterBenchmark((work + "/WritePrivateProfileStringW").c_str(),
                          [&place](auto& state) { WriteIniBySystem(state, place); });
    };
    writing("INI write, 1000 lines", Workplace::InMemory());
    writing("INI write, 1000 lines, on disk", Workplace::OnDisk());
    RegisterBenchmark("INI read, 1000 lines/KelInsInfra", ReadIni);
    RegisterBenchmark("INI read, 1000 lines/GetPrivateProfileStringW", ReadIniBySystem);
    for (const std::size_t megabytes : {1U, 64U}) {
        const std::string work = "ReplaceInLines, " + std::to_string(megabytes) + " MB/";
        const auto add = [&](const char* contestant, auto* replace) {
            RegisterBenchmark((work + contestant).c_str(), [=](auto& state) {
                replace(state, megabytes);
            })->UseRealTime();
        };
        add("KelInsInfra", ReplaceLines);
        add("sed -i", ReplaceLinesBySed);
        add("read and write", ReadAndWrite);
    }
    return true;
}();

} // namespace
