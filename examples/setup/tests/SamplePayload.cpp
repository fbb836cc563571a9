#include "SamplePayload.h"

#include "../InstallList.h"
#include "../Manifest.h"
#include "../Package.h"
#include "../Payload.h"
#include "../Registration.h"
#include <KelInsInfra/io/KelInsIO.h>
#include <KelInsInfra/system/KelInsSys.h>

namespace {

const std::string kProduct = "Orchard Server";
const std::string kProductCodes[] = {"{A0000001-4B1D-4E0B-9C3C-1F2E3D4C5B60}",
                                     "{A0000002-4B1D-4E0B-9C3C-1F2E3D4C5B60}"};

} // namespace

std::string ReadFile(const std::string& file)
{
    std::ifstream stream = KelInsIO::GetInputFileStream(file, {});
    return KelInsIO::InputStreamToString(stream);
}

void WriteFile(const std::string& file, const std::string& text)
{
    KelInsIO::CreateDir(KelInsIO::Path(file).GetParent().GetPath());
    KelInsIO::GetOutputFileStream(file, {}) << text;
}

SamplePayload::SamplePayload(const std::string& packageVersion) : version(packageVersion)
{
    KelInsIO::Copy(KelInsSys::GetExecutableDirPath() + R"(\orchard-)" + version + ".msi", package);
    WriteFile(root + R"(\settings.ini)", "[Paths]\n");
    WriteFile(root + R"(\start.env)", "");
    WriteFile(root + R"(\app.properties)", "");
    WriteFile(root + R"(\server.xml)", "<Server><Service><Connector/></Service></Server>");
    WriteFile(root + R"(\docs\read me.txt)", "text");
    KelInsIO::CreateDir(root + R"(\empty)");
    WriteManifest();
}

SamplePayload::~SamplePayload()
{
    try {
        if (const auto registration = Setup::FindRegistration(kProduct)) {
            Setup::RemovePackage(registration->productCode, log);
            Setup::Unregister(kProduct);
        }
    } catch (const std::exception&) { // the test that comes next will tell
    }
}

void SamplePayload::Write(const std::string& path, const std::string& text) const
{
    WriteFile(root + KelInsIO::Path::Sep + path, text);
    WriteManifest();
}

void SamplePayload::WriteManifest() const
{
    std::string files;
    for (const Setup::Payload::File& file : Setup::SurveyPayload(root).files)
        if (file.path != Setup::Manifest::kFileName)
            files += std::string(files.empty() ? "" : ",") + "\n\"" + KelInsIO::Path::Slashify(file.path) + "\": \"" +
                     Setup::DigestOfFile(root + KelInsIO::Path::Sep + file.path) + '"';
    WriteFile(root + KelInsIO::Path::Sep + Setup::Manifest::kFileName,
              R"({"product": "Orchard Server", "publisher": "Orchard Company", "version": ")" + version +
                  R"(", "upgradeCode": "{6F0B8F0C-7C5B-4D57-9F7E-0C8E2B1D4A60}", )" +
                  R"("package": {"file": "server/orchard.msi", "productCode": ")" + kProductCodes[version == "2.0.0"] +
                  R"(", "options": ["SERVERPORT", "SITENAME"]}, "files": {)" + files + "}}");
}
