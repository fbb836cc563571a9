#include "Undo.h"

#include "ErrorText.h"
#include <KelInsInfra/io/FindFile.h>
#include <KelInsInfra/io/KelInsIO.h>
#include <stdexcept>

namespace Setup {
namespace {

void Remove(const std::string& path)
{
    if (!KelInsIO::Exists(path))
        return;
    if (KelInsIO::IsDirectory(path) && !KelInsIO::FindFile::IsDirectoryEmpty(path))
        throw std::runtime_error(path + " is not empty");
    KelInsIO::SetReadOnly(path, false);
    KelInsIO::Delete(path);
}

} // namespace

void Undo::WillDo(std::function<void()> takeBack)
{
    actions_.push_back(std::move(takeBack));
}

void Undo::WillMake(const std::string& path)
{
    WillDo([path] { Remove(path); });
}

std::vector<std::string> Undo::TakeBack()
{
    std::vector<std::string> left;
    for (; !actions_.empty(); actions_.pop_back()) {
        try {
            actions_.back()();
        } catch (const std::exception& error) {
            left.push_back(TextOf(error));
        }
    }
    return left;
}

} // namespace Setup
