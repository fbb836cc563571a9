#pragma once

#include <string>
#include <vector>

namespace Setup {

/// What a payload is, as the file manifest.json in it tells:
///
///     {
///         "product": "Orchard Server",
///         "publisher": "Orchard Company",
///         "version": "1.0.0",
///         "upgradeCode": "{...}",
///         "package": {
///             "file": "server/orchard.msi",
///             "productCode": "{...}",
///             "options": ["SERVERPORT", "SITENAME"]
///         },
///         "files": {
///             "settings.ini": "<SHA-256 digest, 64 hexadecimal digits in lower case>",
///             "docs/hello.txt": "..."
///         }
///     }
///
/// The files are installed in the order in which they stand there.
struct Manifest
{
    struct File
    {
        std::string path; // relative to the payload, with '\' between the names
        std::string sha256;
    };

    static const std::string kFileName;

    std::string product;
    std::string publisher;
    std::string version;
    std::string upgradeCode;
    std::string package;              // a Windows Installer package: one of the files
    std::string productCode;          // of the package
    std::vector<std::string> options; // properties of the package that users may set
    std::vector<File> files;
};

/// @param payload  the folder with the manifest in it.
/// @throws std::runtime_error  when it cannot be read, is no JSON, or lacks something. Nothing is written to standard
///         output.
Manifest ReadManifest(const std::string& payload);

} // namespace Setup
