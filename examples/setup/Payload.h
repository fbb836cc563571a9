#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace Setup {

/// A folder of files to install. Paths in it are relative to the folder, with '\' between the names.
struct Payload
{
    struct File
    {
        std::string path;
        std::uint64_t size;
    };

    std::string root;
    std::vector<std::string> directories; // each after the one that it is in
    std::vector<File> files;
};

/// Lists what a payload holds.
/// @throws std::runtime_error  when it is missing, is not a folder, holds no file, or holds a link to a folder.
Payload SurveyPayload(const std::string& root);

/// Bytes that the payload takes on a disk.
std::uint64_t SpaceNeeded(const Payload& payload);

} // namespace Setup
