#include "Upgrade.h"

#include "Checks.h"
#include "InstalledVersions.h"
#include "Places.h"
#include "Receipt.h"
#include "Registration.h"
#include <KelInsInfra/io/Path.h>
#include <algorithm>
#include <stdexcept>

namespace Setup {
namespace {

void ExpectInstallation(const Manifest& manifest, const std::string& target)
{
    const auto registration = FindRegistration(manifest.product);
    if (!registration || !IsSame(registration->target, target))
        throw std::runtime_error(
            manifest.product + " is not installed in " + target + ".\n" +
            (registration ? "It is in " + registration->target + '.' : "Install it: setup install"));
}

/// Those that were given, and those of the installation for the others.
Properties MergeOptions(const Properties& given, const Properties& installed)
{
    Properties options = given;
    for (const auto& option : installed) {
        const auto isSame = [&](const auto& other) { return other.first == option.first; };
        if (std::none_of(given.begin(), given.end(), isSame))
            options.push_back(option);
    }
    return options;
}

} // namespace

void Upgrade(const std::string& payloadRoot, const std::string& target, const Properties& given, Log& log)
{
    const std::optional<Receipt> receipt = ReadReceipt(target);
    const Properties options = receipt ? MergeOptions(given, receipt->options) : given;
    const Manifest manifest = CheckPayload(payloadRoot, options, log).manifest;
    ExpectInstallation(manifest, target);
    CheckInstalledVersions(manifest, log);

    InstallServer(payloadRoot + KelInsIO::Path::Sep + manifest.package, target, options, log);
    Register(manifest, target);
    WriteReceipt(target, manifest, options);
    log.Tell("Upgraded to " + manifest.version + '.');
}

} // namespace Setup
