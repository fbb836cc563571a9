#include "Registration.h"

#include <KelInsInfra/registry/KelInsReg.h>
#include <KelInsInfra/system/KelInsSys.h>
#include <algorithm>
#include <vector>

namespace Setup {
namespace {

using KelInsReg::AccessRights;
using KelInsReg::Key;
using KelInsReg::RegistryView;
using KelInsReg::RootKey;

const std::string kCurrentVersion = R"(Software\Microsoft\Windows\CurrentVersion)";
const std::string kUninstall = "Uninstall";
const std::string kInstalledPrograms = kCurrentVersion + '\\' + kUninstall;
const std::string kProductCode = "PackageProductCode"; // ours: the others are Windows' own names
constexpr RegistryView kViews[] = {RegistryView::Force64RegView, RegistryView::Force32RegView};

Key Open(const std::string& path, RegistryView view)
{
    return KelInsReg::OpenKey(RootKey::LocalMachine, path, AccessRights::ReadOnly, view);
}

bool HasSubkey(const Key& key, const std::string& name)
{
    std::vector<std::string> names;
    KelInsReg::GetSubkeys(key, names);
    return std::find(names.begin(), names.end(), name) != names.end();
}

bool HasEntry(const std::string& product, RegistryView view)
{
    return HasSubkey(Open(kCurrentVersion, view), kUninstall) && HasSubkey(Open(kInstalledPrograms, view), product);
}

} // namespace

std::optional<Registration> FindRegistration(const std::string& product)
{
    const RegistryView view = RegistryView::Force64RegView;
    if (!HasEntry(product, view))
        return std::nullopt;
    const Key key = Open(kInstalledPrograms + '\\' + product, view);
    Registration registration;
    KelInsReg::GetValue(key, "DisplayVersion", registration.version, view);
    KelInsReg::GetValue(key, "InstallLocation", registration.target, view);
    KelInsReg::GetValue(key, kProductCode, registration.productCode, view);
    return registration;
}

void Register(const Manifest& manifest, const std::string& target)
{
    for (const RegistryView view : kViews) {
        const Key key = KelInsReg::CreateKey(RootKey::LocalMachine, kInstalledPrograms + '\\' + manifest.product, view);
        KelInsReg::SetValue(key, "DisplayName", manifest.product);
        KelInsReg::SetValue(key, "DisplayVersion", manifest.version);
        KelInsReg::SetValue(key, "Publisher", manifest.publisher);
        KelInsReg::SetValue(key, "InstallLocation", target);
        KelInsReg::SetValue(key, "UninstallString",
                            '"' + KelInsSys::GetExecutablePath() + "\" uninstall \"" + target + '"');
        KelInsReg::SetValue(key, kProductCode, manifest.productCode);
        KelInsReg::SetValue(key, "NoModify", 1);
        KelInsReg::SetValue(key, "NoRepair", 1);
        if (view == RegistryView::Force32RegView)
            KelInsReg::SetValue(key, "SystemComponent", 1); // or Windows would show the product twice
    }
}

void Unregister(const std::string& product)
{
    for (const RegistryView view : kViews)
        if (HasEntry(product, view))
            KelInsReg::DeleteKeyTree(RootKey::LocalMachine, kInstalledPrograms + '\\' + product, view);
}

} // namespace Setup
