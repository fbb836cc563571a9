#include "HandleCount.h"

#include <KelInsInfra/foundation/internal/WindowsApi.h>
#include <algorithm>
#include <cstring>
#include <stdexcept>
#include <vector>

namespace {

// Layout of the system's answer, documented for class 64 only outside the public headers.
struct HandleEntry
{
    void* object;
    ULONG_PTR processId;
    ULONG_PTR handle;
    ULONG access;
    USHORT creatorBackTrace;
    USHORT objectType;
    ULONG attributes;
    ULONG reserved;
};

struct HandleList
{
    ULONG_PTR count;
    ULONG_PTR reserved;
};

using QueryFunction = LONG (*)(ULONG, void*, ULONG, ULONG*);
constexpr ULONG kSystemExtendedHandleInformation = 64;
constexpr LONG kInfoLengthMismatch = static_cast<LONG>(0xC0000004);

std::vector<std::byte> QueryHandles()
{
    const FARPROC address = ::GetProcAddress(::GetModuleHandleW(L"ntdll.dll"), "NtQuerySystemInformation");
    const auto query = reinterpret_cast<QueryFunction>(reinterpret_cast<void*>(address));
    std::vector<std::byte> buffer(1u << 16);
    for (;;) {
        const auto size = static_cast<ULONG>(buffer.size());
        const LONG status = query(kSystemExtendedHandleInformation, buffer.data(), size, nullptr);
        if (status == 0)
            return buffer;
        if (status != kInfoLengthMismatch)
            throw std::runtime_error("HandleCount: the system does not tell");
        buffer.resize(buffer.size() * 2);
    }
}

} // namespace

std::size_t HandleCount()
{
    const std::vector<std::byte> answer = QueryHandles();
    HandleList list;
    std::memcpy(&list, answer.data(), sizeof(list));
    std::vector<HandleEntry> entries(list.count);
    std::memcpy(entries.data(), answer.data() + sizeof(list), list.count * sizeof(HandleEntry));
    return static_cast<std::size_t>(std::count_if(entries.begin(), entries.end(), [](const HandleEntry& entry) {
        return entry.processId == ::GetCurrentProcessId();
    }));
}
