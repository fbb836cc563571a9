// The functions that a script calls: orchard::WriteIni "file" "section" "key" "value", and so on. Each leaves one text
// on the stack: "ok" or the digest, or else "failed: " and the reason.
//
// An exception that left one of them would end the installer: all are caught here.

#include "Stack.h"
#include <KelInsInfra/config/KelInsIniFile.h>
#include <KelInsInfra/hash/SHA256.h>
#include <KelInsInfra/io/KelInsIO.h>
#include <exception>
#include <stdexcept>
#include <string>
#include <windows.h>

namespace {

using Orchard::Pop;
using Orchard::Push;
using Orchard::StackEntry;

using Work = std::string (*)(StackEntry**);

void Run(StackEntry** stack, int stringSize, Work work) noexcept
{
    try {
        try {
            Push(stack, stringSize, work(stack));
        } catch (const std::exception& error) {
            Push(stack, stringSize, std::string("failed: ") + error.what());
        }
    } catch (...) { // neither may what is no std::exception get out, nor a failure to tell of one
    }
}

std::string WriteIniWork(StackEntry** stack)
{
    const std::string file = Pop(stack);
    const std::string section = Pop(stack);
    const std::string key = Pop(stack);
    const std::string value = Pop(stack);
    KelInsIniFile::Write(file, section, key, value, KelInsIniFile::Where::Replace, ';', false);
    return "ok";
}

std::string ReplaceInLinesWork(StackEntry** stack)
{
    const std::string file = Pop(stack);
    const std::string from = Pop(stack);
    const std::string to = Pop(stack);
    KelInsIO::ReplaceInLines(file, from, to);
    return "ok";
}

std::string DigestWork(StackEntry** stack)
{
    const std::string file = Pop(stack);
    std::ifstream stream = KelInsIO::GetInputFileStream(file, {});
    KelInsHash::SHA256 hash;
    hash.Add(stream);
    if (!stream.eof() || stream.bad())
        throw std::runtime_error("Failed to read " + file);
    return hash.GetHash();
}

} // namespace

#define ENTRY_POINT extern "C" __declspec(dllexport) void __cdecl

ENTRY_POINT WriteIni(HWND window, int stringSize, wchar_t* variables, StackEntry** stack);
ENTRY_POINT ReplaceInLines(HWND window, int stringSize, wchar_t* variables, StackEntry** stack);
ENTRY_POINT Digest(HWND window, int stringSize, wchar_t* variables, StackEntry** stack);

void WriteIni(HWND, int stringSize, wchar_t*, StackEntry** stack)
{
    Run(stack, stringSize, WriteIniWork);
}

void ReplaceInLines(HWND, int stringSize, wchar_t*, StackEntry** stack)
{
    Run(stack, stringSize, ReplaceInLinesWork);
}

void Digest(HWND, int stringSize, wchar_t*, StackEntry** stack)
{
    Run(stack, stringSize, DigestWork);
}
