#include "Session.h"

#include <algorithm>
#include <stdexcept>

namespace Sweeps {
namespace {

template <typename Function>
Function Entry(HMODULE library, const char* name)
{
    return reinterpret_cast<Function>(reinterpret_cast<void*>(::GetProcAddress(library, name)));
}

} // namespace

Session::Session() : library_(::LoadLibraryW(L"sweep_operations.dll"))
{
    if (library_ == nullptr)
        throw std::runtime_error("sweep_operations.dll cannot be loaded");
    injector_ = std::make_unique<FaultInjector>(::GetModuleHandleW(L"KelInsInfra.dll"));
    operations_ = Entry<decltype(&::KelInsOperations)>(library_, "KelInsOperations")();
    run_ = Entry<decltype(&::KelInsRun)>(library_, "KelInsRun");
}

Session::~Session()
{
    injector_->Disarm();
    ::FreeLibrary(library_);
    if (::GetModuleHandleW(L"KelInsInfra.dll") != nullptr)
        std::terminate(); // the next session would not find it fresh
}

const Operation& Session::Find(const std::string& name) const
{
    const auto found = std::find_if(operations_->begin(), operations_->end(),
                                    [&name](const Operation& operation) { return operation.name == name; });
    if (found == operations_->end())
        throw std::runtime_error("no operation " + name);
    return *found;
}

void Session::Run(const Operation& operation, const Place& place, Outcome& outcome) const
{
    run_(&operation, &place, &outcome);
}

} // namespace Sweeps
