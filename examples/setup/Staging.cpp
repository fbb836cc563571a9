#include "Staging.h"

#include <KelInsInfra/foundation/KelInsString.h>
#include <KelInsInfra/io/KelInsIO.h>
#include <filesystem>
#include <stdexcept>

namespace Setup {
namespace {

bool IsReadOnly(const std::string& path)
{
    using std::filesystem::perms;
    const perms permissions = std::filesystem::status(KelInsString::Widen(path)).permissions();
    return (permissions & perms::owner_write) == perms::none;
}

} // namespace

void StageFile(const std::string& source, std::uint64_t size, const std::string& destination)
{
    KelInsIO::Copy(source, destination);
    if (KelInsIO::GetFileSize(destination) != size) // Copy does not see a short write
        throw std::runtime_error("Only a part of " + source + " could be written to " + destination);

    const KelInsIO::FileTime time = KelInsIO::GetTime(source);
    KelInsIO::SetTime(destination, time.accessTime, time.modificationTime);
    if (IsReadOnly(source)) // last: the times of a read-only file cannot be set
        KelInsIO::SetReadOnly(destination, true);
}

} // namespace Setup
