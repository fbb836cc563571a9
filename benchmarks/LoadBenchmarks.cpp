// Loading and freeing a DLL that holds the whole library in one file, beside a DLL in C.

#include <KelInsInfra/foundation/internal/WindowsApi.h>
#include <benchmark/benchmark.h>

namespace {

void Register(const char* name, const wchar_t* file)
{
    const auto run = [file](benchmark::State& state) {
        for (auto _ : state) {
            const HMODULE library = ::LoadLibraryW(file);
            if (library == nullptr)
                state.SkipWithError("it cannot be loaded");
            else
                ::FreeLibrary(library);
        }
    };
    // Few: each time a C++ runtime inside a DLL is loaded, it takes one of the process's 1,088 TLS slots for good.
    benchmark::RegisterBenchmark(name, run)->Iterations(20);
}

const bool kRegistered = [] {
    Register("DLL load and free/KelInsInfra", L"single_file.dll");
    Register("DLL load and free/C-only DLL", L"c_only.dll");
    return true;
}();

} // namespace
