#include "Payload.h"

#include <KelInsInfra/io/FindFile.h>
#include <KelInsInfra/io/KelInsIO.h>
#include <stdexcept>

namespace Setup {
namespace {

/// @param directory  relative to the payload; empty for the payload itself.
void SurveyDirectory(const std::string& directory, Payload& payload)
{
    using KelInsIO::Path;
    using KelInsIO::Type;
    const std::string prefix = directory.empty() ? "" : directory + Path::Sep;
    const std::string fullName = directory.empty() ? payload.root : payload.root + Path::Sep + directory;
    for (KelInsIO::FindFile entry(fullName, Type::Directory | Type::File); !entry.End(); entry.Next()) {
        const std::string path = prefix + entry.GetName();
        if (entry.IsFile()) {
            payload.files.push_back({path, KelInsIO::GetFileSize(entry.GetPath())});
            continue;
        }
        if (entry.GetType().Has(Type::ReparsePoint))
            throw std::runtime_error("The payload holds a link to a folder: " + entry.GetPath() +
                                     "\nPut the folder itself there.");
        payload.directories.push_back(path);
        SurveyDirectory(path, payload);
    }
}

} // namespace

Payload SurveyPayload(const std::string& root)
{
    if (!KelInsIO::Exists(root))
        throw std::runtime_error("The payload " + root + " does not exist.\nCheck how its name is written.");
    if (!KelInsIO::IsDirectory(root))
        throw std::runtime_error("The payload " + root + " is not a folder.\nName the folder that holds the files.");
    Payload payload{root, {}, {}};
    SurveyDirectory("", payload);
    if (payload.files.empty())
        throw std::runtime_error("The payload " + root + " holds no files.\nName the folder that holds them.");
    return payload;
}

std::uint64_t SpaceNeeded(const Payload& payload)
{
    constexpr std::uint64_t kCluster = 4096; // a disk gives space in whole clusters
    std::uint64_t bytes = payload.directories.size() * kCluster;
    for (const Payload::File& file : payload.files)
        bytes += (file.size + kCluster - 1) / kCluster * kCluster;
    return bytes;
}

} // namespace Setup
