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

const std::string kInstalledPrograms = R"(Software\Microsoft\Windows\CurrentVersion\Uninstall)";
const std::string kProductCode = "PackageProductCode"; // ours: the others are Windows' own names
constexpr RegistryView kViews[] = {RegistryView::Force64RegView, RegistryView::Force32RegView};

bool HasEntry(const std::string& product, RegistryView view)
{
    const Key programs = KelInsReg::CreateKey(RootKey::LocalMachine, kInstalledPrograms, view);
    std::vector<std::string> names;
    KelInsReg::GetSubkeys(programs, names);
    return std::find(names.begin(), names.end(), product) != names.end();
}

} // namespace

std::optional<Registration> FindRegistration(const std::string& product)
{
    const RegistryView view = RegistryView::Force64RegView;
    if (!HasEntry(product, view))
        return std::nullopt;
    const Key key =
        KelInsReg::OpenKey(RootKey::LocalMachine, kInstalledPrograms + '\\' + product, AccessRights::ReadOnly, view);
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
