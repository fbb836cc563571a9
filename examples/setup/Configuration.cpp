#include "Configuration.h"

#include "ErrorText.h"
#include "Properties.h"
#include "ServerXml.h"
#include <KelInsInfra/config/KelInsIniFile.h>
#include <KelInsInfra/foundation/KelInsString.h>
#include <KelInsInfra/io/KelInsIO.h>
#include <stdexcept>

namespace Setup {
namespace {

using KelInsIniFile::Where;
using KelInsIO::Path;

const std::string kVersion = "1.0";
const std::string kSettings = "settings.ini";
const std::string kEnvironment = "start.env";
const std::string kProperties = "app.properties";
const std::string kServer = "server.xml";
const std::string kTemplates = "templates\\";

void ConfigureSettings(const std::string& file, const std::string& target)
{
    const auto set = [&](const char* section, const char* key, const std::string& value, Where where) {
        KelInsIniFile::Write(file, section, key, value, where, ';', false);
    };
    set("Installation", "Directory", target, Where::Replace);
    set("Installation", "Version", kVersion, Where::Replace);
    set("Paths", "Search", target + "\\bin", Where::Append);
    set("Paths", "Documents", target + "\\docs", Where::Prepend);
}

/// In single quotes, so that a shell takes every character as it is.
std::string ShellQuote(std::string text)
{
    KelInsString::ReplaceAll(text, "'", R"('\'')");
    return "'" + text + "'";
}

void ConfigureEnvironment(const std::string& file, const std::string& target)
{
    const auto set = [&](const char* name, const std::string& value, Where where) {
        KelInsIniFile::Write(file, "", name, value, where, ',', true);
    };
    set("APP_HOME", ShellQuote(Path::Slashify(target)), Where::Replace);
    set("APP_MODULES", "documents", Where::Append);
    set("APP_LANGUAGES", "de", Where::Prepend);
    set("APP_VERSION", kVersion, Where::Replace);
}

void ConfigureProperties(const std::string& file, const std::string& target)
{
    SetProperty(file, "install.dir", target);
    SetProperty(file, "install note", "Written by setup: do not edit!");
}

void ConfigureTemplate(const std::string& file, const std::string& target)
{
    KelInsIO::ReplaceInLines(file, "@prefix@", Path::Slashify(target));
    KelInsIO::ReplaceInLines(file, "@VERSION@", kVersion);
}

} // namespace

bool IsConfigured(const std::string& path)
{
    return path == kSettings || path == kEnvironment || path == kProperties || path == kServer ||
           path.starts_with(kTemplates);
}

const std::vector<std::string>& RequiredFiles()
{
    static const std::vector<std::string> files = {kSettings, kEnvironment, kProperties, kServer};
    return files;
}

void Configure(const std::string& target, const std::string& path)
{
    const std::string file = target + Path::Sep + path;
    try {
        if (path == kSettings)
            ConfigureSettings(file, target);
        else if (path == kEnvironment)
            ConfigureEnvironment(file, target);
        else if (path == kProperties)
            ConfigureProperties(file, target);
        else if (path == kServer)
            ConfigureServerXml(file, target);
        else
            ConfigureTemplate(file, target);
    } catch (const std::exception& error) {
        throw std::runtime_error(TextOf(error) + "\nThe file " + path +
                                 " could not be adapted to its place. Correct it in the payload.");
    }
}

} // namespace Setup
