#pragma once

#include <cstddef>

/// How many handles this process holds. Never asked for by NtQuerySystemInformation's list of all handles: while
/// another process of the same Wine server starts or ends, that request crashes the server of Wine 8 (its loop over an
/// empty table of handles has no end), and with it every program there.
std::size_t HandleCount();
