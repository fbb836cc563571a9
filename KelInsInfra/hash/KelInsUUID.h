#pragma once

#include <KelInsInfra/Export.h>
#include <string>

/// Random (version 4, RFC 9562) UUIDs as text.
namespace KelInsUUID {

/// A fresh identifier: "xxxxxxxx-xxxx-4xxx-yxxx-xxxxxxxxxxxx", 36 characters, no braces, y one of 8, 9, a, b.
///
/// The values come from one pseudo-random generator of the process (std::mt19937), seeded from the clock on the first
/// call. What that does not give:
/// - Secrecy. Whoever sees some identifiers, or guesses the time of the first call, can work out the others. Never use
///   them as keys, passwords, tokens or names that nobody may guess.
/// - Safety between threads. Only the first call's seeding is guarded: callers on several threads serialise their
///   calls, or the generator's state is damaged and identifiers may repeat.
/// - Uniqueness between processes in every case. The seed is 32 bits of the clock, in ticks of 100 nanoseconds: two
///   processes (or two machines) that make their first call in the same tick, or a multiple of 429.4967296 seconds
///   apart, get the same identifiers. A process that is cloned after the first call (a fork, a machine restored from a
///   snapshot) repeats those of its original.
///
/// @param upperCase  letters A-F rather than a-f.
KELINS_API std::string GetUUID(bool upperCase);

} // namespace KelInsUUID
