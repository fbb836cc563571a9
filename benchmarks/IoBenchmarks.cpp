// Directory walk and file copy beside what one would write without the library.

#include <KelInsInfra/foundation/KelInsString.h>
#include <KelInsInfra/foundation/internal/UniqueHandle.h>
#include <KelInsInfra/io/FindFile.h>
#include <KelInsInfra/io/KelInsIO.h>
#include <benchmark/benchmark.h>
#include <filesystem>
#include <fstream>
#include <random>
#include <stdexcept>
#include <string>

namespace {

namespace fs = std::filesystem;

constexpr int kDirectories = 100;
constexpr int kFilesPerDirectory = 99; // 10,000 entries with the directories
constexpr std::int64_t kCopiedBytes = 64 << 20;

/// A tree of 10,000 entries and a file of 64 MiB, removed at the end of the program.
class Place
{
public:
    Place() : root_(fs::temp_directory_path() / ("kelins_bench_" + std::to_string(std::random_device()())))
    {
        for (int i = 0; i < kDirectories; ++i) {
            const fs::path directory = root_ / "tree" / ("directory " + std::to_string(i));
            fs::create_directories(directory);
            for (int j = 0; j < kFilesPerDirectory; ++j)
                std::ofstream(directory / ("some file name " + std::to_string(j) + ".txt"));
        }
        std::ofstream(root_ / "file", std::ios::binary) << std::string(std::size_t{kCopiedBytes}, 'x');
    }

    ~Place()
    {
        std::error_code ignored;
        fs::remove_all(root_, ignored);
    }

    Place(const Place&) = delete;
    Place& operator=(const Place&) = delete;

    [[nodiscard]] std::string operator/(const char* name) const { return (root_ / name).string(); }

private:
    fs::path root_;
};

const Place& ThePlace()
{
    static const Place place;
    return place;
}

// Each walk gives the UTF-8 name of every entry.

std::size_t WalkWithFindFile(const std::string& directory)
{
    std::size_t count = 0;
    for (KelInsIO::FindFile entry(directory, KelInsIO::Type::Directory | KelInsIO::Type::File); !entry.End();
         entry.Next()) {
        benchmark::DoNotOptimize(entry.GetName());
        ++count;
        if (entry.IsDirectory())
            count += WalkWithFindFile(entry.GetPath());
    }
    return count;
}

std::string NarrowName(const wchar_t* name)
{
    char buffer[3 * MAX_PATH];
    const int bytes =
        ::WideCharToMultiByte(CP_UTF8, 0, name, -1, buffer, static_cast<int>(sizeof(buffer)), nullptr, nullptr);
    return {buffer, static_cast<std::size_t>(bytes - 1)};
}

std::size_t WalkWithTheSystem(const std::wstring& directory)
{
    WIN32_FIND_DATAW record;
    const HANDLE search = ::FindFirstFileW((directory + L"\\*").c_str(), &record);
    if (search == INVALID_HANDLE_VALUE)
        return 0;
    std::size_t count = 0;
    do {
        if (std::wcscmp(record.cFileName, L".") == 0 || std::wcscmp(record.cFileName, L"..") == 0)
            continue;
        benchmark::DoNotOptimize(NarrowName(record.cFileName));
        ++count;
        if ((record.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0)
            count += WalkWithTheSystem(directory + L'\\' + record.cFileName);
    } while (::FindNextFileW(search, &record));
    ::FindClose(search);
    return count;
}

std::size_t WalkWithTheStandard(const fs::path& directory)
{
    std::size_t count = 0;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(directory)) {
        benchmark::DoNotOptimize(entry.path().filename().u8string());
        ++count;
    }
    return count;
}

template <typename Walk, typename Text>
void MeasureWalk(benchmark::State& state, Walk walk, const Text& directory)
{
    for (auto _ : state)
        if (walk(directory) != std::size_t{kDirectories} * (kFilesPerDirectory + 1))
            throw std::runtime_error("the walk lost entries");
}

void WalkOurs(benchmark::State& state)
{
    MeasureWalk(state, WalkWithFindFile, ThePlace() / "tree");
}

void WalkSystem(benchmark::State& state)
{
    MeasureWalk(state, WalkWithTheSystem, KelInsString::Widen(ThePlace() / "tree"));
}

void WalkStandard(benchmark::State& state)
{
    MeasureWalk(state, WalkWithTheStandard, fs::path(ThePlace() / "tree"));
}

void CopyOurs(benchmark::State& state)
{
    const std::string source = ThePlace() / "file";
    const std::string destination = ThePlace() / "copy";
    for (auto _ : state)
        KelInsIO::Copy(source, destination);
    state.SetBytesProcessed(state.iterations() * kCopiedBytes);
}

void CopySystem(benchmark::State& state)
{
    const std::wstring source = KelInsString::Widen(ThePlace() / "file");
    const std::wstring destination = KelInsString::Widen(ThePlace() / "copy");
    for (auto _ : state)
        if (!::CopyFileW(source.c_str(), destination.c_str(), FALSE))
            throw std::runtime_error("CopyFileW failed");
    state.SetBytesProcessed(state.iterations() * kCopiedBytes);
}

BENCHMARK(WalkOurs)->Name("Directory walk, 10000 entries/KelInsInfra");
BENCHMARK(WalkSystem)->Name("Directory walk, 10000 entries/FindFirstFileW");
BENCHMARK(WalkStandard)->Name("Directory walk, 10000 entries/recursive_directory_iterator");
BENCHMARK(CopyOurs)->Name("File copy, 64 MiB/KelInsInfra");
BENCHMARK(CopySystem)->Name("File copy, 64 MiB/CopyFileW");

} // namespace
