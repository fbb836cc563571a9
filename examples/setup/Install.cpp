#include "Install.h"

#include "Configuration.h"
#include "Console.h"
#include "ErrorText.h"
#include "InstallList.h"
#include "Payload.h"
#include "Staging.h"
#include "Undo.h"
#include <KelInsInfra/foundation/KelInsString.h>
#include <KelInsInfra/io/FindFile.h>
#include <KelInsInfra/io/KelInsIO.h>
#include <algorithm>
#include <filesystem>
#include <iostream>
#include <stdexcept>

namespace Setup {
namespace {

using KelInsIO::Path;

std::string Megabytes(std::uint64_t bytes)
{
    return KelInsString::ToFixedPrecision(static_cast<double>(bytes) / 1e6, 1) + " MB";
}

/// "C:" alone would be the current directory on that drive.
std::filesystem::path ToStandardPath(const std::string& path)
{
    return KelInsString::Widen(Path(path).GetSubPath().empty() ? path + Path::Sep : path);
}

/// Whether a path is that directory or stands somewhere below it, in whatever spelling and through links, too.
bool IsInside(const std::string& path, const std::string& directory)
{
    namespace fs = std::filesystem;
    std::error_code ignored; // what cannot be asked is not the same
    const fs::path outer = ToStandardPath(directory);
    fs::path inner = ToStandardPath(path);
    for (; inner.has_relative_path(); inner = inner.parent_path())
        if (fs::equivalent(inner, outer, ignored))
            return true;
    return fs::equivalent(inner, outer, ignored);
}

void CheckTarget(const std::string& payload, const std::string& target)
{
    if (IsInside(payload, target))
        throw std::runtime_error("The payload " + payload + " stands inside the target " + target +
                                 ".\nChoose another target.");
    if (IsInside(target, payload))
        throw std::runtime_error("The target " + target + " stands inside the payload " + payload +
                                 ".\nChoose another target.");
    if (!KelInsIO::Exists(target))
        return;
    if (!KelInsIO::IsDirectory(target))
        throw std::runtime_error("The target " + target + " is a file.\nChoose another target.");
    if (KelInsIO::Exists(target + Path::Sep + InstallList::kFileName))
        throw std::runtime_error("Something is already installed in " + target +
                                 ".\nUninstall it first: setup uninstall \"" + target + "\"");
    if (!KelInsIO::FindFile::IsDirectoryEmpty(target))
        throw std::runtime_error("The target " + target + " is not empty.\nChoose a new or empty folder.");
}

bool HoldsFile(const Payload& payload, const std::string& path)
{
    return std::any_of(payload.files.begin(), payload.files.end(),
                       [&](const Payload::File& file) { return file.path == path; });
}

void CheckFiles(const Payload& payload)
{
    for (const std::string& required : RequiredFiles())
        if (!HoldsFile(payload, required))
            throw std::runtime_error("The payload " + payload.root + " has no file " + required +
                                     ".\nName the folder that holds it.");
    if (HoldsFile(payload, InstallList::kFileName))
        throw std::runtime_error("The payload " + payload.root + " is itself an installation: it holds the file " +
                                 InstallList::kFileName + ".\nName the folder that was installed from.");
}

void CheckSpace(const Payload& payload, const std::string& target)
{
    const std::string drive = Path(target).GetRoot();
    if (!KelInsIO::Exists(drive + Path::Sep))
        throw std::runtime_error("There is no drive or share " + drive + ".\nChoose another target.");
    const std::uint64_t needed = SpaceNeeded(payload);
    const std::uint64_t available = KelInsIO::GetFreeSpaceOnDisk(target);
    if (available == 0)
        throw std::runtime_error("No space is free on " + drive +
                                 ", or the system does not tell.\nChoose another target.");
    if (needed > available)
        throw std::runtime_error("Not enough space on " + drive + ": " + Megabytes(needed) + " are needed, " +
                                 Megabytes(available) + " are free.\nMake room there, or choose another drive.");
}

/// The target and the directories above it that do not exist yet, topmost first.
std::vector<std::string> MissingDirectories(const std::string& target)
{
    std::vector<std::string> missing;
    for (Path path(target); !path.IsEmpty() && !KelInsIO::Exists(path.GetPath()); path = path.GetParent())
        missing.insert(missing.begin(), path.GetPath());
    return missing;
}

/// The configured files come first: what is wrong with them shows before thousands of files are copied.
std::vector<Payload::File> FilesInOrder(const Payload& payload)
{
    std::vector<Payload::File> files = payload.files;
    std::stable_partition(files.begin(), files.end(),
                          [](const Payload::File& file) { return IsConfigured(file.path); });
    return files;
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

void MakeFiles(const Payload& payload, const std::string& target, Undo& undo, InstallListWriter& list)
{
    Progress progress("Copying", payload.files.size());
    for (const auto& [path, size] : FilesInOrder(payload)) {
        const std::string destination = target + Path::Sep + path;
        ExpectFree(destination);
        undo.WillMake(destination);
        StageFile(payload.root + Path::Sep + path, size, destination);
        if (IsConfigured(path)) {
            undo.WillMake(destination + "_TmpIniW"); // what a failing edit may leave beside the file
            undo.WillMake(destination + "_TmpRIL");
            Configure(target, path);
        }
        list.AddFile(path, DigestOfFile(destination));
        progress.Step();
    }
}

void Make(const Payload& payload, const std::string& target, Undo& undo)
{
    const std::vector<std::string> missing = MissingDirectories(target);
    for (const std::string& path : missing)
        undo.WillMake(path);
    KelInsIO::CreateDir(target);

    undo.WillMake(target + Path::Sep + InstallList::kFileName);
    InstallListWriter list(target);
    if (!missing.empty())
        list.AddDirectory(".");
    MakeDirectories(payload, target, undo, list);
    MakeFiles(payload, target, undo, list);
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

void Install(const std::string& payloadRoot, const std::string& target)
{
    const Payload payload = SurveyPayload(payloadRoot);
    CheckTarget(payloadRoot, target);
    CheckFiles(payload);
    CheckSpace(payload, target);

    std::cout << "Installing " << payload.files.size() << " files in " << target << std::endl;
    Undo undo;
    try {
        Make(payload, target, undo);
    } catch (const std::exception& error) {
        TakeBackAndFail(TextOf(error), undo);
    }
    std::cout << "Installed. To remove it again: setup uninstall \"" << target << "\"" << std::endl;
}

} // namespace Setup
