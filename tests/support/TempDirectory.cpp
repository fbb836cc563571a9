#include "TempDirectory.h"

#include <atomic>
#include <random>

namespace fs = std::filesystem;

namespace {

std::string ToUtf8(const fs::path& path)
{
    const std::u8string text = path.u8string();
    return {text.begin(), text.end()};
}

void MakeWritable(const fs::path& root)
{
    std::error_code ignored;
    for (fs::recursive_directory_iterator entry(root, ignored), end; entry != end; entry.increment(ignored))
        if (!entry->is_symlink(ignored))
            fs::permissions(entry->path(), fs::perms::owner_write, fs::perm_options::add, ignored);
}

} // namespace

TempDirectory::TempDirectory()
{
    static std::atomic<unsigned> counter = 0;
    static const unsigned process = std::random_device()();
    do
        path_ = fs::temp_directory_path() / ("kelins_" + std::to_string(process) + "_" + std::to_string(counter++));
    while (!fs::create_directory(path_));
}

TempDirectory::~TempDirectory()
{
    std::error_code ignored;
    fs::remove_all(path_, ignored);
    if (!fs::exists(path_, ignored))
        return;
    MakeWritable(path_);
    fs::remove_all(path_, ignored);
}

std::string TempDirectory::Path() const
{
    return ToUtf8(path_);
}

std::string TempDirectory::operator/(const std::string& name) const
{
    return Path() + static_cast<char>(fs::path::preferred_separator) + name;
}
