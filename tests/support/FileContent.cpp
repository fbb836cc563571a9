#include "FileContent.h"

#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace fs = std::filesystem;

namespace {

fs::path Native(const std::string& path)
{
    return {std::u8string(path.begin(), path.end())};
}

} // namespace

void WriteFileContent(const std::string& path, const std::string& content)
{
    std::ofstream stream(Native(path), std::ios_base::binary);
    stream << content;
    stream.close();
    if (!stream)
        throw std::runtime_error("cannot write " + path);
}

std::string ReadFileContent(const std::string& path)
{
    std::ifstream stream(Native(path), std::ios_base::binary);
    std::ostringstream text;
    text << stream.rdbuf();
    return stream.is_open() ? text.str() : "(no file)";
}

bool IsReadOnly(const std::string& path)
{
    return (fs::status(Native(path)).permissions() & fs::perms::owner_write) == fs::perms::none;
}
