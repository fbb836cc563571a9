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

Registration FindInstallation(const std::string& product, const std::string& target)
{
    const auto registration = FindRegistration(product);
    if (!registration)
        throw std::runtime_error(product + " is not installed in " + target + ".\nInstall it: setup install");
    if (!IsSame(registration->target, target))
        throw std::runtime_error(product + " is not installed in " + target + ".\nIt is in " + registration->target +
                                 '.');
    return *registration;
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

/// The manifest as it was for what is registered.
Manifest OlderManifest(Manifest manifest, const Registration& registration)
{
    manifest.version = registration.version;
    manifest.productCode = registration.productCode;
    return manifest;
}

} // namespace

void Upgrade(const std::string& payloadRoot, const std::string& target, const Properties& given, Log& log)
{
    const std::optional<Receipt> receipt = ReadReceipt(target);
    const Properties options = receipt ? MergeOptions(given, receipt->options) : given;
    const Manifest manifest = CheckPayload(payloadRoot, options, log).manifest;
    const Registration registration = FindInstallation(manifest.product, target);
    CheckInstalledVersions(manifest, log);
    ExpectOlder(registration.version, manifest); // the database may have lost its entry

    Register(manifest, target); // before the package: the registration must not name one that is gone
    try {
        InstallServer(payloadRoot + KelInsIO::Path::Sep + manifest.package, target, options, log);
    } catch (...) {
        Register(OlderManifest(manifest, registration), target);
        throw;
    }
    WriteReceipt(target, manifest, options);
    log.Tell("Upgraded to " + manifest.version + '.');
}

} // namespace Setup
