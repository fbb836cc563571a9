#include "InstalledVersions.h"

#include <KelInsInfra/foundation/KelInsString.h>
#include <KelInsInfra/registry/KelInsMSI.h>
#include <stdexcept>

namespace Setup {
namespace {

void WarnOfBrokenEntry(const KelInsMSI::Version& entry, Log& log)
{
    log.Tell("Warning: Windows Installer's database is damaged. " + entry.message + " (" +
             std::to_string(entry.errorCode) + ").\n  " + entry.detail +
             "\n  Remove the product that it belongs to with the tool it came with, or ask its maker.");
}

} // namespace

int CompareVersions(const std::string& a, const std::string& b)
{
    constexpr std::size_t kFields = 3;
    auto left = KelInsString::Split(a, '.', true);
    auto right = KelInsString::Split(b, '.', true);
    left.resize(kFields);
    right.resize(kFields);
    for (std::size_t i = 0; i < kFields; ++i) {
        const int difference = KelInsString::ToInt(left[i], 0) - KelInsString::ToInt(right[i], 0);
        if (difference != 0)
            return difference;
    }
    return 0;
}

void ExpectOlder(const std::string& installed, const Manifest& manifest)
{
    const int order = CompareVersions(installed, manifest.version);
    if (order > 0)
        throw std::runtime_error(manifest.product + ' ' + installed + " is installed, which is newer than " +
                                 manifest.version +
                                 ".\nUninstall it first, if you really want to go back to the older version.");
    if (order == 0)
        throw std::runtime_error(manifest.product + ' ' + installed + " is installed already.\nUninstall it first.");
}

void CheckInstalledVersions(const Manifest& manifest, Log& log)
{
    const auto entries = KelInsMSI::GetVersion(manifest.upgradeCode);
    for (const KelInsMSI::Version& entry : entries) {
        if (entry.errorCode != 0)
            WarnOfBrokenEntry(entry, log);
        else
            log.Write("installed version: " + entry.version);
    }
    if (!KelInsMSI::HasFoundVersion(entries))
        log.Write("no installed version found");
    for (const KelInsMSI::Version& entry : entries)
        if (entry.errorCode == 0)
            ExpectOlder(entry.version, manifest);
}

} // namespace Setup
