#include <KelInsInfra/foundation/KelInsString.h>
#include <KelInsInfra/foundation/KelInsSys.h>
#include <KelInsInfra/foundation/internal/KelInsException.h>
#include <KelInsInfra/foundation/internal/UniqueHandle.h>
#include <cstring>
#include <new>

namespace KelInsSys {

std::string GetLastErrorMessage(std::uint32_t code)
{
    if (code == 0)
        return {};
    wchar_t* buffer = nullptr;
    constexpr DWORD flags = FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_FROM_SYSTEM;
    ::FormatMessageW(flags, nullptr, code, 0, reinterpret_cast<wchar_t*>(&buffer), 0, nullptr);
    const UniqueLocalMemory owner(buffer);
    if (buffer == nullptr)
        return {};
    std::string text = KelInsString::Narrow(buffer);
    if (text.ends_with("\r\n"))
        text.resize(text.size() - 2);
    return text;
}

std::string GetErrnoMessage(std::int32_t value)
{
    const char* text = std::strerror(value); // NOLINT(concurrency-mt-unsafe): the runtime keeps one buffer per thread
    if (text == nullptr)                     // no memory for that buffer
        throw std::bad_alloc();
    return text;
}

} // namespace KelInsSys

KelInsException::KelInsException(const std::string& message) : std::runtime_error(message + "\n") {}

KelInsException::KelInsException(const std::string& message, std::uint32_t lastError)
    : std::runtime_error(message + " - " + KelInsSys::GetLastErrorMessage(lastError) + "\n")
{}

KelInsExceptionErrno::KelInsExceptionErrno(const std::string& message, std::int32_t errnoValue)
    : std::runtime_error(message + " - " + KelInsSys::GetErrnoMessage(errnoValue) + "\n")
{}
