#include "InstallList.h"

#include <KelInsInfra/foundation/KelInsString.h>
#include <KelInsInfra/hash/SHA256.h>
#include <KelInsInfra/io/KelInsIO.h>
#include <algorithm>
#include <stdexcept>

namespace Setup {
namespace {

constexpr std::size_t kDigestLength = 64;
const std::string kDirectoryMark = "# directory ";
const std::string kDigestEnd = "  ";

bool IsDigest(const std::string& text)
{
    return text.size() == kDigestLength && text.find_first_not_of("0123456789abcdef") == std::string::npos;
}

/// Names with '/' between them and nothing that could lead elsewhere: no drive or stream, no "..", no empty name.
bool IsPlainlyInside(const std::string& path)
{
    if (path.empty() || path.find_first_of("\\:") != std::string::npos || path.find('\0') != std::string::npos)
        return false;
    const auto names = KelInsString::Split(path, '/', true);
    return std::none_of(names.begin(), names.end(),
                        [](const std::string& name) { return name.empty() || name == "." || name == ".."; });
}

} // namespace

const std::string InstallList::kFileName = "installed-files.sha256";

InstallList::InstallList(std::istream& stream)
{
    for (std::string line; KelInsIO::GetLine(stream, line) && !stream.eof();)
        AddLine(line);
}

void InstallList::AddLine(const std::string& line)
{
    if (line.starts_with(kDirectoryMark)) {
        const std::string path = line.substr(kDirectoryMark.size());
        if (path == "." || IsPlainlyInside(path)) {
            directories_.insert(path);
            return;
        }
    } else if (line.size() > kDigestLength + kDigestEnd.size()) {
        const std::string digest = line.substr(0, kDigestLength);
        const std::string path = line.substr(kDigestLength + kDigestEnd.size());
        if (IsDigest(digest) && line.compare(kDigestLength, kDigestEnd.size(), kDigestEnd) == 0 &&
            IsPlainlyInside(path)) {
            digests_[path] = digest;
            return;
        }
    }
    throw std::runtime_error("Setup did not write this line: " + line);
}

const std::string* InstallList::FindFile(const std::string& path) const
{
    const auto found = digests_.find(path);
    return found == digests_.end() ? nullptr : &found->second;
}

bool InstallList::HasDirectory(const std::string& path) const
{
    return directories_.contains(path);
}

std::size_t InstallList::GetFileCount() const
{
    return digests_.size();
}

InstallListWriter::InstallListWriter(const std::string& target)
    : file_(target + KelInsIO::Path::Sep + InstallList::kFileName), stream_(KelInsIO::GetOutputFileStream(file_, {}))
{
    if (!stream_)
        throw std::runtime_error("Failed to open " + file_);
}

void InstallListWriter::AddDirectory(const std::string& path)
{
    WriteLine(kDirectoryMark + KelInsIO::Path::Slashify(path));
}

void InstallListWriter::AddFile(const std::string& path, const std::string& sha256)
{
    WriteLine(sha256 + kDigestEnd + KelInsIO::Path::Slashify(path));
}

void InstallListWriter::WriteLine(const std::string& line)
{
    stream_ << line << std::endl; // at once: see the class
    if (!stream_)
        throw std::runtime_error("Failed to write " + file_);
}

std::string DigestOfFile(const std::string& file)
{
    std::ifstream stream = KelInsIO::GetInputFileStream(file, {});
    KelInsHash::SHA256 hash;
    hash.Add(stream);
    if (!stream.eof() || stream.bad())
        throw std::runtime_error("Failed to read " + file);
    return hash.GetHash();
}

} // namespace Setup
