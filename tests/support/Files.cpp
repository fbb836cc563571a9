#include "Files.h"

#include <KelInsInfra/foundation/KelInsString.h>
#include <KelInsInfra/foundation/internal/UniqueHandle.h>
#include <algorithm>
#include <optional>
#include <stdexcept>

namespace {

[[noreturn]] void Fail(const std::string& what)
{
    throw std::runtime_error("test support: " + what + ", error " + std::to_string(::GetLastError()));
}

void CollectNames(const std::wstring& directory, const std::wstring& prefix, std::vector<std::string>& names)
{
    WIN32_FIND_DATAW record;
    const UniqueFindHandle search(::FindFirstFileW((directory + L"\\*").c_str(), &record));
    if (!search)
        Fail("FindFirstFileW");
    do {
        const std::wstring name = record.cFileName;
        if (name == L"." || name == L"..")
            continue;
        const bool isDirectory = (record.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
        const std::wstring listed = prefix + name + (isDirectory ? L"/" : L"");
        names.push_back(KelInsString::Narrow(listed));
        if (isDirectory && (record.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0)
            CollectNames(directory + L'\\' + name, listed, names);
    } while (::FindNextFileW(search.Get(), &record));
}

void RemoveAllBelow(const std::wstring& directory)
{
    WIN32_FIND_DATAW record;
    UniqueFindHandle search(::FindFirstFileW((directory + L"\\*").c_str(), &record));
    while (search) {
        const std::wstring name = record.cFileName;
        const std::wstring path = directory + L'\\' + name;
        if ((record.dwFileAttributes & FILE_ATTRIBUTE_READONLY) != 0)
            ::SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL);
        if ((record.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0)
            ::DeleteFileW(path.c_str());
        else if (name != L"." && name != L"..")
            RemoveAllBelow(path);
        if (!::FindNextFileW(search.Get(), &record))
            search.Reset();
    }
    ::RemoveDirectoryW(directory.c_str());
}

bool IsLink(const std::wstring& path)
{
    const DWORD attributes = ::GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
}

/// The name of a path for the system below Wine; empty on Windows.
std::wstring NameBelowWine(const std::wstring& path)
{
    const FARPROC address = ::GetProcAddress(::GetModuleHandleW(L"kernel32.dll"), "wine_get_unix_file_name");
    if (address == nullptr)
        return {};
    const auto convert = reinterpret_cast<char* (*)(const wchar_t*)>(reinterpret_cast<void*>(address));
    char* name = convert(path.c_str());
    const std::wstring result = KelInsString::Widen(name);
    ::HeapFree(::GetProcessHeap(), 0, name);
    return result;
}

/// Starts a program of the system below Wine. It cannot be waited for.
void StartBelowWine(const std::wstring& program, std::wstring commandLine)
{
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process{};
    const std::wstring image = L"\\\\?\\unix\\bin\\" + program;
    commandLine.insert(0, program);
    if (!::CreateProcessW(image.c_str(), commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                          &process))
        Fail("CreateProcessW");
    ::CloseHandle(process.hThread);
    ::CloseHandle(process.hProcess);
}

/// Reads a file that others may be writing.
std::optional<std::string> ReadWhole(const std::string& path)
{
    const UniqueFileHandle file(::CreateFileW(KelInsString::Widen(path).c_str(), GENERIC_READ,
                                              FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                                              FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file)
        return std::nullopt;
    std::string content;
    std::vector<char> block(1u << 16);
    DWORD count = 0;
    while (::ReadFile(file.Get(), block.data(), static_cast<DWORD>(block.size()), &count, nullptr) && count != 0)
        content.append(block.data(), count);
    return content;
}

template <typename Condition>
bool WaitFor(const Condition& condition)
{
    for (int i = 0; i < 500; ++i) {
        if (condition())
            return true;
        ::Sleep(10);
    }
    return false;
}

} // namespace

void MakeFile(const std::string& path, std::string_view content)
{
    const UniqueFileHandle file(::CreateFileW(KelInsString::Widen(path).c_str(), GENERIC_WRITE, 0, nullptr,
                                              CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    DWORD written = 0;
    if (!file || !::WriteFile(file.Get(), content.data(), static_cast<DWORD>(content.size()), &written, nullptr))
        Fail("cannot write " + path);
}

void MakeDirectories(const std::string& path)
{
    const std::wstring widePath = KelInsString::Widen(path);
    if (::CreateDirectoryW(widePath.c_str(), nullptr)) // what is above it exists mostly
        return;
    for (std::size_t end = widePath.find(L'\\'); end != std::wstring::npos; end = widePath.find(L'\\', end + 1))
        ::CreateDirectoryW(widePath.substr(0, end).c_str(), nullptr); // most of them exist
    if (!::CreateDirectoryW(widePath.c_str(), nullptr) && ::GetLastError() != ERROR_ALREADY_EXISTS)
        Fail("cannot create " + path);
}

void RemoveTree(const std::string& directory)
{
    RemoveAllBelow(KelInsString::Widen(directory));
}

std::string FileContent(const std::string& path)
{
    const auto content = ReadWhole(path);
    if (!content)
        Fail("cannot read " + path);
    return *content;
}

std::string FileContentIfAny(const std::string& path)
{
    return ReadWhole(path).value_or("(no file)");
}

bool IsReadOnly(const std::string& path)
{
    const DWORD attributes = ::GetFileAttributesW(KelInsString::Widen(path).c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0;
}

std::vector<std::string> TreeNames(const std::string& directory)
{
    std::vector<std::string> names;
    CollectNames(KelInsString::Widen(directory), L"", names);
    std::sort(names.begin(), names.end());
    return names;
}

LongDirectory::LongDirectory(const std::string& parent) : top_(parent + '\\' + std::string(100, 'p')), path_(top_)
{
    while (path_.size() <= 400)
        path_ += '\\' + std::string(100, 'p');
    MakeDirectories(path_);
}

LongDirectory::~LongDirectory()
{
    RemoveAllBelow(KelInsString::Widen(top_));
}

DirectoryLink::DirectoryLink(const std::string& link, const std::string& target) : link_(KelInsString::Widen(link))
{
    constexpr DWORD flags = 0x3; // a directory; made without administrator rights where the system allows it
    const std::wstring wideTarget = KelInsString::Widen(target);
    ::CreateSymbolicLinkW(link_.c_str(), wideTarget.c_str(), flags); // Wine reports success and makes nothing
    const std::wstring nameBelow = NameBelowWine(link_);
    if (!IsLink(link_) && !nameBelow.empty())
        StartBelowWine(L"ln", L" -s \"" + NameBelowWine(wideTarget) + L"\" \"" + nameBelow + L"\"");
    if (!WaitFor([&] { return IsLink(link_); }))
        Fail("no link could be made");
}

DirectoryLink::~DirectoryLink()
{
    const std::wstring nameBelow = NameBelowWine(link_);
    if (nameBelow.empty()) {
        ::RemoveDirectoryW(link_.c_str());
        return;
    }
    StartBelowWine(L"rm", L" -f \"" + nameBelow + L"\"");
    WaitFor([&] { return !IsLink(link_); });
}

ReadOnlyGuard::ReadOnlyGuard(const std::string& path) : path_(KelInsString::Widen(path))
{
    if (!::SetFileAttributesW(path_.c_str(), FILE_ATTRIBUTE_READONLY))
        Fail("cannot make read-only: " + path);
}

ReadOnlyGuard::~ReadOnlyGuard()
{
    ::SetFileAttributesW(path_.c_str(), FILE_ATTRIBUTE_NORMAL);
}
