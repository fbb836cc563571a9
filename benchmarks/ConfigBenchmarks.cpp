// INI keys beside the system's own functions, and ReplaceInLines beside reading and writing the same bytes.

#include <KelInsInfra/config/KelInsIniFile.h>
#include <KelInsInfra/foundation/KelInsString.h>
#include <KelInsInfra/foundation/internal/WindowsApi.h>
#include <KelInsInfra/io/KelInsIO.h>
#include <array>
#include <benchmark/benchmark.h>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>

namespace {

namespace fs = std::filesystem;

/// A folder that is removed at the end of the program.
class Folder
{
public:
    Folder() : path_(fs::temp_directory_path() / ("kelins_bench_" + std::to_string(::GetCurrentProcessId())))
    {
        fs::create_directory(path_);
    }

    ~Folder()
    {
        std::error_code ignored;
        fs::remove_all(path_, ignored);
    }

    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    std::string MakeFile(const std::string& name, const std::string& content) const
    {
        const fs::path file = path_ / name;
        std::ofstream(file, std::ios_base::binary) << content;
        return file.string();
    }

private:
    fs::path path_;
};

const Folder& Workplace()
{
    static const Folder folder;
    return folder;
}

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

void WriteIni(benchmark::State& state)
{
    const std::string file = Workplace().MakeFile("write_ours.ini", IniContent());
    for (auto _ : state)
        KelInsIniFile::Write(file, kSection, kKey, NextValue(), KelInsIniFile::Where::Replace, ';', false);
}

void WriteIniBySystem(benchmark::State& state)
{
    const std::wstring file = KelInsString::Widen(Workplace().MakeFile("write_system.ini", IniContent()));
    for (auto _ : state)
        if (!::WritePrivateProfileStringW(kWideSection, kWideKey, KelInsString::Widen(NextValue()).c_str(),
                                          file.c_str()))
            state.SkipWithError("WritePrivateProfileStringW failed");
}

void ReadIni(benchmark::State& state)
{
    const std::string file = Workplace().MakeFile("read_ours.ini", IniContent());
    for (auto _ : state)
        benchmark::DoNotOptimize(KelInsIniFile::ReadValueOfKey(file, kSection, kKey));
}

/// The system keeps a few files in memory as long as they do not change, so it is asked about more of them than that.
void ReadIniBySystem(benchmark::State& state)
{
    std::array<std::wstring, 16> files;
    for (std::size_t i = 0; i < files.size(); ++i)
        files[i] = KelInsString::Widen(Workplace().MakeFile("read_system" + std::to_string(i) + ".ini", IniContent()));
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
    const std::string file = Workplace().MakeFile("replace_ours.txt", TextOfMegabytes(megabytes));
    bool back = false;
    for (auto _ : state) {
        back = !back;
        benchmark::DoNotOptimize(back ? KelInsIO::ReplaceInLines(file, "OldPlace", "NewPlace")
                                      : KelInsIO::ReplaceInLines(file, "NewPlace", "OldPlace"));
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * static_cast<std::int64_t>(megabytes << 20));
    fs::remove(file);
}

/// What no rewriting can do without: the bytes read once and written once.
void ReadAndWrite(benchmark::State& state, std::size_t megabytes)
{
    const std::string file = Workplace().MakeFile("replace_raw.txt", TextOfMegabytes(megabytes));
    std::string content(fs::file_size(file), '\0');
    for (auto _ : state) {
        std::ifstream(file, std::ios_base::binary).read(content.data(), static_cast<std::streamsize>(content.size()));
        std::ofstream(file, std::ios_base::binary).write(content.data(), static_cast<std::streamsize>(content.size()));
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * static_cast<std::int64_t>(megabytes << 20));
    fs::remove(file);
}

BENCHMARK(WriteIni)->Name("INI write, 1000 lines/KelInsInfra");
BENCHMARK(WriteIniBySystem)->Name("INI write, 1000 lines/WritePrivateProfileStringW");
BENCHMARK(ReadIni)->Name("INI read, 1000 lines/KelInsInfra");
BENCHMARK(ReadIniBySystem)->Name("INI read, 1000 lines/GetPrivateProfileStringW");
BENCHMARK_CAPTURE(ReplaceLines, , 1)->Name("ReplaceInLines, 1 MB/KelInsInfra");
BENCHMARK_CAPTURE(ReadAndWrite, , 1)->Name("ReplaceInLines, 1 MB/read and write");
BENCHMARK_CAPTURE(ReplaceLines, , 64)->Name("ReplaceInLines, 64 MB/KelInsInfra");
BENCHMARK_CAPTURE(ReadAndWrite, , 64)->Name("ReplaceInLines, 64 MB/read and write");

} // namespace
