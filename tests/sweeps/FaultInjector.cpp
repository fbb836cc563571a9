#include "FaultInjector.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace Sweeps {
namespace {

constexpr std::size_t kMaxFunctions = 192;
constexpr std::size_t kSizeArgument = 2; // of _read, _write, ReadFile, WriteFile
const std::string kLookedUp = "looked up: ";

Word Call(void* function, const std::array<Word, 12>& a)
{
    using Function =
        Word (*)(Word, Word, Word, Word, Word, Word, Word, Word, Word, Word, Word, Word); // the caller clears the stack
    return reinterpret_cast<Function>(function)(a[0], a[1], a[2], a[3], a[4], a[5], a[6], a[7], a[8], a[9], a[10],
                                                a[11]);
}

bool CanDoHalf(const HookedFunction& function)
{
    return std::any_of(function.faults.begin(), function.faults.end(),
                       [](const Fault& fault) { return fault.kind == Fault::Kind::Half; });
}

/// At least something, so that a caller that writes the rest comes to an end.
Word DoHalf(const HookedFunction& function, std::array<Word, 12> arguments)
{
    const auto size = static_cast<std::uint32_t>(arguments[kSizeArgument]);
    arguments[kSizeArgument] = (size + 1) / 2;
    return Call(function.original, arguments);
}

bool LeavesNoTrace(const std::string& function)
{
    return function == "MultiByteToWideChar" || function == "WideCharToMultiByte" || function == "malloc" ||
           function == "realloc" || function == "GetFullPathNameW" || function == "GetProcAddress" ||
           function == "GetModuleHandleW";
}

} // namespace

FaultInjector::FaultInjector(HMODULE library)
{
    functions_.reserve(kMaxFunctions); // the slots' thunks know their functions by index
    current_ = this;
    HookLibrary(library);
    ExpectLookUps();
    HookRuntime(::GetModuleHandleW(L"libstdc++-6.dll"), "C++ runtime: ", FileFunctionsOfCppRuntime());
    HookRuntime(::GetModuleHandleW(L"msvcrt.dll"), "C runtime: ", FileFunctionsOfCRuntime());
    for (std::size_t i = 0; i < functions_.size(); ++i)
        for (void** slot : functions_[i].slots)
            RedirectSlot(slot, ThunkOf(i));
}

FaultInjector::~FaultInjector()
{
    Disarm();
    for (const HookedFunction& function : functions_)
        if (function.name.find("runtime: ") != std::string::npos) // the library is gone, or going
            for (void** slot : function.slots)
                RedirectSlot(slot, function.original);
    current_ = nullptr;
}

void* FaultInjector::ThunkOf(std::size_t index)
{
    static const auto thunks = []<std::size_t... I>(std::index_sequence<I...>)
    {
        return std::array<void*, sizeof...(I)>{reinterpret_cast<void*>(&Thunk<I>)...};
    }
    (std::make_index_sequence<kMaxFunctions>());
    return thunks.at(index);
}

std::size_t FaultInjector::Add(const std::string& name, const std::string& function)
{
    const auto found = std::find_if(functions_.begin(), functions_.end(),
                                    [&name](const HookedFunction& hooked) { return hooked.name == name; });
    if (found == functions_.end()) {
        if (functions_.size() == kMaxFunctions)
            throw std::runtime_error("FaultInjector: too many functions");
        functions_.push_back({name, *FaultsOf(function)});
        return functions_.size() - 1;
    }
    return static_cast<std::size_t>(found - functions_.begin());
}

void FaultInjector::HookLibrary(HMODULE library)
{
    for (const ImportedFunction& imported : ImportedFunctions(library)) {
        if (IsLanguageRuntime(imported.module))
            continue;
        const auto faults = FaultsOf(imported.name);
        if (!faults)
            unknown_.push_back(imported.name);
        if (!faults || faults->empty())
            continue;
        HookedFunction& function = functions_[Add(imported.name, imported.name)];
        function.slots.push_back(imported.slot);
        function.original = *imported.slot;
    }
}

