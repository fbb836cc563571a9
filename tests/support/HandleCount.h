#pragma once

#include <array>
#include <cstddef>

/// How many handles this process holds. Never asked for by NtQuerySystemInformation's list of all handles: while
/// another process of the same Wine server starts or ends, that request crashes the server of Wine 8 (its loop over an
/// empty table of handles has no end), and with it every program there.
std::size_t HandleCount();

/// Those that the next new objects will get. The lowest free ones are given, so that they are the same as before unless
/// something stayed open, or was closed twice: quicker than counting, which asks the system about each number.
std::array<const void*, 2> NextHandles();
