#include "tests/support/Files.h"
#include "tests/support/HandleCount.h"
#include "tests/support/ImportHook.h"
#include "tests/support/TempDirectory.h"
#include <KelInsInfra/io/KelInsIO.h>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <share.h>
#include <sstream>
#include <string>

namespace {

using namespace std::string_literals;
using KelInsIO::GetInputFileStream;
using KelInsIO::GetOutputFileStream;
using Mode = std::ios_base::openmode;

constexpr Mode kNone{};
constexpr Mode kIn = std::ios_base::in;
constexpr Mode kOut = std::ios_base::out;
constexpr Mode kTrunc = std::ios_base::trunc;
constexpr Mode kApp = std::ios_base::app;
constexpr Mode kAte = std::ios_base::ate;
constexpr Mode kBinary = std::ios_base::binary;
const std::wstring kStandardLibrary = L"libstdc++-6.dll";

std::filesystem::path Native(const std::string& path)
{
    return std::filesystem::path(std::u8string(path.begin(), path.end()));
}

// --- open modes: the standard library's own file buffer, which opens without share mode, tells what is right

/// What a buffer does when it is written and read, and what the file holds at the end.
std::string Exercise(std::filebuf& buffer, const std::string& path)
{
    std::ostringstream log;
    log << "open " << buffer.is_open();
    if (buffer.is_open()) {
        log << ", at " << std::streamoff(buffer.pubseekoff(0, std::ios_base::cur));
        log << ", first byte " << buffer.sgetc();
        buffer.pubseekoff(2, std::ios_base::beg);
        log << ", put " << buffer.sputn("XY", 2) << ", synchronised " << buffer.pubsync();
        log << ", at " << std::streamoff(buffer.pubseekoff(0, std::ios_base::cur));
        buffer.pubseekoff(0, std::ios_base::beg);
        std::string read(16, '\0');
        read.resize(static_cast<std::size_t>(buffer.sgetn(read.data(), 16)));
        log << ", reads \"" << read << "\", closed " << (buffer.close() != nullptr);
    }
    log << ", holds \"" << FileContentIfAny(path) << '"';
    return log.str();
}

struct OpenModeCase
{
    Mode mode;
    bool exists;

    friend void PrintTo(const OpenModeCase& c, std::ostream* out)
    {
        *out << c.mode << (c.exists ? " existing" : " new");
    }
};

std::vector<OpenModeCase> AllOpenModes()
{
    std::vector<OpenModeCase> cases;
    for (int bits = 0; bits < 64; ++bits) {
        const auto add = [bits](int bit, Mode mode) { return (bits & bit) != 0 ? mode : kNone; };
        const Mode mode = add(1, kIn) | add(2, kOut) | add(4, kTrunc) | add(8, kApp) | add(16, kAte) | add(32, kBinary);
        cases.push_back({mode, true});
        cases.push_back({mode, false});
    }
    return cases;
}

class OpenMode : public testing::TestWithParam<OpenModeCase>
{
protected:
    std::string MakeCaseFile(const std::string& name) const
    {
        const std::string path = directory_ / name;
        if (GetParam().exists)
            MakeFile(path, "0123456");
        return path;
    }

    std::string Expected(Mode added) const
    {
        const std::string path = MakeCaseFile("expected");
        std::filebuf buffer;
        buffer.open(Native(path), GetParam().mode | added | kBinary);
        return Exercise(buffer, path);
    }