/// Beforehand, so that no block of the heap is taken when it happens.
void FaultInjector::ExpectLookUps()
{
    for (const std::string& name : FunctionsLookedUp())
        Add(kLookedUp + name, name);
}

void FaultInjector::HookRuntime(HMODULE runtime, const std::string& prefix, const std::vector<std::string>& functions)
{
    for (const ImportedFunction& imported : ImportedFunctions(runtime)) {
        if (std::find(functions.begin(), functions.end(), imported.name) == functions.end())
            continue;
        HookedFunction& function = functions_[Add(prefix + imported.name, imported.name)];
        function.slots.push_back(imported.slot);
        function.original = *imported.slot;
    }
}

void FaultInjector::Arm()
{
    armed_ = true;
    happened_ = false;
    failing_ = nullptr;
    callsOfAll_ = 0;
    insteadAt_ = 0;
    for (HookedFunction& function : functions_)
        function.calls = 0;
}

void FaultInjector::Arm(const std::string& function, std::size_t n, const Fault& fault, bool lasts)
{
    Arm();
    failingCall_ = n;
    fault_ = fault;
    lasts_ = lasts;
    failing_ = &functions_[Add(function, function.substr(function.rfind(' ') + 1))];
}

void FaultInjector::ArmAtAnyCall(std::size_t n, std::function<void()> instead, bool afterHalf)
{
    Arm();
    insteadAt_ = n;
    instead_ = std::move(instead);
    afterHalf_ = afterHalf;
}

void FaultInjector::Disarm()
{
    armed_ = false;
}

std::size_t FaultInjector::Calls(const std::string& function) const
{
    for (const HookedFunction& hooked : functions_)
        if (hooked.name == function)
            return hooked.calls;
    return 0;
}

Word FaultInjector::Dispatch(std::size_t index, const Arguments& arguments)
{
    HookedFunction& function = functions_[index];
    if (armed_) {
        ++function.calls;
        CountForAll(function, arguments);
        const bool fails =
            &function == failing_ && (lasts_ ? function.calls >= failingCall_ : function.calls == failingCall_);
        if (fails) {
            happened_ = true;
            return Fail(function, arguments);
        }
    }
    return function.name == "GetProcAddress" ? LookUp(arguments) : Call(function.original, arguments);
}

Word FaultInjector::Fail(const HookedFunction& function, Arguments arguments) const
{
    if (fault_.kind == Fault::Kind::Half)
        return DoHalf(function, arguments);
    if (fault_.kind == Fault::Kind::DoAndReport)
        Call(function.original, arguments);
    if (fault_.code.errnoValue)
        errno = *fault_.code.errnoValue;
    if (fault_.code.lastError)
        ::SetLastError(*fault_.code.lastError);
    return fault_.result;
}

void FaultInjector::CountForAll(const HookedFunction& function, const Arguments& arguments)
{
    if (LeavesNoTrace(function.name) || (afterHalf_ && !CanDoHalf(function)))
        return;
    if (++callsOfAll_ != insteadAt_)
        return;
    if (afterHalf_)
        DoHalf(function, arguments);
    instead_();
}

/// What the library looks up it gets with a thunk of ours before it.
Word FaultInjector::LookUp(const Arguments& arguments)
{
    const auto& getProcAddress = *std::find_if(functions_.begin(), functions_.end(), [](const HookedFunction& hooked) {
        return hooked.name == "GetProcAddress";
    });
    const Word address = Call(getProcAddress.original, arguments);
    if (address == 0)
        return 0;
    const auto* name = reinterpret_cast<const char*>(arguments[1]); // the library looks up no ordinals
    for (std::size_t i = 0; i < functions_.size(); ++i) {
        const std::string_view expected = functions_[i].name;
        if (expected.starts_with(kLookedUp) && expected.substr(kLookedUp.size()) == name) {
            functions_[i].original = reinterpret_cast<void*>(address);
            return reinterpret_cast<Word>(ThunkOf(i));
        }
    }
    const DWORD lastError = ::GetLastError();
    if (!FaultsOf(name).value_or(std::vector<Fault>{{}}).empty())
        unknown_.push_back(name);
    ::SetLastError(lastError);
    return address;
}

} // namespace Sweeps
