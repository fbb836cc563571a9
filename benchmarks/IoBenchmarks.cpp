// Directory walk and file copy beside what one would write without the library.

#include "Workplace.h"

#include <KelInsInfra/foundation/KelInsString.h>
#include <KelInsInfra/foundation/internal/UniqueHandle.h>
#include <KelInsInfra/io/FindFile.h>
#include <KelInsInfra/io/KelInsIO.h>
#include <benchmark/benchmark.h>
#include <filesystem>
#include <fstream>
#include <io.h>
#include <stdexcept>
#include <string>
#include <type_traits>

namespace {

namespace fs = std::filesystem;

constexpr int kDirectories = 100;
constexpr int kFilesPerDirectory = 99; // 10,000 entries with the directories
constexpr std::int64_t kCopiedBytes = 64 << 20;

void MakeTree(const fs::path& root, int directories, int filesInEach, const std::string& content)
{
    for (int i = 0; i < directories; ++i) {
        const fs::path directory = root / ("directory " + std::to_string(i));
        fs::create_directories(directory);
        for (int j = 0; j < filesInEach; ++j)
            std::ofstream(directory / ("some file name " + std::to_string(j) + ".txt"), std::ios::binary) << content;
    }
}

/// A tree of 10,000 entries.
const fs::path& WalkedTree()
{
    static const fs::path tree = [] {
        const fs::path root = Workplace::OnDisk() / "walked";
        MakeTree(root, kDirectories, kFilesPerDirectory, {});
        return root;
    }();
    return tree;
}

/// A tree of 5,000 files of 1 KB.
const fs::path& SmallFiles()
{
    static const fs::path tree = [] {
        const fs::path root = Workplace::InMemory() / "small";
        MakeTree(root, 50, 100, std::string(1024, 'x'));
        return root;
    }();
    return tree;
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
    MeasureWalk(state, WalkWithFindFile, WalkedTree().string());
}

void WalkSystem(benchmark::State& state)
{
    MeasureWalk(state, WalkWithTheSystem, KelInsString::Widen(WalkedTree().string()));
}

void WalkStandard(benchmark::State& state)
{
    MeasureWalk(state, WalkWithTheStandard, WalkedTree());
}

const std::string& BigFile()
{
    static const std::string file = Workplace::OnDisk().MakeFile("big", std::string(std::size_t{kCopiedBytes}, 'x'));
    return file;
}

void CopyOurs(benchmark::State& state)
{
    const std::string destination = BigFile() + "_copy";
    for (auto _ : state)
        KelInsIO::Copy(BigFile(), destination);
    state.SetBytesProcessed(state.iterations() * kCopiedBytes);
}

void CopySystem(benchmark::State& state)
{
    const std::wstring source = KelInsString::Widen(BigFile());
    const std::wstring destination = source + L"_copy";
    for (auto _ : state)
        if (!::CopyFileW(source.c_str(), destination.c_str(), FALSE))
            throw std::runtime_error("CopyFileW failed");
    state.SetBytesProcessed(state.iterations() * kCopiedBytes);
}

/// Copies or deletes a tree of small files; what is needed before each time, or is left after it, is not timed.
template <typename Prepare, typename Work>
void MeasureOnce(const char* name, Prepare prepare, Work work)
{
    const auto run = [=](benchmark::State& state) {
        for (auto _ : state) {
            state.PauseTiming();
            prepare();
            state.ResumeTiming();
            work();
        }
    };
    benchmark::RegisterBenchmark(name, run)->Iterations(1)->Unit(benchmark::kMillisecond);
}

void RegisterTrees()
{
    const auto copy = [] { return SmallFiles().string() + " copy"; };
    const auto removeCopy = [copy] { fs::remove_all(copy()); };
    const auto makeCopy = [copy, removeCopy] {
        removeCopy();
        fs::copy(SmallFiles(), copy(), fs::copy_options::recursive);
    };
    MeasureOnce("Copy of 5000 small files/KelInsInfra", removeCopy,
                [copy] { KelInsIO::Copy(SmallFiles().string(), copy()); });
    MeasureOnce("Copy of 5000 small files/std::filesystem::copy", removeCopy,
                [copy] { fs::copy(SmallFiles(), copy(), fs::copy_options::recursive); });
    MeasureOnce("Delete of 5000 small files/KelInsInfra", makeCopy, [copy] { KelInsIO::Delete(copy()); });
    MeasureOnce("Delete of 5000 small files/std::filesystem::remove_all", makeCopy, removeCopy);
}

template <typename Call>
void Measure(const char* name, Call call)
{
    benchmark::RegisterBenchmark(name, [call](benchmark::State& state) {
        const std::string file = (WalkedTree() / "directory 0" / "some file name 0.txt").string();
        const std::wstring wideFile = KelInsString::Widen(file);
        for (auto _ : state)
            if constexpr (std::is_invocable_v<Call, std::wstring>)
                benchmark::DoNotOptimize(call(wideFile));
            else
                benchmark::DoNotOptimize(call(file));
    });
}

const bool kRegistered = [] {
    using benchmark::RegisterBenchmark;
    RegisterBenchmark("Directory walk, 10000 entries/KelInsInfra", WalkOurs);
    RegisterBenchmark("Directory walk, 10000 entries/FindFirstFileW", WalkSystem);
    RegisterBenchmark("Directory walk, 10000 entries/recursive_directory_iterator", WalkStandard);
    RegisterBenchmark("File copy, 64 MiB/KelInsInfra", CopyOurs);
    RegisterBenchmark("File copy, 64 MiB/CopyFileW", CopySystem);
    Measure("GetType/KelInsInfra", [](const std::string& file) { return KelInsIO::GetType(file); });
    Measure("GetType/GetFileAttributesW", [](const std::wstring& file) { return ::GetFileAttributesW(file.c_str()); });
    Measure("Exists/KelInsInfra", [](const std::string& file) { return KelInsIO::Exists(file); });
    Measure("Exists/_waccess_s", [](const std::wstring& file) { return ::_waccess_s(file.c_str(), 0); });
    RegisterTrees();
    return true;
}();

} // namespace
