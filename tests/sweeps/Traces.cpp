#include "Traces.h"

#include "tests/support/Files.h"
#include "tests/support/RegistryRoot.h"
#include <KelInsInfra/foundation/KelInsString.h>
#include <malloc.h>
#include <vector>

namespace Sweeps {
namespace {

using KelInsString::Narrow;
using KelInsString::Widen;

constexpr DWORD kNameUnits = 16384;

void AddKey(HKEY key, const std::wstring& path, Traces& traces)
{
    std::vector<wchar_t> name(kNameUnits);
    DWORD units = kNameUnits;
    for (DWORD i = 0; ::RegEnumValueW(key, i, name.data(), &units, nullptr, nullptr, nullptr, nullptr) == 0; ++i) {
        const RawValue value = ReadRaw(key, name.data());
        traces["value\\" + Narrow(path + name.data())] = std::to_string(value.type) + ": " + value.bytes;
        units = kNameUnits;
    }
    units = kNameUnits;
    for (DWORD i = 0; ::RegEnumKeyExW(key, i, name.data(), &units, nullptr, nullptr, nullptr, nullptr) == 0; ++i) {
        const std::wstring below = path + name.data();
        traces["key\\" + Narrow(below)];
        HKEY child = nullptr;
        if (::RegOpenKeyExW(key, name.data(), 0, KEY_READ, &child) == ERROR_SUCCESS) {
            AddKey(child, below + L'\\', traces);
            ::RegCloseKey(child);
        }
        units = kNameUnits;
    }
}

std::size_t BlocksOf(HANDLE heap)
{
    std::size_t count = 0;
    PROCESS_HEAP_ENTRY entry{};
    ::HeapLock(heap);
    while (::HeapWalk(heap, &entry))
        count += (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0 ? 1 : 0;
    ::HeapUnlock(heap);
    return count;
}

} // namespace

Traces TracesOf(const std::string& directory, const std::string& key)
{
    Traces traces;
    for (const std::string& name : TreeNames(directory)) {
        const std::string path = directory + '\\' + name;
        if (name.ends_with('/'))
            traces["dir\\" + name];
        else
            traces["file\\" + name] = (IsReadOnly(path) ? "R" : "-") + FileContentIfAny(path);
    }
    HKEY top = nullptr;
    if (::RegOpenKeyExW(HKEY_CURRENT_USER, Widen(key).c_str(), 0, KEY_READ, &top) == ERROR_SUCCESS) {
        AddKey(top, L"", traces);
        ::RegCloseKey(top);
    }
    return traces;
}

std::size_t BlocksInUse()
{
    const auto ofRuntime = reinterpret_cast<HANDLE>(::_get_heap_handle());
    return BlocksOf(::GetProcessHeap()) + (ofRuntime == ::GetProcessHeap() ? 0 : BlocksOf(ofRuntime));
}

} // namespace Sweeps
