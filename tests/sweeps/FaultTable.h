#pragma once

#include "tests/support/ImportHook.h"
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Sweeps {

/// Whatever a function takes or gives: integers, handles and pointers alike are passed in one machine word.
using Word = std::uint64_t;

/// One way in which a function fails.
struct Fault
{
    enum class Kind
    {
        Refuse,      ///< nothing is done
        DoAndReport, ///< it is done, and reported as failed: for what releases, so that the sweep itself leaks nothing
        Half,        ///< half of what was asked for is read or written, and reported so
    };

    Kind kind;
    Word result;
    FailureCode code;
};

/// The failures of a function of the system or of the C runtime.
///
/// @return nothing for a function that nobody has thought about; an empty list for one that cannot fail, or whose
///         failure is none of the library's business (the reasons stand beside the names).
std::optional<std::vector<Fault>> FaultsOf(std::string_view function);

/// Whether no operation calls a function that the library imports, unless something else fails.
bool IsReachedByNone(std::string_view function);

/// Whether what a module exports needs no thought, name by name: the runtime of the compiler's language.
bool IsLanguageRuntime(std::string_view module);

/// What the library looks up by name.
const std::vector<std::string>& FunctionsLookedUp();

/// What the C++ runtime calls for the library's streams, and the C runtime for both.
const std::vector<std::string>& FileFunctionsOfCppRuntime();
const std::vector<std::string>& FileFunctionsOfCRuntime();

} // namespace Sweeps
