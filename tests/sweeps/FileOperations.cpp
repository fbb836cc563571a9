#include "Operation.h"

#include "tests/support/Files.h"
#include <KelInsInfra/io/FindFile.h>
#include <KelInsInfra/io/KelInsIO.h>

namespace Sweeps {
namespace {

using KelInsIO::FindFile;
using KelInsIO::Type;

/// Two blocks of a copy, and a little.
const std::string kContent(150'000, 'c');

std::string File(const Place& place)
{
    return place.directory + "\\file";
}

std::string Tree(const Place& place)
{
    return place.directory + "\\tree";
}

void MakeOneFile(const Place& place)
{
    MakeFile(File(place), kContent);
}

void MakeTree(const Place& place)
{
    MakeDirectories(Tree(place) + "\\sub\\empty");
    MakeFile(Tree(place) + "\\a", "first");
    MakeFile(Tree(place) + "\\sub\\b", kContent);
}

void MakeReadOnly(const Place& place)
{
    MakeOneFile(place);
    KelInsIO::SetReadOnly(File(place), true);
}

std::string TypeInWords(BitMask<Type> type)
{
    return std::to_string(type.GetValue());
}

void AddQuestions(std::vector<Operation>& operations)
{
    const std::vector<std::string> cannotAsk = {"GetType - $\\file - "};
    operations.push_back({.name = "GetType",
                          .exports = {"KelInsIO::GetType"},
                          .prepare = MakeOneFile,
                          .run = [](const Place& p) { return TypeInWords(KelInsIO::GetType(File(p))); },
                          .texts = cannotAsk});
    operations.push_back({.name = "IsDirectory",
                          .exports = {"KelInsIO::IsDirectory"},
                          .prepare = MakeOneFile,
                          .run = [](const Place& p) { return InWords(KelInsIO::IsDirectory(File(p))); },
                          .texts = cannotAsk});
    operations.push_back({.name = "IsFile",
                          .exports = {"KelInsIO::IsFile"},
                          .prepare = MakeOneFile,
                          .run = [](const Place& p) { return InWords(KelInsIO::IsFile(File(p))); },
                          .texts = cannotAsk});
    operations.push_back({.name = "Exists",
                          .exports = {"KelInsIO::Exists"},
                          .prepare = MakeOneFile,
                          .run = [](const Place& p) { return InWords(KelInsIO::Exists(File(p))); },
                          .documented = IsFalse});
    operations.push_back({.name = "GetFileSize",
                          .exports = {"KelInsIO::GetFileSize"},
                          .prepare = MakeOneFile,
                          .run = [](const Place& p) { return std::to_string(KelInsIO::GetFileSize(File(p))); },
                          .texts = {"GetFileSize - $\\file does not exist.\n", "GetFileSize - Cannot stat $\\file - ",
                                    "GetType - $\\file - "}});
    operations.push_back(
        {.name = "GetFreeSpaceOnDisk",
         .exports = {"KelInsIO::GetFreeSpaceOnDisk"},
         .run = [](const Place& p) { return KelInsIO::GetFreeSpaceOnDisk(p.directory) == 0 ? "0" : "some"; },
         .documented = IsZero});
    operations.push_back(
        {.name = "GetTime",
         .exports = {"KelInsIO::GetTime"},
         .prepare = MakeOneFile,
         .run = [](const Place& p) { return KelInsIO::GetTime(File(p)).modificationTime == 0 ? "none" : "some"; },
         .texts = {"GetTime - $\\file - "}});
    operations.push_back(
        {.name = "GetChmod", .exports = {"KelInsIO::GetChmod"}, .prepare = MakeOneFile, .run = [](const Place& p) {
             return std::to_string(KelInsIO::GetChmod(File(p)));
         }});
    operations.push_back({.name = "GetFullPathName",
                          .exports = {"KelInsIO::Path::GetFullPathNameW"},
                          .run =
                              [](const Place& p) {
                                  const std::wstring full = KelInsIO::Path::GetFullPathNameW(p.directory + "\\x\\..");
                                  return full == LR"(\\?\)" ? std::string() : std::to_string(full.size());
                              },
                          .documented = IsNothing});
}

void AddAttributeChanges(std::vector<Operation>& operations)
{
    operations.push_back({.name = "SetTime",
                          .exports = {"KelInsIO::SetTime"},
                          .prepare = MakeOneFile,
                          .run =
                              [](const Place& p) {
                                  KelInsIO::SetTime(File(p), 1'000'000'000, 1'000'000'000);
                                  return "";
                              },
                          .texts = {"SetTime - $\\file - "}});
    operations.push_back(
        {.name = "Chmod", .exports = {"KelInsIO::Chmod"}, .prepare = MakeOneFile, .run = [](const Place& p) {
             KelInsIO::Chmod(File(p), 0);
             return "";
         }});
    operations.push_back({.name = "SetReadOnly",
                          .exports = {"KelInsIO::SetReadOnly"},
                          .prepare = MakeOneFile,
                          .run = [](const Place& p) { return InWords(KelInsIO::SetReadOnly(File(p), true)); },
                          .documented = IsFalse});
    operations.push_back({.name = "SetWritable",
                          .exports = {"KelInsIO::SetReadOnly"},
                          .prepare = MakeReadOnly,
                          .run = [](const Place& p) { return InWords(KelInsIO::SetReadOnly(File(p), false)); },
                          .documented = IsFalse});
}

void AddChanges(std::vector<Operation>& operations)
{
    operations.push_back({.name = "CreateDir",
                          .exports = {"KelInsIO::CreateDir"},
                          .run =
                              [](const Place& p) {
                                  KelInsIO::CreateDir(p.directory + "\\a\\b\\c");
                                  return "";
                              },
                          .texts = {"CreateDirectory - $\\a\\b\\c - "}});
    operations.push_back({.name = "Rename",
                          .exports = {"KelInsIO::Rename"},
                          .prepare = MakeOneFile,
                          .run =
                              [](const Place& p) {
                                  KelInsIO::Rename(File(p), p.directory + "\\new");
                                  return "";
                              },
                          .texts = {"MoveFile - $\\file to $\\new - "}});
    operations.push_back({.name = "DeleteFile",
                          .exports = {"KelInsIO::DeleteFileW"},
                          .prepare = MakeOneFile,
                          .run =
                              [](const Place& p) {
                                  KelInsIO::DeleteFileW(File(p));
                                  return "";
                              },
                          .texts = {"DeleteFile - $\\file - "}});
    operations.push_back({.name = "DeleteTree",
                          .exports = {"KelInsIO::Delete"},
                          .prepare = MakeTree,
                          .run =
                              [](const Place& p) {
                                  KelInsIO::Delete(Tree(p));
                                  return "";
                              },
                          .texts = {"GetType - $\\tree - ", "DeleteFile - ", "DeleteFile - $\\tree\\a - ",
                                    "DeleteFile - $\\tree\\sub\\b - ", "RemoveDirectory - $\\tree - ",
                                    "RemoveDirectory - $\\tree\\sub - ", "RemoveDirectory - $\\tree\\sub\\empty - ",
                                    "FindFirstFile - Path is empty\n"}});
    operations.push_back({.name = "RemoveEmptyDirectories",
                          .exports = {"KelInsIO::RemoveEmptyDirectories"},
                          .prepare = [](const Place& p) { MakeDirectories(Tree(p) + "\\sub\\empty"); },
                          .run = [](const Place& p) { return InWords(KelInsIO::RemoveEmptyDirectories(Tree(p))); },
                          .documented = IsFalse,
                          .withoutMemory = IsFalse});
}

void AddCopies(std::vector<Operation>& operations)
{
    operations.push_back({.name = "CopyFile",
                          .exports = {"KelInsIO::Copy"},
                          .prepare = MakeOneFile,
                          .run =
                              [](const Place& p) {
                                  KelInsIO::Copy(File(p), p.directory + "\\new\\copy");
                                  return "";
                              },
                          .texts = {"GetType - $\\file - ", "CreateDirectory - $\\new - ", "Cannot stat $\\file - ",
                                    "Cannot read $\\file - ", "Cannot write into $\\new\\copy - "},
                          .documented = IsNothing, // read errors and short writes are not reported
                          .leaves = Leaves::Torn});
    operations.push_back(
        {.name = "CopyTree",
         .exports = {"KelInsIO::Copy"},
         .prepare = MakeTree,
         .run =
             [](const Place& p) {
                 KelInsIO::Copy(Tree(p), p.directory + "\\new");
                 return "";
             },
         .texts = {"GetType - $\\tree - ", "CreateDirectory - $\\new - ", "CreateDirectory - $\\new\\sub - ",
                   "CreateDirectory - $\\new\\sub\\empty - ", "Cannot stat $\\tree\\a - ", "Cannot stat  - ",
                   "Cannot stat $\\tree\\sub\\b - ", "Cannot read $\\tree\\a - ", "Cannot read $\\tree\\sub\\b - ",
                   "Cannot write into $\\new\\a - ", "Cannot write into $\\new\\sub\\b - ",
                   "FindFirstFile - Path is empty\n"},
         .documented = IsNothing, // nor are failures of a search
         .leaves = Leaves::Torn});
}

/// Refused, as long as it can be told; if not, the file cannot be opened twice.
void AddCopyToItself(std::vector<Operation>& operations)
{
    operations.push_back({.name = "CopyToItself",
                          .exports = {"KelInsIO::Copy"},
                          .prepare = MakeOneFile,
                          .run = [](const Place& p) -> std::string {
                              try {
                                  KelInsIO::Copy(File(p), File(p));
                              } catch (const std::runtime_error& error) {
                                  if (std::string_view(error.what()).ends_with("to itself.\n"))
                                      return "refused";
                                  throw;
                              }
                              return "copied";
                          },
                          .texts = {"GetType - $\\file - ", "CreateDirectory - $ - ", "Cannot stat $\\file - ",
                                    "Cannot read $\\file - ", "Cannot write into $\\file - "}});
}

void AddSearches(std::vector<Operation>& operations)
{
    operations.push_back(
        {.name = "FindFile",
         .exports = {"KelInsIO::FindFile::FindFile", "KelInsIO::FindFile::~FindFile", "KelInsIO::FindFile::End",
                     "KelInsIO::FindFile::Next", "KelInsIO::FindFile::GetName", "KelInsIO::FindFile::GetPath",
                     "KelInsIO::FindFile::GetType", "KelInsIO::FindFile::IsDirectory", "KelInsIO::FindFile::IsFile",
                     "KelInsIO::FindFile::operator="},
         .prepare =
             [](const Place& p) {
                 for (const char* name : {"a", "b", "c"})
                     MakeFile(p.directory + "\\" + name);
             },
         .run =
             [](const Place& p) {
                 std::string names;
                 FindFile other(p.directory + "\\none", Type::File);
                 other = FindFile(p.directory, Type::File | Type::Directory);
                 for (FindFile search(std::move(other)); !search.End(); search.Next())
                     names += search.GetName() + TypeInWords(search.GetType()) + InWords(search.IsFile()) +
                              InWords(search.IsDirectory()) + search.GetPath() + "\n";
                 return names;
             },
         .documented =
             [](std::string_view result, std::string_view right) {
                 const std::string unnamed = "1truefalse"; // a name that cannot be converted is empty
                 return EndsEarly(result, right) || result.find(unnamed) != std::string_view::npos ||
                        result.find("2truefalse\n") != std::string_view::npos;
             }});
    operations.push_back({.name = "IsDirectoryEmpty",
                          .exports = {"KelInsIO::FindFile::IsDirectoryEmpty"},
                          .prepare = MakeOneFile,
                          .run = [](const Place& p) { return InWords(FindFile::IsDirectoryEmpty(p.directory)); },
                          .documented = [](std::string_view result, std::string_view) { return result == "true"; }});
}

/// "failed", or the sum of the content read up to the end.
std::string ReadAll(std::ifstream stream)
{
    if (!stream.good())
        return "failed";
    std::size_t size = 0;
    for (char c = 0; stream.get(c);)
        size += c == 'c' ? 1U : 0U;
    return stream.bad() ? "failed" : std::to_string(size);
}

std::string WriteAll(std::ofstream stream)
{
    stream << kContent;
    stream.close();
    return stream.good() ? "written" : "failed";
}

bool IsFailed(std::string_view result, std::string_view)
{
    return result == "failed";
}

void AddStreams(std::vector<Operation>& operations)
{
    using std::ios_base;
    operations.push_back(
        {.name = "InputStream",
         .exports = {"KelInsIO::GetInputFileStream"},
         .prepare = MakeOneFile,
         .run = [](const Place& p) { return ReadAll(KelInsIO::GetInputFileStream(File(p), ios_base::in)); },
         .documented = IsFailed});
    operations.push_back({.name = "InputStreamAtEnd",
                          .exports = {"KelInsIO::GetInputFileStream"},
                          .prepare = MakeOneFile,
                          .run =
                              [](const Place& p) {
                                  const KelInsIO::Path path(File(p));
                                  std::ifstream stream = KelInsIO::GetInputFileStream(path, ios_base::ate);
                                  return stream.good() ? std::to_string(stream.tellg()) : "failed";
                              },
                          .documented =
                              [](std::string_view result, std::string_view) {
                                  return result == "failed" || result == "-1"; // what tellg says when it cannot tell
                              }});
    operations.push_back(
        {.name = "OutputStream",
         .exports = {"KelInsIO::GetOutputFileStream"},
         .prepare = MakeOneFile,
         .run = [](const Place& p) { return WriteAll(KelInsIO::GetOutputFileStream(File(p), ios_base::out)); },
         .documented = IsFailed,
         .leaves = Leaves::Torn});
    operations.push_back({.name = "OutputStreamAppending",
                          .exports = {"KelInsIO::GetOutputFileStream"},
                          .prepare = MakeOneFile,
                          .run =
                              [](const Place& p) {
                                  const KelInsIO::Path path(File(p));
                                  return WriteAll(KelInsIO::GetOutputFileStream(path, ios_base::app));
                              },
                          .documented = IsFailed,
                          .leaves = Leaves::Torn});
}

} // namespace

void AddFileOperations(std::vector<Operation>& operations)
{
    AddQuestions(operations);
    AddAttributeChanges(operations);
    AddChanges(operations);
    AddCopies(operations);
    AddCopyToItself(operations);
    AddSearches(operations);
    AddStreams(operations);
}

} // namespace Sweeps
