#include "Operation.h"

#include <KelInsInfra/foundation/internal/WindowsApi.h>
#include <KelInsInfra/registry/KelInsMSI.h>
#include <KelInsInfra/registry/KelInsReg.h>

namespace Sweeps {
namespace {

using namespace KelInsReg;

constexpr auto kRoot = RootKey::CurrentUser;
constexpr auto kView = RegistryView::DoNotForceRegView;
const std::string kName = "caf\xC3\xA9";
const std::string kText = "na\xC3\xAFve";

std::string Below(const Place& place)
{
    return place.key + "\\" + kName;
}

/// A key with two keys below it, one of them with a key of its own, and with values.
void MakeKeys(const Place& place)
{
    const std::string below = Below(place);
    CreateKey(kRoot, below + "\\a\\\xC3\xA9", kView);
    CreateKey(kRoot, below + "\\b", kView);
    const Key key = OpenKey(kRoot, below, AccessRights::ReadWrite, kView);
    SetValue(key, kName, kText);
    SetValue(key, "number\xC3\xA9", 7);
}

Key Opened(const Place& place)
{
    return OpenKey(kRoot, Below(place), AccessRights::ReadWrite, kView);
}

/// An operation on an open key, which is opened first.
Operation OnKey(const std::string& name, const std::function<std::string(const Key&)>& run,
                std::vector<std::string> texts)
{
    texts.push_back("OpenKey - $K\\" + kName + ", ReadWrite, DoNotForceRegView - ");
    return {.name = name,
            .exports = {"KelInsReg::" + name, "KelInsReg::OpenKey", "KelInsReg::Key::~Key", "KelInsReg::Key::Key"},
            .prepare = MakeKeys,
            .run = [run](const Place& p) { return run(Opened(p)); },
            .texts = texts};
}

std::string Lines(const std::vector<std::string>& names)
{
    std::string text;
    for (const std::string& name : names)
        text += name + "\n";
    return text;
}

void AddKeyChanges(std::vector<Operation>& operations)
{
    const std::string name = "$K\\" + kName;
    operations.push_back(
        {.name = "CreateKey",
         .exports = {"KelInsReg::CreateKey", "KelInsReg::Key::operator=", "KelInsReg::Key::Close",
                     "KelInsReg::Key::GetKey"},
         .run =
             [](const Place& p) {
                 Key key;
                 key = CreateKey(kRoot, Below(p), RegistryView::Force64RegView);
                 Key child = CreateKey(key, "\xC3\xA9", kView);
                 child.Close();
                 return InWords(child.GetKey() == nullptr);
             },
         .texts = {"CreateKey - " + name + ", Force64RegView - ", "CreateKey - \xC3\xA9, DoNotForceRegView - "}});
    operations.push_back({.name = "DeleteKey",
                          .exports = {"KelInsReg::DeleteKey"},
                          .prepare = [](const Place& p) { CreateKey(kRoot, Below(p), kView); },
                          .run =
                              [](const Place& p) {
                                  DeleteKey(kRoot, Below(p), kView);
                                  return "";
                              },
                          .texts = {"DeleteKey - " + name + ", DoNotForceRegView - "}});
    operations.push_back({.name = "DeleteKeyOfView",
                          .exports = {"KelInsReg::DeleteKey"},
                          .prepare = [](const Place& p) { CreateKey(kRoot, Below(p), kView); },
                          .run =
                              [](const Place& p) {
                                  DeleteKey(kRoot, Below(p), RegistryView::Force64RegView);
                                  return "";
                              },
                          .texts = {"DeleteKey - " + name + ", Force64RegView - "}});
    std::vector<std::string> treeTexts = {"GetSubkeys -  - "};
    for (const char* below : {"", "\\a", "\\a\\\xC3\xA9", "\\b", "\\", "\\a\\"})
        for (const char* operation : {"DeleteKey - ", "OpenKey - "})
            treeTexts.push_back(operation + name + below +
                                (operation[0] == 'O' ? ", ReadOnly, DoNotForceRegView - " : ", DoNotForceRegView - "));
    operations.push_back({.name = "DeleteKeyTree",
                          .exports = {"KelInsReg::DeleteKeyTree"},
                          .prepare = MakeKeys,
                          .run =
                              [](const Place& p) {
                                  DeleteKeyTree(kRoot, Below(p), kView);
                                  return "";
                              },
                          .texts = treeTexts});
}

void AddValues(std::vector<Operation>& operations)
{
    operations.push_back(OnKey("GetValue",
                               [](const Key& key) {
                                   std::string text;
                                   std::int32_t number = 0;
                                   GetValue(key, kName, text, kView);
                                   GetValue(key, "number\xC3\xA9", number, kView);
                                   return text + std::to_string(number);
                               },
                               {"GetValue - " + kName + " - ", "GetValue - " + kName + ", DoNotForceRegView - ",
                                "GetValue - number\xC3\xA9, DoNotForceRegView - "}));
    operations.back().documented = [](std::string_view result, std::string_view) {
        return result == "7"; // a text that cannot be converted is empty
    };
    operations.push_back({.name = "GetValueBelow",
                          .exports = {"KelInsReg::GetValue"},
                          .prepare = MakeKeys,
                          .run =
                              [](const Place& p) {
                                  std::int32_t number = 0;
                                  GetValue(kRoot, Below(p), "number\xC3\xA9", number, kView);
                                  return std::to_string(number);
                              },
                          .texts = {"OpenKey - $K\\" + kName + ", ReadOnly, DoNotForceRegView - ",
                                    "GetValue - number\xC3\xA9, DoNotForceRegView - "}});
    operations.push_back(OnKey("SetValue",
                               [](const Key& key) {
                                   SetValue(key, kName, "n\xC3\xA9w");
                                   SetValue(key, "number\xC3\xA9", -5);
                                   return "";
                               },
                               {"SetValue - " + kName + ", n\xC3\xA9w - ", "SetValue - number\xC3\xA9, -5 - "}));
    operations.push_back(OnKey("DeleteValue",
                               [](const Key& key) {
                                   DeleteValue(key, kName);
                                   return "";
                               },
                               {"DeleteValue - " + kName + " - "}));
}

void AddListings(std::vector<Operation>& operations)
{
    const auto unnamed = [](std::string_view result, std::string_view) {
        return result.starts_with("\n") || result.find("\n\n") != std::string_view::npos; // cannot be converted
    };
    operations.push_back(OnKey("GetSubkeys",
                               [](const Key& key) {
                                   std::vector<std::string> names;
                                   GetSubkeys(key, names);
                                   return Lines(names);
                               },
                               {"GetSubkeys -  - "}));
    operations.back().documented = unnamed;
    operations.push_back(OnKey("GetValues",
                               [](const Key& key) {
                                   std::vector<std::string> names;
                                   GetValues(key, names);
                                   return Lines(names);
                               },
                               {"GetValues -  - "}));
    operations.back().documented = unnamed;
    operations.push_back(
        {.name = "GetRootKeyHandleFromString",
         .exports = {"KelInsReg::GetRootKeyHandleFromString", "KelInsReg::HKLM", "KelInsReg::HKCU", "KelInsReg::HKCR"},
         .run = [](const Place&) {
             return InWords(GetRootKeyHandleFromString(HKCU) == kRoot) +
                    InWords(GetRootKeyHandleFromString(HKLM) == RootKey::LocalMachine) +
                    InWords(GetRootKeyHandleFromString(HKCR) == RootKey::ClassesRoot);
         }});
}

// --- Windows Installer: one installed product, put into its database by hand

constexpr const char* kUpgradeCode = "{C1234567-89AB-CDEF-0123-5EED00000002}";
const std::string kInstaller = R"(Software\Microsoft\Windows\CurrentVersion\Installer\)";
const std::string kProduct = "7654321ABA98FEDC103250EED0000002";
const std::string kAdvertisedKey = R"(Software\Classes\Installer\Products\)" + kProduct;
const std::string kProductKey = kInstaller + R"(UserData\S-1-5-18\Products\)" + kProduct;

std::string UpgradeKey()
{
    return kInstaller + R"(UpgradeCodes\)" + KelInsMSI::UUIDtoRegistryKey(kUpgradeCode);
}

void Install(const Place&)
{
    constexpr auto machine = RootKey::LocalMachine;
    SetValue(CreateKey(machine, UpgradeKey(), kView), kProduct, "");
    CreateKey(machine, kAdvertisedKey, kView);
    SetValue(CreateKey(machine, kProductKey + "\\InstallProperties", kView), "DisplayVersion", "1.2\xC3\xA9");
}

void Uninstall()
{
    for (const std::string& key : {UpgradeKey(), kAdvertisedKey, kProductKey})
        DeleteKeyTree(RootKey::LocalMachine, key, kView);
}

std::string ListVersions()
{
    std::string text;
    const std::vector<KelInsMSI::Version> versions = KelInsMSI::GetVersion(kUpgradeCode);
    for (const KelInsMSI::Version& version : versions)
        text += version.version + "|" + version.message + "|" + std::to_string(version.errorCode) + "\n";
    return text + InWords(KelInsMSI::HasFoundVersion(versions));
}

void AddInstallerDatabase(std::vector<Operation>& operations)
{
    operations.push_back({.name = "InstalledVersions",
                          .exports = {"KelInsMSI::GetVersion", "KelInsMSI::HasFoundVersion"},
                          .prepare = Install,
                          .run = [](const Place&) { return ListVersions(); },
                          .documented =
                              [](std::string_view result, std::string_view) {
                                  const bool toldAsEntry =
                                      result.find(" failed|") != std::string_view::npos ||
                                      result.find("corrupt|1610") != std::string_view::npos ||
                                      result.find("parameter was passed") != std::string_view::npos ||
                                      result.find("uninstalled|1605") != std::string_view::npos ||
                                      result.find("unrecognized|1608") != std::string_view::npos;
                                  return toldAsEntry || result == "||0\ntrue"; // a version that cannot be converted
                              },
                          .cleanUp = Uninstall});
}

} // namespace

void AddRegistryOperations(std::vector<Operation>& operations)
{
    AddKeyChanges(operations);
    AddValues(operations);
    AddListings(operations);
    AddInstallerDatabase(operations);
}

} // namespace Sweeps
