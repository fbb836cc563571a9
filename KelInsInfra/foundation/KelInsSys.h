#pragma once

#include <KelInsInfra/Export.h>
#include <cstdint>
#include <string>

namespace KelInsSys {

/// Text of a Windows error code, in the first language that has one of those that the system looks through: neutral,
/// the thread's, the user's, the system's, English.
///
/// @param code  the value of GetLastError, or a status returned by a registry or Windows Installer call.
/// @return UTF-8, one or more lines, without the final CR LF that the system appends; its full stop stays. Empty for
///         code 0 (the system is not asked) and for codes that the system has no text for.
KELINS_API std::string GetLastErrorMessage(std::uint32_t code);

/// Text of a C runtime error number, as strerror gives it (ASCII); unknown numbers give the runtime's own words for
/// them.
KELINS_API std::string GetErrnoMessage(std::int32_t value);

} // namespace KelInsSys
