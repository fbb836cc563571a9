#include "Server.h"

#include <KelInsInfra/config/KelInsIniFile.h>
#include <KelInsInfra/foundation/KelInsString.h>
#include <KelInsInfra/io/KelInsIO.h>
#include <KelInsInfra/registry/KelInsReg.h>
#include <algorithm>
#include <stdexcept>
#include <vector>

namespace Orchard {
namespace {

using KelInsIniFile::Where;
using KelInsReg::AccessRights;
using KelInsReg::Key;
using KelInsReg::RegistryView;
using KelInsReg::RootKey;

const std::string kSettings = "server.ini";
const std::string kWelcomePage = "welcome.html";
const std::string kSoftware = "Software";
const std::string kKey = "Orchard Server";
const std::string kBackupKey = "Orchard Server (before the installation)";
constexpr RegistryView kView = RegistryView::Force64RegView;

std::string BackupOf(const std::string& file)
{
    return file + ".before-orchard";
}

bool HasKey(const std::string& name)
{
    const Key software = KelInsReg::OpenKey(RootKey::LocalMachine, kSoftware, AccessRights::ReadOnly, kView);
    std::vector<std::string> names;
    KelInsReg::GetSubkeys(software, names);
    return std::find(names.begin(), names.end(), name) != names.end();
}

Key MakeKey(const std::string& name)
{
    return KelInsReg::CreateKey(RootKey::LocalMachine, kSoftware + '\\' + name, kView);
}

void DeleteKey(const std::string& name)
{
    if (HasKey(name))
        KelInsReg::DeleteKeyTree(RootKey::LocalMachine, kSoftware + '\\' + name, kView);
}

void WriteSettings(const Key& key, std::int32_t port, const std::string& site, const std::string& directory)
{
    KelInsReg::SetValue(key, "Port", port);
    KelInsReg::SetValue(key, "Site", site);
    KelInsReg::SetValue(key, "Directory", directory);
}

void CopySettings(const Key& from, const Key& to)
{
    std::int32_t port = 0;
    std::string site;
    std::string directory;
    KelInsReg::GetValue(from, "Port", port, kView);
    KelInsReg::GetValue(from, "Site", site, kView);
    KelInsReg::GetValue(from, "Directory", directory, kView);
    WriteSettings(to, port, site, directory);
}

bool HasSettings(const Key& key)
{
    std::vector<std::string> names;
    return KelInsReg::GetValues(key, names) != 0;
}

/// An upgrade finds the settings of the older version. A backup without any says that there were none.
void BackUpRegistry()
{
    DeleteKey(kBackupKey);
    const Key backup = MakeKey(kBackupKey);
    if (HasKey(kKey))
        CopySettings(MakeKey(kKey), backup);
}

void RestoreRegistry()
{
    if (!HasKey(kBackupKey))
        return; // nothing was done yet
    DeleteKey(kKey);
    const Key backup = MakeKey(kBackupKey);
    if (HasSettings(backup))
        CopySettings(backup, MakeKey(kKey));
    DeleteKey(kBackupKey);
}

void WriteSitesFile(const ServerData& data)
{
    if (!KelInsIO::Exists(data.sitesFile))
        throw std::runtime_error("SITESFILE is " + data.sitesFile + "; there is no such file.");
    KelInsIO::Copy(data.sitesFile, BackupOf(data.sitesFile));
    KelInsIniFile::Write(data.sitesFile, "Sites", data.site, data.port, Where::Replace, ';', false);
}

void RestoreSitesFile(const ServerData& data)
{
    const std::string backup = BackupOf(data.sitesFile);
    if (!KelInsIO::Exists(backup))
        return;
    const bool wasReadOnly = KelInsIO::SetReadOnly(data.sitesFile, false);
    KelInsIO::Copy(backup, data.sitesFile);
    KelInsIO::SetReadOnly(data.sitesFile, wasReadOnly);
    KelInsIO::Delete(backup);
}

void WriteFiles(const ServerData& data)
{
    const std::string settings = data.directory + kSettings;
    KelInsIniFile::Write(settings, "Listen", "Port", data.port, Where::Replace, ';', false);
    KelInsIniFile::Write(settings, "Paths", "Search", data.directory + "plugins", Where::Append, ';', false);

    const std::string page = data.directory + kWelcomePage;
    KelInsIO::ReplaceInLines(page, "@SITENAME@", data.site);
    KelInsIO::ReplaceInLines(page, "@SERVERPORT@", data.port);
}

} // namespace

void Configure(const ServerData& data)
{
    BackUpRegistry();
    if (!data.sitesFile.empty())
        WriteSitesFile(data);
    WriteFiles(data);
    WriteSettings(MakeKey(kKey), KelInsString::ToInt(data.port, 0), data.site, data.directory);
}

void Check(const ServerData& data)
{
    constexpr std::int32_t kHighestPort = 65535;
    const std::string port = KelInsIniFile::ReadValueOfKey(data.directory + kSettings, "Listen", "Port");
    const std::int32_t number = KelInsString::ToInt(port, 0);
    if (number < 1 || number > kHighestPort || port != std::to_string(number)) // "80 or so" begins with a number
        throw std::runtime_error("SERVERPORT is " + port + "; it must be a number from 1 to 65535.");
}

void Restore(const ServerData& data)
{
    if (!data.sitesFile.empty())
        RestoreSitesFile(data);
    RestoreRegistry();
}

void ForgetBackup(const ServerData& data)
{
    const std::string backup = BackupOf(data.sitesFile);
    if (!data.sitesFile.empty() && KelInsIO::Exists(backup))
        KelInsIO::Delete(backup);
    DeleteKey(kBackupKey);
}

void Unconfigure()
{
    DeleteKey(kKey);
}

} // namespace Orchard
