#include "Manifest.h"

#include "ErrorText.h"
#include "JsonFile.h"
#include <KelInsInfra/io/KelInsIO.h>
#include <KelInsInfra/json/Driver.h>
#include <algorithm>
#include <stdexcept>

namespace Setup {
namespace {

using ValuePointer = std::shared_ptr<JSON::Value>;

std::string Text(const ValuePointer& object, const std::string& name)
{
    std::string text;
    JSON::Driver::GetAttribute(object, name, text);
    return text;
}

ValuePointer Container(const ValuePointer& object, const std::string& name)
{
    ValuePointer value;
    JSON::Driver::GetAttribute(object, name, value);
    return value;
}

/// It becomes the name of a registry key.
void CheckProduct(const std::string& product)
{
    if (product.empty() || product.find('\\') != std::string::npos)
        throw std::runtime_error("\"" + product + "\" is not the name of a product.");
}

void ReadPackage(const ValuePointer& package, Manifest& manifest)
{
    manifest.package = KelInsIO::Path::NormalizePathSeparator(Text(package, "file"));
    manifest.productCode = Text(package, "productCode");
    for (const ValuePointer& option : Container(package, "options")->GetArrayValues())
        manifest.options.push_back(option->GetString());
}

void ReadFiles(const ValuePointer& files, Manifest& manifest)
{
    for (const JSON::POSITION& member : files->GetObjectValues()) // in the order of the file
        manifest.files.push_back({KelInsIO::Path::NormalizePathSeparator(member->first), member->second->GetString()});
    const auto isPackage = [&](const Manifest::File& file) { return file.path == manifest.package; };
    if (std::none_of(manifest.files.begin(), manifest.files.end(), isPackage))
        throw std::runtime_error("The package " + manifest.package + " is not among the files.");
}

} // namespace

const std::string Manifest::kFileName = "manifest.json";

Manifest ReadManifest(const std::string& payload)
{
    const std::string file = payload + KelInsIO::Path::Sep + Manifest::kFileName;
    const ValuePointer root = ReadJsonFile(file);
    try {
        Manifest manifest;
        manifest.product = Text(root, "product");
        manifest.publisher = Text(root, "publisher");
        manifest.version = Text(root, "version");
        manifest.upgradeCode = Text(root, "upgradeCode");
        CheckProduct(manifest.product);
        ReadPackage(Container(root, "package"), manifest);
        ReadFiles(Container(root, "files"), manifest);
        return manifest;
    } catch (const std::exception& error) {
        throw std::runtime_error(TextOf(error) + "\nThe manifest " + file +
                                 " is not complete. Get the payload again from where it came.");
    }
}

} // namespace Setup
