#include "Verification.h"

#include "Console.h"
#include "InstallList.h"
#include <KelInsInfra/io/Path.h>
#include <set>
#include <stdexcept>

namespace Setup {
namespace {

[[noreturn]] void Fail(const std::string& reason)
{
    throw std::runtime_error(reason + "\nGet the payload again from where it came.");
}

void CheckNames(const Payload& payload, const Manifest& manifest)
{
    std::set<std::string> present;
    for (const Payload::File& file : payload.files)
        present.insert(file.path);
    for (const Manifest::File& file : manifest.files)
        if (present.erase(file.path) == 0)
            Fail("The payload lacks the file " + file.path + '.');
    present.erase(Manifest::kFileName);
    if (!present.empty())
        Fail("The payload holds a file that is not in its manifest: " + *present.begin());
}

} // namespace

void VerifyPayload(const Payload& payload, const Manifest& manifest)
{
    CheckNames(payload, manifest);
    Progress progress("Verifying", manifest.files.size());
    for (const Manifest::File& file : manifest.files) {
        const std::string name = payload.root + KelInsIO::Path::Sep + file.path;
        const std::string digest = DigestOfFile(name);
        if (digest != file.sha256)
            Fail("The file " + name + " was changed: its SHA-256 digest is\n  " + digest + ", it should be\n  " +
                 file.sha256);
        progress.Step();
    }
}

} // namespace Setup
