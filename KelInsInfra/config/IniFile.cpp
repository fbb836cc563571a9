#include <KelInsInfra/config/internal/IniLines.h>
#include <KelInsInfra/io/KelInsIO.h>
#include <KelInsInfra/io/internal/RewriteFile.h>
#include <KelInsInfra/io/internal/TextLines.h>

namespace KelInsIniFile {
namespace {

void CheckArguments(const std::string& fileName, const std::string& key)
{
    if (fileName.empty())
        throw std::runtime_error("Filename is empty");
    if (key.empty())
        throw std::runtime_error("Key is empty");
}

/// Content of the file; empty where there is none yet, and its directory then exists. What can be opened is not
/// missing, whatever the system says when it is asked: its lines must not be lost. Names that mean another file once a
/// path is made of them (those in quotes) are opened only when there is a file of that very name.
std::string Load(const std::string& fileName)
{
    const KelInsIO::Path path(fileName);
    const bool isItsOwnName = path.GetPath() == KelInsIO::Path::NormalizePathSeparator(fileName);
    std::ifstream stream;
    if (isItsOwnName)
        stream = KelInsIO::GetInputFileStream(path, std::ios_base::in);
    if (!stream.is_open() && !(KelInsIO::Exists(fileName) && KelInsIO::IsFile(fileName))) {
        KelInsIO::CreateDir(path.GetParent().GetPath());
        return {};
    }
    if (!isItsOwnName)
        stream = KelInsIO::GetInputFileStream(path, std::ios_base::in);
    return KelInsIO::ReadForRewriting(stream, fileName, {});
}

} // namespace

std::string ReadValueOfKey(const std::string& fileName, const std::string& section, const std::string& key)
{
    CheckArguments(fileName, key);
    std::ifstream stream = KelInsIO::GetInputFileStream(fileName, std::ios_base::in);
    if (stream.fail())
        throw std::runtime_error("Failed to open " + fileName);
    KeySearch search(section, key);
    KelInsIO::LineReader lines(stream);
    while (const auto line = lines.Next())
        if (const auto value = search.Examine(*line))
            return std::string(*value);
    throw KeyNotFoundException("The key " + key + " was not found in section " + section + " in file " + fileName);
}

void Write(const std::string& fileName, const std::string& section, const std::string& key, const std::string& value,
           Where where, char separator, bool shellExport)
{
    CheckArguments(fileName, key);
    const std::string content = AssignKey(Load(fileName), {.fileName = fileName,
                                                           .section = section,
                                                           .key = key,
                                                           .value = value,
                                                           .where = where,
                                                           .separator = separator,
                                                           .shellExport = shellExport});
    KelInsIO::RewriteFile(fileName, fileName + "_TmpIniW", content, {});
}

} // namespace KelInsIniFile
