#include "ImportHook.h"

#include <cstdint>
#include <cstring>
#include <span>

namespace {

struct Image
{
    explicit Image(HMODULE module)
        : base(reinterpret_cast<std::byte*>(module)),
          headers(At<IMAGE_NT_HEADERS>(static_cast<DWORD>(At<IMAGE_DOS_HEADER>(0)->e_lfanew)))
    {}

    template <typename T>
    T* At(DWORD offset) const
    {
        return reinterpret_cast<T*>(base + offset);
    }

    std::byte* base;
    IMAGE_NT_HEADERS* headers;
};

HMODULE LibraryModule()
{
    const HMODULE library = ::GetModuleHandleW(L"KelInsInfra.dll");
    return library != nullptr ? library : ::GetModuleHandleW(nullptr);
}

void CollectImports(HMODULE module, const std::string& function, std::vector<void**>& slots)
{
    for (const ImportedFunction& imported : ImportedFunctions(module))
        if (imported.name == function)
            slots.push_back(imported.slot);
}

std::span<const IMAGE_SECTION_HEADER> Sections(const Image& image)
{
    const auto* optional = reinterpret_cast<const std::byte*>(&image.headers->OptionalHeader);
    const IMAGE_FILE_HEADER& file = image.headers->FileHeader;
    return {reinterpret_cast<const IMAGE_SECTION_HEADER*>(optional + file.SizeOfOptionalHeader), file.NumberOfSections};
}

/// The variables in which the compiler's own stubs keep a function of the C runtime.
void CollectStubVariables(const Image& image, const std::string& function, std::vector<void**>& slots)
{
    const FARPROC target = ::GetProcAddress(::GetModuleHandleW(L"msvcrt.dll"), function.c_str());
    if (target == nullptr)
        return;
    for (const IMAGE_SECTION_HEADER& section : Sections(image)) {
        if ((section.Characteristics & IMAGE_SCN_MEM_WRITE) == 0)
            continue;
        const std::span variables(image.At<void*>(section.VirtualAddress), section.Misc.VirtualSize / sizeof(void*));
        for (void*& variable : variables)
            if (variable == reinterpret_cast<void*>(target))
                slots.push_back(&variable);
    }
}

bool CollectSlots(HMODULE module, const std::string& function, std::vector<void**>& slots)
{
    const std::size_t before = slots.size();
    if (module != nullptr) {
        CollectImports(module, function, slots);
        if (slots.size() == before)
            CollectStubVariables(Image(module), function, slots);
    }
    return slots.size() != before;
}

} // namespace

std::vector<ImportedFunction> ImportedFunctions(HMODULE module)
{
    std::vector<ImportedFunction> functions;
    const Image image(module);
    const DWORD directory = image.headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
    for (auto* from = image.At<IMAGE_IMPORT_DESCRIPTOR>(directory); from->Name != 0; ++from) {
        const auto* name = image.At<IMAGE_THUNK_DATA>(from->OriginalFirstThunk);
        auto* slot = image.At<void*>(from->FirstThunk);
        for (; name->u1.AddressOfData != 0; ++name, ++slot) {
            if (IMAGE_SNAP_BY_ORDINAL(name->u1.Ordinal))
                continue;
            const auto* entry = image.At<IMAGE_IMPORT_BY_NAME>(static_cast<DWORD>(name->u1.AddressOfData));
            functions.push_back({image.At<char>(from->Name), reinterpret_cast<const char*>(&entry->Name[0]), slot});
        }
    }
    return functions;
}

void RedirectSlot(void** slot, void* target)
{
    DWORD protection = 0;
    ::VirtualProtect(slot, sizeof(*slot), PAGE_READWRITE, &protection);
    std::memcpy(slot, &target, sizeof(target));
    ::VirtualProtect(slot, sizeof(*slot), protection, &protection);
}

ImportSlots::ImportSlots(const std::string& function, const std::vector<std::wstring>& alsoIn, void* target)
{
    bool found = CollectSlots(LibraryModule(), function, slots_) || !alsoIn.empty();
    for (const std::wstring& name : alsoIn)
        found = CollectSlots(::GetModuleHandleW(name.c_str()), function, slots_) && found;
    if (!found)
        throw std::runtime_error("ImportHook: a module does not call (or has not yet looked up) " + function);
    original_ = *slots_.front();
    for (void** slot : slots_)
        RedirectSlot(slot, target);
}

ImportSlots::~ImportSlots()
{
    for (void** slot : slots_)
        RedirectSlot(slot, original_);
}
