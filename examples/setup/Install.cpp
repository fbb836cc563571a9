#include "Install.h"

#include "Checks.h"
#include "Configuration.h"
#include "Console.h"
#include "ErrorText.h"
#include "InstallList.h"
#include "Receipt.h"
#include "Registration.h"
#include "Staging.h"
#include "Undo.h"
#include <KelInsInfra/io/KelInsIO.h>
#include <stdexcept>

namespace Setup {
namespace {

using KelInsIO::Path;

/// The target and the directories above it that do not exist yet, topmost first.
std::vector<std::string> MissingDirectories(const std::string& target)
{
    std::vector<std::string> missing;
    for (Path path(target); !path.IsEmpty() && !KelInsIO::Exists(path.GetPath()); path = path.GetParent())
        missing.insert(missing.begin(), path.GetPath());
    return missing;
}

/// Whatever stands there already is not ours: another program was faster, or two names differ only in case.
void ExpectFree(const std::string& path)
{
    if (KelInsIO::Exists(path))
        throw std::runtime_error(path + " exists already.\nSee whether the payload has this name twice, with small and "
                                        "capital letters, or whether another program writes there.");
}

void MakeDirectories(const Payload& payload, const std::string& target, Undo& undo, InstallListWriter& list)
{
    for (const std::string& path : payload.directories) {
        const std::string destination = target + Path::Sep + path;
        ExpectFree(destination);
        undo.WillMake(destination);
        KelInsIO::CreateDir(destination);
        list.AddDirectory(path);
    }
}

void MakeFile(const std::string& source, const std::string& target, const std::string& path, Undo& undo)
{
    const std::string destination = target + Path::Sep + path;
    ExpectFree(destination);
    undo.WillMake(destination);
    StageFile(source, KelInsIO::GetFileSize(source), destination);
    if (IsConfigured(path)) {
        undo.WillMake(destination + "_TmpIniW"); // what a failing edit may leave beside the file
        undo.WillMake(destination + "_TmpRIL");
        Configure(target, path);
    }
}

void MakeFiles(const Checked& checked, const std::string& target, Undo& undo, InstallListWriter& list)
{
    Progress progress("Copying", checked.manifest.files.size());
    for (const Manifest::File& file : checked.manifest.files) {
        if (file.path != checked.manifest.package) {
            MakeFile(checked.payload.root + Path::Sep + file.path, target, file.path, undo);
            list.AddFile(file.path, DigestOfFile(target + Path::Sep + file.path));
        }
        progress.Step();
    }
}

void Make(const Checked& checked, const std::string& target, const Properties& options, Undo& undo)
{
    const std::vector<std::string> missing = MissingDirectories(target);
    for (const std::string& path : missing)
        undo.WillMake(path);
    KelInsIO::CreateDir(target);

    // List, receipt and registration come before what they tell of: even an installation that is killed can then be
    // uninstalled.
    undo.WillMake(target + Path::Sep + InstallList::kFileName);
    InstallListWriter list(target);
    if (!missing.empty())
        list.AddDirectory(".");
    undo.WillMake(target + Path::Sep + Receipt::kFileName);
    WriteReceipt(target, checked.manifest, options);
    undo.WillDo([product = checked.manifest.product] { Unregister(product); });
    Register(checked.manifest, target);

    MakeDirectories(checked.payload, target, undo, list);
    MakeFiles(checked, target, undo, list);
}

[[noreturn]] void TakeBackAndFail(const std::string& reason, Undo& undo)
{
    const std::vector<std::string> left = undo.TakeBack();
    std::string text =
        reason + (left.empty() ? "\nNothing was installed: what had been copied is removed again."
                               : "\nThe installation was taken back, but this is left; delete it by hand:");
    for (const std::string& each : left)
        text += "\n  " + each;
    throw std::runtime_error(text);
}

} // namespace

void Install(const std::string& payloadRoot, const std::string& target, const Properties& options, Log& log)
{
    const Checked checked = CheckInstallation(payloadRoot, target, options, log);

    log.Tell("Installing " + std::to_string(checked.manifest.files.size()) + " files in " + target);
    Undo undo;
    try {
        Make(checked, target, options, undo);
        InstallServer(payloadRoot + Path::Sep + checked.manifest.package, target, options, log); // takes itself back
    } catch (const std::exception& error) {
        TakeBackAndFail(TextOf(error), undo);
    }
    log.Tell("Installed. To remove it again: setup uninstall \"" + target + "\"");
}

} // namespace Setup
