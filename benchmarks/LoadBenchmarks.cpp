// Loading and freeing a DLL that holds the whole library in one file, beside a DLL in C.

#include <KelInsInfra/foundation/internal/WindowsApi.h>
#include <benchmark/benchmark.h>
#include <string>
#include <utility>

namespace {

void LoadAndFree(benchmark::State& state, const wchar_t* file)
{
    for (auto _ : state) {
        const HMODULE library = ::LoadLibraryW(file);
        if (library == nullptr)
            state.SkipWithError("it cannot be loaded");
        else
            ::FreeLibrary(library);
    }
}

void Register(const std::string& work, bool withAdvapi)
{
    for (const auto& [contestant, file] :
         {std::pair{"/KelInsInfra", L"single_file.dll"}, {"/C-only DLL", L"c_only.dll"}}) {
        const auto run = [=, file = file](benchmark::State& state) {
            const HMODULE advapi = withAdvapi ? ::LoadLibraryW(L"advapi32.dll") : nullptr;
            LoadAndFree(state, file);
            if (advapi != nullptr)
                ::FreeLibrary(advapi);
        };
        // Few: each time a C++ runtime inside a DLL is loaded, it takes one of the process's 1,088 TLS slots for good.
        benchmark::RegisterBenchmark((work + contestant).c_str(), run)->Iterations(20);
    }
}

const bool kRegistered = [] {
    Register("DLL load and free", true); // as in every program that uses the shell, COM or the registry
    Register("DLL load and free, ADVAPI32.dll along with it", false);
    return true;
}();

} // namespace
