#pragma once

namespace Sweeps {

/// Whether this process was started by the kill sweep, to end itself in the midst of an operation.
bool IsKillSweepChild();

/// Does so; or returns how many calls there were.
int RunKillSweepChild();

} // namespace Sweeps