    TempDirectory directory_;
};

TEST_P(OpenMode, OfAnInputStreamIsTheStandards)
{
    const std::string path = MakeCaseFile("actual");
    std::ifstream stream = GetInputFileStream(path, GetParam().mode);
    EXPECT_EQ(stream.rdstate(), stream.is_open() ? std::ios_base::goodbit : std::ios_base::failbit);
    EXPECT_EQ(Exercise(*stream.rdbuf(), path), Expected(kIn));
}

TEST_P(OpenMode, OfAnOutputStreamIsTheStandards)
{
    const std::string path = MakeCaseFile("actual");
    std::ofstream stream = GetOutputFileStream(path, GetParam().mode);
    EXPECT_EQ(stream.rdstate(), stream.is_open() ? std::ios_base::goodbit : std::ios_base::failbit);
    EXPECT_EQ(Exercise(*stream.rdbuf(), path), Expected(kOut));
}

INSTANTIATE_TEST_SUITE_P(All, OpenMode, testing::ValuesIn(AllOpenModes()));

struct LiteralModeCase
{
    const char* label;
    Mode mode;
    const char* existing; // what "old" becomes when "N" is written
    const char* missing;  // likewise of no file
};

// The rows of the standard's table that an output stream can reach, written out
constexpr LiteralModeCase kLiteralModes[] = {
    {"Nothing", kNone, "N", "N"},
    {"Out", kOut, "N", "N"},
    {"Trunc", kTrunc, "N", "N"},
    {"App", kApp, "oldN", "N"},
    {"In", kIn, "Nld", "(no file)"},
    {"InTrunc", kIn | kTrunc, "N", "N"},
    {"InApp", kIn | kApp, "oldN", "N"},
    {"InAte", kIn | kAte, "oldN", "(no file)"},
    {"TruncApp", kTrunc | kApp, "old", "(no file)"},
    {"InTruncApp", kIn | kTrunc | kApp, "old", "(no file)"},
};

class OutputMode : public testing::TestWithParam<LiteralModeCase>
{};

TEST_P(OutputMode, LeavesContent)
{
    const TempDirectory directory;
    MakeFile(directory / "existing", "old");
    for (const char* name : {"existing", "missing"})
        GetOutputFileStream(directory / name, GetParam().mode) << "N";
    EXPECT_EQ(FileContentIfAny(directory / "existing"), GetParam().existing);
    EXPECT_EQ(FileContentIfAny(directory / "missing"), GetParam().missing);
}

INSTANTIATE_TEST_SUITE_P(Table, OutputMode, testing::ValuesIn(kLiteralModes),
                         [](const auto& test) { return std::string(test.param.label); });

TEST(FileStreams, AnUnknownModeBitIsRefused)
{
    const TempDirectory directory;
    MakeFile(directory / "a", "old");
    const auto unknown = static_cast<Mode>(1 << 12);
    EXPECT_TRUE(GetInputFileStream(directory / "a", unknown).fail());
    EXPECT_TRUE(GetOutputFileStream(directory / "a", unknown).fail());
    EXPECT_EQ(FileContentIfAny(directory / "a"), "old");
}

// --- content

TEST(FileStreams, AreBinary)
{
    const TempDirectory directory;
    const std::string bytes = "\r\n\n\r\x1A\0\xFF\r\n"s;
    GetOutputFileStream(directory / "a", kOut) << bytes;
    EXPECT_EQ(FileContentIfAny(directory / "a"), bytes);
    std::ifstream stream = GetInputFileStream(directory / "a", kIn);
    EXPECT_EQ(KelInsIO::InputStreamToString(stream), bytes);
}

std::string ManyBytes(std::size_t count)
{
    std::string bytes(count, '\0');
    std::uint32_t state = 1;
    for (char& c : bytes)
        c = static_cast<char>((state = state * 1664525u + 1013904223u) >> 24);
    return bytes;
}

TEST(FileStreams, CarryManyBytesInOneCall)
{
    const TempDirectory directory;
    const std::string bytes = ManyBytes(9'000'001);
    std::ofstream output = GetOutputFileStream(directory / "a", kOut);
    output.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    output.close();
    EXPECT_TRUE(output.good());
    std::ifstream input = GetInputFileStream(directory / "a", kIn);
    std::string read(bytes.size() + 1, '\0');
    input.read(read.data(), static_cast<std::streamsize>(read.size()));
    EXPECT_EQ(static_cast<std::size_t>(input.gcount()), bytes.size());
    EXPECT_TRUE(input.eof());
    read.pop_back();
    EXPECT_TRUE(read == bytes);
}

TEST(FileStreams, CarryManyBytesInSmallPieces)
{
    const TempDirectory directory;
    const std::string bytes = ManyBytes(200'003);
    std::ofstream output = GetOutputFileStream(directory / "a", kOut);
    for (const char c : bytes)
        output.put(c);
    EXPECT_EQ(static_cast<std::size_t>(output.tellp()), bytes.size());
    output.close();
    std::ifstream input = GetInputFileStream(directory / "a", kIn);
    std::string read;
    for (char c; input.get(c);)
        read += c;
    EXPECT_TRUE(read == bytes);
}

TEST(FileStreams, SeekAndTell)
{
    const TempDirectory directory;
    const std::string bytes = ManyBytes(300'000);
    MakeFile(directory / "a", bytes);
    std::ifstream input = GetInputFileStream(directory / "a", kIn);
    EXPECT_EQ(input.tellg(), std::streampos(0));
    std::uint32_t position = 0;
    for (int i = 0; i < 500; ++i) {
        position = (position * 7 + 65'521) % 299'999;
        input.seekg(position);
        ASSERT_EQ(input.get(), static_cast<unsigned char>(bytes[position]));
        ASSERT_EQ(input.tellg(), std::streampos(position + 1));
    }
    input.seekg(-3, std::ios_base::end);
    EXPECT_EQ(KelInsIO::InputStreamToString(input), bytes.substr(bytes.size() - 3));

    std::ofstream output = GetOutputFileStream(directory / "b", kOut);
    output << "0123456789";
    output.seekp(4);
    output << "xx";
    output.seekp(0, std::ios_base::end);
    output << "end";
    output.close();
    EXPECT_EQ(FileContentIfAny(directory / "b"), "0123xx6789end");
}

TEST(FileStreams, UngetWorksAcrossTheBuffersEdge)
{
    const TempDirectory directory;
    const std::string bytes = ManyBytes(70'000);
    MakeFile(directory / "a", bytes);
    std::ifstream input = GetInputFileStream(directory / "a", kIn);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        ASSERT_EQ(input.get(), static_cast<unsigned char>(bytes[i]));
        input.unget();
        ASSERT_EQ(input.get(), static_cast<unsigned char>(bytes[i])) << i;
    }
}

TEST(FileStreams, AtTheEndOfAFile)
{
    const TempDirectory directory;
    MakeFile(directory / "a", "abc");
    std::ifstream stream = GetInputFileStream(directory / "a", kAte);
    EXPECT_EQ(stream.tellg(), std::streampos(3));
    EXPECT_EQ(stream.get(), EOF);
}

TEST(FileStreams, CanBeMovedAndOpenedAgain)
{
    const TempDirectory directory;
    MakeFile(directory / "a", "one\r\ntwo\r\n");
    std::ifstream first = GetInputFileStream(directory / "a", kIn);
    std::string line;
    KelInsIO::GetLine(first, line);
    std::ifstream second = std::move(first);
    KelInsIO::GetLine(second, line);
    EXPECT_EQ(line, "two");
    second.close();
    EXPECT_FALSE(second.is_open());
    second.open(Native(directory / "a"));
    KelInsIO::GetLine(second, line);
    EXPECT_EQ(line, "one");
}

TEST(FileStreams, CloseGivesTheFileFree)
{
    const TempDirectory directory;
    std::ofstream output = GetOutputFileStream(directory / "a", kOut);
    output << "abc";
    output.close();
    EXPECT_TRUE(output.good());
    EXPECT_EQ(FileContentIfAny(directory / "a"), "abc");
    EXPECT_TRUE(GetOutputFileStream(directory / "a", kOut).is_open());
    output.close();
    EXPECT_TRUE(output.fail()); // closing twice fails, as the standard says
}

TEST(FileStreams, AWriteErrorShows)
{
    const TempDirectory directory;
    std::ofstream output = GetOutputFileStream(directory / "a", kOut);
    ImportHook<int(int, const void*, unsigned)> hook("_write", {kStandardLibrary});
    hook.FailFrom(1, -1, Errno(ENOSPC));
    output << "abc";
    output.close();
    EXPECT_TRUE(output.fail());
    EXPECT_FALSE(output.is_open());
}

TEST(FileStreams, AReadErrorShows)
{
    const TempDirectory directory;
    MakeFile(directory / "a", "one\r\ntwo\r\n");
    std::ifstream input = GetInputFileStream(directory / "a", kIn);
    ImportHook<int(int, void*, unsigned)> hook("_read", {kStandardLibrary});
    hook.FailFrom(1, -1, Errno(EIO));
    std::string line;
    EXPECT_FALSE(KelInsIO::GetLine(input, line));
    EXPECT_TRUE(input.bad());
    EXPECT_EQ(KelInsIO::InputStreamToString(input), "");
}

// --- sharing

TEST(FileStreams, AFileBeingReadMayBeReadButNotWritten)
{
    const TempDirectory directory;
    MakeFile(directory / "a", "old");
    const std::ifstream input = GetInputFileStream(directory / "a", kIn);
    ASSERT_TRUE(input.is_open());
    EXPECT_TRUE(GetInputFileStream(directory / "a", kIn).is_open());
    EXPECT_FALSE(GetOutputFileStream(directory / "a", kOut).is_open());
    EXPECT_FALSE(std::ofstream(Native(directory / "a")).is_open());
    EXPECT_EQ(FileContentIfAny(directory / "a"), "old");
}

TEST(FileStreams, AFileBeingWrittenMayBeReadButNotWritten)
{
    const TempDirectory directory;
    std::ofstream output = GetOutputFileStream(directory / "a", kOut);
    output << "abc" << std::flush;
    EXPECT_FALSE(GetOutputFileStream(directory / "a", kApp).is_open());
    EXPECT_FALSE(std::ofstream(Native(directory / "a"), kApp).is_open());
    EXPECT_FALSE(GetInputFileStream(directory / "a", kIn).is_open()); // would not let the present writer write
    EXPECT_EQ(FileContentIfAny(directory / "a"), "abc");
}

TEST(FileStreams, ChildProcessesDoNotInheritTheFile)
{
    const TempDirectory directory;
    std::ofstream output = GetOutputFileStream(directory / "a", kOut);
    std::wstring command = L"cmd.exe /c exit";
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process{};
    ASSERT_TRUE(::CreateProcessW(nullptr, command.data(), nullptr, nullptr, TRUE, CREATE_SUSPENDED, nullptr, nullptr,
                                 &startup, &process));
    output.close();
    EXPECT_TRUE(GetOutputFileStream(directory / "a", kOut).is_open()); // refused if the child held it open
    ::TerminateProcess(process.hProcess, 0);
    ::WaitForSingleObject(process.hProcess, INFINITE);
    ::CloseHandle(process.hThread);
    ::CloseHandle(process.hProcess);
}

// --- names

TEST(FileStreams, TakeAPathOrItsText)
{
    const TempDirectory directory;
    const std::string untidy = '"' + KelInsIO::Path::Slashify(directory.Path()) + "//gr\xC3\xBC\xC3\x9F.txt\"";
    GetOutputFileStream(untidy, kOut) << "text";
    EXPECT_EQ(FileContentIfAny(directory / "gr\xC3\xBC\xC3\x9F.txt"), "text");
    std::string word;
    GetInputFileStream(KelInsIO::Path(untidy), kIn) >> word;
    EXPECT_EQ(word, "text");
    GetOutputFileStream(KelInsIO::Path(directory / "b"), kOut) << "b";
    GetInputFileStream(directory / "b", kIn) >> word;
    EXPECT_EQ(word, "b");
}

TEST(FileStreams, OpenPathsOfAnyLength)
{
    const TempDirectory directory;
    std::string path = directory.Path();
    while (path.size() < 600)
        path += '\\' + std::string(100, 'd');
    std::filesystem::create_directories(Native(R"(\\?\)" + path));
    path += "\\file";
    EXPECT_TRUE(GetInputFileStream(path, kIn).fail());
    GetOutputFileStream(path, kOut) << "far";
    std::string word;
    GetInputFileStream(path, kIn) >> word;
    EXPECT_EQ(word, "far");
    KelInsIO::Delete(R"(\\?\)" + directory.Path()); // too long for the standard library
}

TEST(FileStreams, OpenTheExtendedLengthNameDenyingWriters)
{
    const TempDirectory directory;
    GetOutputFileStream(directory / "a", kOut); // the runtime looks its open up on first use
    ImportHook<int(int*, const wchar_t*, int, int, int)> hook("_wsopen_s");
    GetInputFileStream(directory / "a", kIn);
    GetOutputFileStream("relative\\b", kApp);
    ASSERT_EQ(hook.Calls().size(), 2u);
    const auto& [input, inputName, inputFlags, inputShare, inputMode] = hook.Calls()[0];
    EXPECT_EQ(inputName, LR"(\\?\)" + Native(directory / "a").wstring());
    EXPECT_EQ(inputFlags, _O_RDONLY | _O_BINARY | _O_NOINHERIT);
    EXPECT_EQ(inputShare, _SH_DENYWR);
    const auto& [output, outputName, outputFlags, outputShare, outputMode] = hook.Calls()[1];
    EXPECT_EQ(outputName, L"relative\\b");
    EXPECT_EQ(outputFlags, _O_WRONLY | _O_CREAT | _O_APPEND | _O_BINARY | _O_NOINHERIT);
    EXPECT_EQ(outputShare, _SH_DENYWR);
    EXPECT_EQ(outputMode, 0x180); // read and write permission
}

TEST(FileStreams, ANulInThePathIsRefused)
{
    const TempDirectory directory;
    MakeFile(directory / "a", "old");
    const std::string path = (directory / "a") + "\0b"s;
    EXPECT_TRUE(GetInputFileStream(path, kIn).fail());
    EXPECT_TRUE(GetOutputFileStream(path, kOut).fail());
    EXPECT_TRUE(GetInputFileStream(KelInsIO::Path(path), kIn).fail());
    EXPECT_TRUE(GetOutputFileStream((directory / "new") + "\0"s, kOut).fail());
    EXPECT_EQ(FileContentIfAny(directory / "a"), "old");
    EXPECT_EQ(FileContentIfAny(directory / "new"), "(no file)");
}

struct BadNameCase
{
    const char* label;
    const char* name; // in the directory; null: the empty path
};

constexpr BadNameCase kBadNames[] = {
    {"EmptyPath", nullptr}, {"Missing", "missing"},        {"MissingDirectory", R"(missing\a)"},
    {"Directory", "."},     {"FileAsDirectory", R"(a\b)"}, {"ForbiddenCharacter", "a?"},
};

class UnopenableName : public testing::TestWithParam<BadNameCase>
{};

TEST_P(UnopenableName, LeavesTheStreamFailed)
{
    const TempDirectory directory;
    MakeFile(directory / "a", "old");
    const std::string path = GetParam().name == nullptr ? "" : directory / GetParam().name;
    const std::size_t handles = HandleCount();
    std::ifstream input = GetInputFileStream(path, kIn);
    EXPECT_EQ(input.rdstate(), std::ios_base::failbit);
    EXPECT_FALSE(input.is_open());
    std::ofstream output = GetOutputFileStream(path, kIn); // must exist
    EXPECT_EQ(output.rdstate(), std::ios_base::failbit);
    EXPECT_FALSE(output.is_open());
    EXPECT_EQ(HandleCount(), handles);
}

INSTANTIATE_TEST_SUITE_P(Table, UnopenableName, testing::ValuesIn(kBadNames),
                         [](const auto& test) { return std::string(test.param.label); });

TEST(FileStreams, AReadOnlyFileIsNotOpenedForWriting)
{
    const TempDirectory directory;
    MakeFile(directory / "a", "old");
    ASSERT_TRUE(KelInsIO::SetReadOnly(directory / "a", true));
    EXPECT_TRUE(GetInputFileStream(directory / "a", kIn).is_open());
    if (!std::ofstream(Native(directory / "a"), kApp).is_open()) { // an administrator may be let through
        EXPECT_TRUE(GetOutputFileStream(directory / "a", kApp).fail());
    }
}

// --- failing calls

TEST(FileStreams, NothingStaysOpenWhenTheOpenFails)
{
    const TempDirectory directory;
    MakeFile(directory / "a", "old");
    GetInputFileStream(directory / "a", kIn);
    const std::size_t handles = HandleCount();
    ImportHook<int(int*, const wchar_t*, int, int, int)> hook("_wsopen_s");
    hook.FailFrom(1, EACCES, Errno(EACCES));
    EXPECT_TRUE(GetInputFileStream(directory / "a", kIn).fail());
    EXPECT_TRUE(GetOutputFileStream(directory / "a", kOut).fail());
    EXPECT_EQ(hook.Calls().size(), 2u);
    EXPECT_EQ(HandleCount(), handles);
}

TEST(FileStreams, NothingStaysOpenWhenTheRuntimeRefusesTheDescriptor)
{
    const TempDirectory directory;
    MakeFile(directory / "a", "old");
    GetInputFileStream(directory / "a", kIn);
    const std::size_t handles = HandleCount();
    ImportHook<void*(int, const char*)> hook("_fdopen", {kStandardLibrary});
    hook.FailFrom(1, nullptr, Errno(EMFILE));
    EXPECT_TRUE(GetInputFileStream(directory / "a", kIn).fail());
    EXPECT_TRUE(GetOutputFileStream(directory / "a", kIn).fail());
    EXPECT_EQ(hook.Calls().size(), 2u);
    EXPECT_EQ(HandleCount(), handles);
}

TEST(FileStreams, NothingStaysOpenWhenTheEndCannotBeFound)
{
    const TempDirectory directory;
    MakeFile(directory / "a", "old");
    GetInputFileStream(directory / "a", kIn);
    const std::size_t handles = HandleCount();
    ImportHook<std::int64_t(int, std::int64_t, int)> hook("_lseeki64", {kStandardLibrary});
    hook.FailFrom(1, -1, Errno(EINVAL));
    EXPECT_TRUE(GetInputFileStream(directory / "a", kAte).fail());
    EXPECT_TRUE(GetOutputFileStream(directory / "a", kIn | kAte).fail());
    EXPECT_GE(hook.Calls().size(), 2u);
    EXPECT_EQ(HandleCount(), handles);
}

/// Stands for malloc, and has no memory for the buffer of a stream. (An ImportHook would need memory to note the call.)
void* AllocateSmall(std::size_t size)
{
    return size == 32768 ? nullptr : std::malloc(size);
}

TEST(FileStreams, NothingStaysOpenWithoutMemoryForTheBuffer)
{
    const TempDirectory directory;
    MakeFile(directory / "a", "old");
    GetInputFileStream(directory / "a", kIn);
    const std::size_t handles = HandleCount();
    {
        const ImportSlots slots("malloc", {kStandardLibrary}, reinterpret_cast<void*>(&AllocateSmall));
        EXPECT_THROW(GetInputFileStream(directory / "a", kIn), std::bad_alloc);
        EXPECT_THROW(GetOutputFileStream(directory / "a", kIn), std::bad_alloc);
    }
    EXPECT_EQ(HandleCount(), handles);
    EXPECT_TRUE(GetOutputFileStream(directory / "a", kOut).is_open());
}

TEST(FileStreams, GiveTheirHandlesBack)
{
    const TempDirectory directory;
    GetOutputFileStream(directory / "a", kOut);
    const std::size_t handles = HandleCount();
    for (int i = 0; i < 3000; ++i) { // more than the runtime has descriptors
        ASSERT_TRUE(GetOutputFileStream(directory / "a", kOut).is_open()) << i;
        ASSERT_TRUE(GetInputFileStream(directory / "a", kIn).is_open()) << i;
    }
    EXPECT_EQ(HandleCount(), handles);
}

} // namespace
