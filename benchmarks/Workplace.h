#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>

/// A folder for the files of a benchmark, removed at the end of the program.
class Workplace
{
public:
    /// Where files lie in memory, when scripts/bench.sh names such a place; otherwise as OnDisk. What a disk adds
    /// depends on its file system: ext4 writes a file that was cut off and rewritten to the disk when it is closed.
    static const Workplace& InMemory()
    {
        const char* place = std::getenv("KELINS_BENCHMARK_MEMORY");
        static const Workplace workplace(place != nullptr ? place : std::filesystem::temp_directory_path());
        return workplace;
    }

    static const Workplace& OnDisk()
    {
        static const Workplace workplace(std::filesystem::temp_directory_path());
        return workplace;
    }

    ~Workplace()
    {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }

    Workplace(const Workplace&) = delete;
    Workplace& operator=(const Workplace&) = delete;

    [[nodiscard]] std::filesystem::path operator/(const std::string& name) const { return path_ / name; }

    [[nodiscard]] std::string MakeFile(const std::string& name, const std::string& content) const
    {
        const std::filesystem::path file = path_ / name;
        std::ofstream(file, std::ios_base::binary) << content;
        return file.string();
    }

private:
    explicit Workplace(const std::filesystem::path& parent)
        : path_(parent / ("kelins_bench_" + std::to_string(std::random_device()())))
    {
        std::filesystem::create_directory(path_);
    }

    std::filesystem::path path_;
};
