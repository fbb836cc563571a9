#include "Receipt.h"

#include "ErrorText.h"
#include "JsonFile.h"
#include <KelInsInfra/hash/KelInsUUID.h>
#include <KelInsInfra/io/KelInsIO.h>
#include <KelInsInfra/json/Driver.h>
#include <KelInsInfra/system/KelInsSys.h>
#include <stdexcept>

namespace Setup {
namespace {

using JSON::Driver;

Receipt Read(const std::string& file)
{
    const std::shared_ptr<JSON::Value> root = ReadJsonFile(file);
    Receipt receipt;
    Driver::GetAttribute(root, "product", receipt.product);
    std::shared_ptr<JSON::Value> options;
    Driver::GetAttribute(root, "options", options);
    for (const JSON::POSITION& option : options->GetObjectValues())
        receipt.options.emplace_back(option->first, option->second->GetString());
    return receipt;
}

} // namespace

const std::string Receipt::kFileName = "state.json";

void WriteReceipt(const std::string& target, const Manifest& manifest, const Properties& options)
{
    Driver driver;
    driver.NewObject();
    driver.AddToObject("product", Driver::CreateString(manifest.product, false));
    driver.AddToObject("version", Driver::CreateString(manifest.version, false));
    driver.AddToObject("id", Driver::CreateString(KelInsUUID::GetUUID(false), false));
    driver.AddToObject("user", Driver::CreateString(KelInsSys::GetUsername(), false));
    driver.AddToObject("target", Driver::CreateString(target, false));
    driver.AddToObject("files", Driver::CreateNumber(std::to_string(manifest.files.size())));
    driver.AddToObject("options", Driver::CreateObject()); // opened: what follows goes into it
    for (const auto& [name, value] : options)
        driver.AddToObject(name, Driver::CreateString(value, false));

    const std::string file = target + KelInsIO::Path::Sep + Receipt::kFileName;
    std::ofstream stream = KelInsIO::GetOutputFileStream(file, {});
    stream << driver.GetJSON() << std::flush;
    if (!stream)
        throw std::runtime_error("Failed to write " + file);
}

std::optional<Receipt> ReadReceipt(const std::string& target)
{
    const std::string file = target + KelInsIO::Path::Sep + Receipt::kFileName;
    if (!KelInsIO::Exists(file))
        return std::nullopt;
    try {
        return Read(file);
    } catch (const std::exception& error) {
        throw std::runtime_error(TextOf(error) + "\nNothing was changed. Restore the file " + file +
                                 "; or delete it, and try again: an uninstallation then leaves the server, and an "
                                 "upgrade forgets its options.");
    }
}

} // namespace Setup
