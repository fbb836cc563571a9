#pragma once

#include <KelInsInfra/Export.h>
#include <string>

/// Variables of this process's environment. The environment is shared by all threads of the process.
namespace KelInsEnv {

/// Value of an environment variable.
///
/// @param name  UTF-8; an empty name gives the empty string.
/// @return UTF-8; empty when the variable is not set. Unset and set to the empty text are not told apart. In a program
///         that starts at a narrow main, inherited values have gone through the ANSI code page: start at wmain, or use
///         KelInsSys::GetEnvironment.
KELINS_API std::string GetEnv(const std::string& name);

/// Sets an environment variable of this process, for itself and the children that it starts afterwards.
///
/// @param name   UTF-8; an empty name does nothing.
/// @param value  UTF-8; an empty value removes the variable (the C runtime's rule).
/// Failures are not reported. A name with '=' in it is the C runtime's affair: refused, or cut off at that place.
KELINS_API void PutEnv(const std::string& name, const std::string& value);

} // namespace KelInsEnv
