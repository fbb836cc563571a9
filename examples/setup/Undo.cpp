#include "Undo.h"

#include "ErrorText.h"
#include <KelInsInfra/io/FindFile.h>
#include <KelInsInfra/io/KelInsIO.h>

namespace Setup {

void Undo::WillMake(const std::string& path)
{
    paths_.push_back(path);
}

std::vector<std::string> Undo::TakeBack()
{
    std::vector<std::string> left;
    for (; !paths_.empty(); paths_.pop_back()) {
        const std::string& path = paths_.back();
        if (!KelInsIO::Exists(path))
            continue;
        try {
            if (KelInsIO::IsDirectory(path) && !KelInsIO::FindFile::IsDirectoryEmpty(path)) {
                left.push_back(path + " is not empty");
                continue;
            }
            KelInsIO::SetReadOnly(path, false);
            KelInsIO::Delete(path);
        } catch (const std::exception& error) {
            left.push_back(TextOf(error));
        }
    }
    return left;
}

} // namespace Setup
