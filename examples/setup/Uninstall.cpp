#include "Uninstall.h"

#include "Console.h"
#include "ErrorText.h"
#include "InstallList.h"
#include "Package.h"
#include "Places.h"
#include "Receipt.h"
#include "Registration.h"
#include "SystemFacts.h"
#include <KelInsInfra/io/FindFile.h>
#include <KelInsInfra/io/KelInsIO.h>
#include <optional>
#include <stdexcept>
#include <vector>

namespace Setup {
namespace {

using KelInsIO::FindFile;
using KelInsIO::Path;
using KelInsIO::Type;

struct Entry
{
    std::string name;
    bool isDirectory; // a link to a directory is none: it is never entered
};

std::vector<Entry> ReadDirectory(const std::string& directory)
{
    std::vector<Entry> entries; // read to the end first: an open search would keep the directory from being removed
    for (FindFile entry(directory, Type::Directory | Type::File); !entry.End(); entry.Next())
        entries.push_back({entry.GetName(), entry.IsDirectory() && !entry.GetType().Has(Type::ReparsePoint)});
    return entries;
}

struct Result
{
    std::size_t removed = 0;
    std::vector<std::string> kept;   // the user's own files, relative to the target
    std::vector<std::string> failed; // reasons
};

/// Walks through the target and removes what the list knows. The list is only asked, its paths are never followed:
/// whatever stands in it, nothing outside the target is touched.
class Remover
{
public:
    Remover(std::string target, const InstallList& list)
        : target_(std::move(target)), list_(list), progress_("Removing", list.GetFileCount())
    {}

    Result Run()
    {
        CleanDirectory("");
        return result_;
    }

private:
    /// @param directory  relative to the target, with '/' between the names; empty for the target itself.
    void CleanDirectory(const std::string& directory)
    {
        const std::string prefix = directory.empty() ? "" : directory + '/';
        for (const Entry& entry : ReadDirectory(directory.empty() ? target_ : FullName(directory))) {
            const std::string path = prefix + entry.name;
            if (entry.isDirectory) {
                CleanDirectory(path);
                RemoveDirectoryIfEmpty(path);
            } else if (path != InstallList::kFileName && path != Receipt::kFileName) {
                RemoveFileIfInstalled(path);
            }
        }
    }

    void RemoveDirectoryIfEmpty(const std::string& path)
    {
        if (list_.HasDirectory(path) && FindFile::IsDirectoryEmpty(FullName(path)))
            Try([&] { KelInsIO::Delete(FullName(path)); });
    }

    void RemoveFileIfInstalled(const std::string& path)
    {
        const std::string* digest = list_.FindFile(path);
        if (digest == nullptr) {
            result_.kept.push_back(path + " (added)");
            return;
        }
        Try([&] { RemoveFileIfUnchanged(path, *digest); });
        progress_.Step();
    }

    void RemoveFileIfUnchanged(const std::string& path, const std::string& digest)
    {
        const std::string file = FullName(path);
        if (DigestOfFile(file) != digest) {
            result_.kept.push_back(path + " (changed)");
            return;
        }
        KelInsIO::SetReadOnly(file, false);
        KelInsIO::Delete(file);
        ++result_.removed;
    }

    std::string FullName(const std::string& path) const { return target_ + Path::Sep + path; }

    template <typename Call>
    void Try(const Call& call) // a file in use must not keep the others from being removed
    {
        try {
            call();
        } catch (const std::exception& error) {
            result_.failed.push_back(TextOf(error));
        }
    }

    std::string target_;
    const InstallList& list_;
    Progress progress_;
    Result result_;
};

InstallList ReadList(const std::string& file, const std::string& target)
{
    if (!KelInsIO::Exists(file))
        throw std::runtime_error("Nothing is installed in " + target + ": it has no file " + InstallList::kFileName +
                                 ".\nCheck how the folder's name is written.");
    std::ifstream stream = KelInsIO::GetInputFileStream(file, {});
    if (!stream)
        throw std::runtime_error("Failed to open " + file + "\nClose the program that uses it, and try again.");
    try {
        return InstallList(stream);
    } catch (const std::exception& error) {
        throw std::runtime_error("The list of installed files, " + file + ", was changed.\n" + TextOf(error) +
                                 "\nNothing was removed. Restore the list, or delete the folder by hand.");
    }
}

/// The registration of the product that stands in the target. Only the receipt is asked for the product's name:
/// whatever else was written into it leads nowhere.
std::optional<Registration> RegistrationOf(const std::string& target, const std::string& product)
{
    std::optional<Registration> registration = FindRegistration(product);
    if (registration && !IsSame(registration->target, target))
        registration.reset(); // the product is installed elsewhere
    return registration;
}

/// Empty where there is no receipt.
std::string ReadProduct(const std::string& target, Log& log)
{
    const std::optional<Receipt> receipt = ReadReceipt(target);
    if (receipt)
        return receipt->product;
    log.Tell("There is no " + Receipt::kFileName + ": an installed server, and an entry among the installed " +
             "programs, stay.");
    return "";
}

void TellKept(const std::vector<std::string>& kept, Log& log)
{
    constexpr std::size_t kMost = 20;
    if (kept.empty())
        return;
    std::string text = "Your own files stay:";
    for (std::size_t i = 0; i < kept.size() && i < kMost; ++i)
        text += "\n  " + kept[i];
    if (kept.size() > kMost)
        text += "\n  and " + std::to_string(kept.size() - kMost) + " more";
    log.Tell(text);
}

[[noreturn]] void Fail(const std::vector<std::string>& failed)
{
    std::string text = "Not everything could be removed:";
    for (const std::string& reason : failed)
        text += "\n  " + reason;
    throw std::runtime_error(text + "\nClose the programs that use these files, and uninstall again.");
}

} // namespace

void Uninstall(const std::string& target, Log& log)
{
    ExpectAdministrator();
    const std::string listFile = target + Path::Sep + InstallList::kFileName;
    const InstallList list = ReadList(listFile, target);
    const std::string product = ReadProduct(target, log);
    const std::optional<Registration> registration = RegistrationOf(target, product);

    log.Tell("Uninstalling " + std::to_string(list.GetFileCount()) + " files from " + target);
    if (registration)
        RemovePackage(registration->productCode, log);
    const Result result = Remover(target, list).Run();
    log.Tell("Removed " + std::to_string(result.removed) + " files.");
    TellKept(result.kept, log);
    if (!result.failed.empty())
        Fail(result.failed); // list, receipt and registration stay, so that it can be tried again

    if (registration)
        Unregister(product);
    const std::string receiptFile = target + Path::Sep + Receipt::kFileName;
    if (KelInsIO::Exists(receiptFile))
        KelInsIO::Delete(receiptFile);
    KelInsIO::Delete(listFile);
    if (list.HasDirectory(".") && FindFile::IsDirectoryEmpty(target))
        KelInsIO::Delete(target);
}

} // namespace Setup
