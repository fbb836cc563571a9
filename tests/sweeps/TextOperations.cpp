#include "Operation.h"

#include <KelInsInfra/config/KelInsJavaProperties.h>
#include <KelInsInfra/foundation/KelInsString.h>
#include <KelInsInfra/hash/KelInsUUID.h>
#include <KelInsInfra/hash/SHA256.h>
#include <KelInsInfra/io/KelInsIO.h>
#include <KelInsInfra/registry/KelInsMSI.h>
#include <KelInsInfra/system/ProcessBuilder.h>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <streambuf>

namespace Sweeps {
namespace {

using KelInsIO::Path;

/// Longer than what a string holds without a block of the heap.
const std::string kLong = "a text that is longer than small ones; it has = and : and \\ and / and \"quotes\" in it";

std::string Joined(const std::vector<std::string>& pieces)
{
    std::string text;
    for (const std::string& piece : pieces)
        text += piece + "\n";
    return text;
}

void AddStringUtilities(std::vector<Operation>& operations)
{
    operations.push_back({.name = "RemoveAll", .exports = {"KelInsString::RemoveAll"}, .run = [](const Place&) {
                              std::string text = kLong;
                              return std::to_string(KelInsString::RemoveAll(text, 'a')) + text;
                          }});
    operations.push_back({.name = "ReplaceAll", .exports = {"KelInsString::ReplaceAll"}, .run = [](const Place&) {
                              std::string text = kLong;
                              const int texts = KelInsString::ReplaceAll(text, "and", "as well as", 0);
                              const int letters = KelInsString::ReplaceAll(text, 's', 'z', 0);
                              return std::to_string(texts) + std::to_string(letters) + text;
                          }});
    operations.push_back({.name = "Split", .exports = {"KelInsString::Split"}, .run = [](const Place&) {
                              return Joined(KelInsString::Split(kLong, " and ", true)) +
                                     Joined(KelInsString::Split(kLong, ';', false));
                          }});
    operations.push_back(
        {.name = "Numbers",
         .exports = {"KelInsString::ToFixedPrecision", "KelInsString::ToInt", "KelInsString::ToSize_t"},
         .run = [](const Place&) {
             return KelInsString::ToFixedPrecision(1e40, 30) + std::to_string(KelInsString::ToInt("12x", 5)) +
                    std::to_string(KelInsString::ToSize_t("34y", 5));
         }});
    operations.push_back({.name = "Properties",
                          .exports = {"KelInsJavaProperties::loadConvert", "KelInsJavaProperties::saveConvert"},
                          .run = [](const Place&) {
                              const std::string saved = KelInsJavaProperties::saveConvert(kLong, true);
                              return saved + KelInsJavaProperties::loadConvert(saved);
                          }});
    operations.push_back({.name = "PackedGuids",
                          .exports = {"KelInsMSI::RegistryKeyToUUID", "KelInsMSI::UUIDtoRegistryKey"},
                          .run = [](const Place&) {
                              return KelInsMSI::RegistryKeyToUUID(
                                  KelInsMSI::UUIDtoRegistryKey("{C1234567-89AB-CDEF-0123-456789ABCDEF}"));
                          }});
    operations.push_back(
        {.name = "SplitArguments", .exports = {"KelInsSys::ProcessBuilder::SplitArguments"}, .run = [](const Place&) {
             return Joined(KelInsSys::ProcessBuilder::SplitArguments(kLong + " 'one long argument'"));
         }});
}

void AddPathText(std::vector<Operation>& operations)
{
    operations.push_back({.name = "PathText",
                          .exports = {"KelInsIO::Path::CleanPath", "KelInsIO::Path::NormalizePathSeparator",
                                      "KelInsIO::Path::Slashify", "KelInsIO::Path::NormalizeConcatSeparator",
                                      "KelInsIO::Path::AltConcatSep", "KelInsIO::Path::AltConcatSepC",
                                      "KelInsIO::Path::AltSep", "KelInsIO::Path::AltSepC", "KelInsIO::Path::ConcatSep",
                                      "KelInsIO::Path::ConcatSepC", "KelInsIO::Path::Sep", "KelInsIO::Path::SepC"},
                          .run = [](const Place&) {
                              const std::string text = "\"C:/a folder with a long name//b/\"";
                              return Path::CleanPath(text) + Path::NormalizePathSeparator(text) + Path::Slashify(text) +
                                     Path::NormalizeConcatSeparator("C:/a:/b:D:/c folder with a long name") +
                                     Path::Sep + Path::AltSep + Path::ConcatSep + Path::AltConcatSep + Path::SepC +
                                     Path::AltSepC + Path::ConcatSepC + Path::AltConcatSepC;
                          }});
    operations.push_back(
        {.name = "Path",
         .exports = {"KelInsIO::Path::Path", "KelInsIO::Path::~Path", "KelInsIO::Path::operator=",
                     "KelInsIO::Path::operator==", "KelInsIO::Path::operator!=", "KelInsIO::Path::operator+",
                     "KelInsIO::Path::operator+=", "KelInsIO::Path::GetFileName", "KelInsIO::Path::GetParent",
                     "KelInsIO::Path::GetPath", "KelInsIO::Path::GetRoot", "KelInsIO::Path::GetSubPath",
                     "KelInsIO::Path::IsAbsolute", "KelInsIO::Path::IsEmpty", "KelInsIO::Path::Clear",
                     "KelInsIO::Path::Relativize", "KelInsIO::Path::Resolve"},
         .run = [](const Place&) {
             const Path base("C:/a folder with a long name/b");
             Path path = base + Path("another long name in it") + "and one more, long as well";
             path += "..";
             path += Path("x");
             Path copy;
             copy = path;
             const Path moved = std::move(copy);
             copy = base;
             std::string text = moved.GetPath() + moved.GetRoot() + moved.GetSubPath() + moved.GetFileName() +
                                moved.GetParent().GetPath() + base.Relativize(path).GetPath() +
                                base.Resolve(Path("relative, and long enough")).GetPath();
             text += InWords(moved == path) + InWords(moved != base) + InWords(moved == text) + InWords(moved != text) +
                     InWords(moved.IsAbsolute());
             copy.Clear();
             return text + InWords(copy.IsEmpty());
         }});
}

void AddStreamReading(std::vector<Operation>& operations)
{
    operations.push_back({.name = "GetLine", .exports = {"KelInsIO::GetLine"}, .run = [](const Place&) {
                              std::istringstream stream(kLong + kLong + "\r\nx");
                              std::string line;
                              KelInsIO::GetLine(stream, line);
                              std::wistringstream wideStream(std::wstring(100, L'x') + L"\r\nx");
                              std::wstring wideLine;
                              KelInsIO::GetLine(wideStream, wideLine);
                              if (!stream || !wideStream) // as std::getline: what it throws stays in the stream
                                  throw std::bad_alloc();
                              return line + std::to_string(wideLine.size());
                          }});
    operations.push_back(
        {.name = "InputStreamToString", .exports = {"KelInsIO::InputStreamToString"}, .run = [](const Place&) {
             std::istringstream stream(std::string(5000, 'x'));
             return KelInsIO::InputStreamToString(stream);
         }});
}

/// A source of text that takes a block of the heap for each piece, as a file's buffer may.
class PiecewiseBuffer : public std::streambuf
{
protected:
    int_type underflow() override
    {
        if (pieces_ == 3)
            return traits_type::eof();
        ++pieces_;
        piece_ = std::make_unique<std::string>(100, static_cast<char>('a' + pieces_));
        setg(piece_->data(), piece_->data(), piece_->data() + piece_->size());
        return traits_type::to_int_type(*gptr());
    }

private:
    int pieces_ = 0;
    std::unique_ptr<std::string> piece_;
};

/// Without memory nothing may have been read, nor any of it have been appended.
void AddWholly(KelInsHash::SHA256& hash, std::istream& stream, const std::string& digestBefore)
{
    try {
        hash.Add(stream);
    } catch (const std::bad_alloc&) {
        if (!stream.good() || stream.tellg() != std::istream::pos_type(0) || hash.GetHash() != digestBefore)
            throw std::logic_error("part of the stream was taken");
        throw;
    }
}

void AddStreamHashes(std::vector<Operation>& operations)
{
    const std::vector<std::string> exports = {"KelInsHash::SHA256::Add", "KelInsHash::SHA256::GetHash"};
    operations.push_back({.name = "Sha256OfStream", .exports = exports, .run = [](const Place&) {
                              KelInsHash::SHA256 hash;
                              hash.Add(kLong);
                              const std::string before = hash.GetHash();
                              std::istringstream stream(std::string(150'000, 's')); // two pieces and a part
                              AddWholly(hash, stream, before);
                              return hash.GetHash();
                          }});
    operations.push_back({.name = "Sha256OfStreamThatFails", .exports = exports, .run = [](const Place&) {
                              PiecewiseBuffer buffer;
                              std::istream stream(&buffer);
                              KelInsHash::SHA256 hash;
                              hash.Add(stream);
                              if (stream.bad()) // what the buffer throws stays in the stream
                                  throw std::bad_alloc();
                              return hash.GetHash();
                          }});
    operations.push_back({.name = "Sha256OfStreamThatThrows", .exports = exports, .run = [](const Place&) {
                              PiecewiseBuffer buffer;
                              std::istream stream(&buffer);
                              stream.exceptions(std::ios_base::badbit);
                              KelInsHash::SHA256 hash;
                              hash.Add(stream);
                              return hash.GetHash();
                          }});
}

void AddHashes(std::vector<Operation>& operations)
{
    operations.push_back({.name = "Sha256",
                          .exports = {"KelInsHash::SHA256::Add", "KelInsHash::SHA256::GetHash",
                                      "KelInsHash::SHA256::Reset", "KelInsHash::SHA256::SHA256"},
                          .run = [](const Place&) {
                              KelInsHash::SHA256 hash;
                              hash.Add("x", 1);
                              hash.Reset();
                              hash.Add(kLong);
                              const KelInsHash::SHA256 copy = hash;
                              return hash.GetHash() + copy.GetHash() + hash.GetHash();
                          }});
    operations.push_back({.name = "Sha256OfText", .exports = {"KelInsHash::SHA256::GetHash"}, .run = [](const Place&) {
                              return KelInsHash::SHA256::GetHash(kLong);
                          }});
    operations.push_back({.name = "Uuid", .exports = {"KelInsUUID::GetUUID"}, .run = [](const Place&) {
                              return std::to_string(KelInsUUID::GetUUID(true).size() +
                                                    KelInsUUID::GetUUID(false).size());
                          }});
}

} // namespace

void AddTextOperations(std::vector<Operation>& operations)
{
    AddStringUtilities(operations);
    AddPathText(operations);
    AddStreamReading(operations);
    AddHashes(operations);
    AddStreamHashes(operations);
}

} // namespace Sweeps
