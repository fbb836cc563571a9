#include "Stack.h"

#include <KelInsInfra/foundation/KelInsString.h>
#include <cstddef>
#include <new>
#include <windows.h> // the installer's memory comes from GlobalAlloc

namespace Orchard {

std::string Pop(StackEntry** stack)
{
    StackEntry* const top = *stack;
    if (top == nullptr)
        return "";
    std::string text = KelInsString::Narrow(top->text);
    *stack = top->next;
    ::GlobalFree(top);
    return text;
}

void Push(StackEntry** stack, int stringSize, const std::string& text)
{
    const std::wstring wide = KelInsString::Widen(text);
    const std::size_t size = sizeof(StackEntry) + static_cast<std::size_t>(stringSize) * sizeof(wchar_t);
    auto* const entry = static_cast<StackEntry*>(::GlobalAlloc(GPTR, size));
    if (entry == nullptr)
        throw std::bad_alloc();
    ::lstrcpynW(entry->text, wide.c_str(), stringSize);
    entry->next = *stack;
    *stack = entry;
}

} // namespace Orchard
