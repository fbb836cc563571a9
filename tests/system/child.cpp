// The program that tests start: does what its first argument says, and writes what it knows of itself into the file
// that the environment variable KELINS_TEST_REPORT names.

#include <KelInsInfra/foundation/KelInsEnv.h>
#include <KelInsInfra/foundation/internal/WindowsApi.h>
#include <KelInsInfra/system/KelInsSys.h>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <fstream>
#include <iostream>

namespace {

constexpr int kUnknownVerb = 77;
constexpr int kWriteFailed = 6;

/// Executable, its directory, then each argument, every one ended by a NUL.
void WriteReport(const std::string& file)
{
    std::ofstream report(file, std::ios::binary);
    report << KelInsSys::GetExecutablePath() << '\0' << KelInsSys::GetExecutableDirPath() << '\0';
    for (const std::string& argument : KelInsSys::GetArguments())
        report << argument << '\0';
}

int WriteToHandle(const char* handle, const char* text)
{
    // NOLINTNEXTLINE(performance-no-int-to-ptr): an inherited handle keeps its number
    auto* const inherited = reinterpret_cast<HANDLE>(static_cast<std::intptr_t>(std::atoll(handle)));
    DWORD written = 0;
    return ::WriteFile(inherited, text, static_cast<DWORD>(std::strlen(text)), &written, nullptr) ? 0 : kWriteFailed;
}

int WriteFileLater(const char* milliseconds, const char* file)
{
    ::Sleep(static_cast<DWORD>(std::atoi(milliseconds)));
    std::ofstream(file) << "done";
    return 0;
}

void PrintFacts()
{
    std::cout << std::boolalpha << "version: " << KelInsSys::GetWindowsVersion()
              << "\nclient: " << KelInsSys::IsClientOS() << "\nWindows 11: " << KelInsSys::IsWindows11()
              << "\nadmin: " << KelInsSys::IsAdmin() << "\nWOW64: " << KelInsSys::IsWOW64()
              << "\nRTOS64: " << KelInsSys::IsRTOS64() << "\n";
}

int Run(int argc, char** argv)
{
    const std::string report = KelInsEnv::GetEnv("KELINS_TEST_REPORT");
    if (!report.empty())
        WriteReport(report);
    const std::string verb = argc > 1 ? argv[1] : "";
    if (verb == "exit" && argc == 3) {
        ::ExitProcess(static_cast<UINT>(std::strtoul(argv[2], nullptr, 0)));
    } else if (verb == "crash") {
        volatile int* volatile nowhere = nullptr;
        *nowhere = 1;
    } else if (verb == "write" && argc == 4) {
        return WriteToHandle(argv[2], argv[3]);
    } else if (verb == "later" && argc == 4) {
        return WriteFileLater(argv[2], argv[3]);
    } else if (verb == "window") {
        return ::GetConsoleWindow() != nullptr ? 1 : 0;
    } else if (verb == "admin") {
        return KelInsSys::IsAdmin() ? 1 : 0;
    } else if (verb == "environment" && argc == 3) {
        return KelInsEnv::GetEnv(argv[2]).empty() ? 0 : 1;
    } else if (verb == "facts") {
        PrintFacts();
        return 0;
    }
    return report.empty() ? kUnknownVerb : 0;
}

} // namespace

int main(int argc, char** argv)
{
    try {
        return Run(argc, argv);
    } catch (const std::exception& error) {
        std::cerr << error.what();
        return EXIT_FAILURE;
    }
}
