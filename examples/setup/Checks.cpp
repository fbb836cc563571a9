#include "Checks.h"

#include "Configuration.h"
#include "InstallList.h"
#include "InstalledVersions.h"
#include "Places.h"
#include "Registration.h"
#include "SystemFacts.h"
#include "Verification.h"
#include <KelInsInfra/foundation/KelInsString.h>
#include <KelInsInfra/io/FindFile.h>
#include <KelInsInfra/io/KelInsIO.h>
#include <algorithm>
#include <stdexcept>

namespace Setup {
namespace {

using KelInsIO::Path;

std::string Megabytes(std::uint64_t bytes)
{
    return KelInsString::ToFixedPrecision(static_cast<double>(bytes) / 1e6, 1) + " MB";
}

void CheckTarget(const std::string& payload, const std::string& target)
{
    if (IsInside(payload, target))
        throw std::runtime_error("The payload " + payload + " stands inside the target " + target +
                                 ".\nChoose another target.");
    if (IsInside(target, payload))
        throw std::runtime_error("The target " + target + " stands inside the payload " + payload +
                                 ".\nChoose another target.");
    if (!KelInsIO::Exists(target))
        return;
    if (!KelInsIO::IsDirectory(target))
        throw std::runtime_error("The target " + target + " is a file.\nChoose another target.");
    if (KelInsIO::Exists(target + Path::Sep + InstallList::kFileName))
        throw std::runtime_error("Something is already installed in " + target +
                                 ".\nUninstall it first: setup uninstall \"" + target + "\"");
    if (!KelInsIO::FindFile::IsDirectoryEmpty(target))
        throw std::runtime_error("The target " + target + " is not empty.\nChoose a new or empty folder.");
}

bool HoldsFile(const Payload& payload, const std::string& path)
{
    return std::any_of(payload.files.begin(), payload.files.end(),
                       [&](const Payload::File& file) { return file.path == path; });
}

void CheckFiles(const Payload& payload)
{
    if (HoldsFile(payload, InstallList::kFileName))
        throw std::runtime_error("The payload " + payload.root + " is itself an installation: it holds the file " +
                                 InstallList::kFileName + ".\nName the folder that was installed from.");
    std::vector<std::string> required = RequiredFiles();
    required.push_back(Manifest::kFileName);
    for (const std::string& path : required)
        if (!HoldsFile(payload, path))
            throw std::runtime_error("The payload " + payload.root + " has no file " + path +
                                     ".\nName the folder that holds it.");
}

void CheckOptions(const Manifest& manifest, const Properties& options)
{
    for (const auto& option : options) {
        if (std::find(manifest.options.begin(), manifest.options.end(), option.first) != manifest.options.end())
            continue;
        std::string text = manifest.product + " has no option " + option.first + ". Its options are:";
        for (const std::string& name : manifest.options)
            text += ' ' + name;
        throw std::runtime_error(text);
    }
}

void CheckSpace(const Payload& payload, const std::string& target)
{
    const std::string drive = Path(target).GetRoot();
    if (!KelInsIO::Exists(drive + Path::Sep))
        throw std::runtime_error("There is no drive or share " + drive + ".\nChoose another target.");
    const std::uint64_t needed = SpaceNeeded(payload);
    const std::uint64_t available = KelInsIO::GetFreeSpaceOnDisk(target);
    if (available == 0)
        throw std::runtime_error("No space is free on " + drive +
                                 ", or the system does not tell.\nChoose another target.");
    if (needed > available)
        throw std::runtime_error("Not enough space on " + drive + ": " + Megabytes(needed) + " are needed, " +
                                 Megabytes(available) + " are free.\nMake room there, or choose another drive.");
}

void CheckRegistration(const Manifest& manifest)
{
    if (const auto registration = FindRegistration(manifest.product))
        throw std::runtime_error(manifest.product + ' ' + registration->version + " is installed in " +
                                 registration->target + ".\nUninstall it first: setup uninstall \"" +
                                 registration->target + "\"");
}

/// What needs no look into the files comes first.
Checked SurveyAndReadManifest(const std::string& root, const Properties& options, Log& log)
{
    ExpectAdministrator();
    Payload payload = SurveyPayload(root);
    CheckFiles(payload);
    Manifest manifest = ReadManifest(root);
    log.Write("payload: " + manifest.product + ' ' + manifest.version + ", " + std::to_string(manifest.files.size()) +
              " files in " + root);
    CheckOptions(manifest, options);
    return {std::move(payload), std::move(manifest)};
}

} // namespace

Checked CheckPayload(const std::string& root, const Properties& options, Log& log)
{
    Checked checked = SurveyAndReadManifest(root, options, log);
    VerifyPayload(checked.payload, checked.manifest);
    return checked;
}

Checked CheckInstallation(const std::string& root, const std::string& target, const Properties& options, Log& log)
{
    Checked checked = SurveyAndReadManifest(root, options, log);
    CheckTarget(root, target);
    CheckSpace(checked.payload, target);
    CheckRegistration(checked.manifest);
    CheckInstalledVersions(checked.manifest, log);
    VerifyPayload(checked.payload, checked.manifest);
    return checked;
}

} // namespace Setup
