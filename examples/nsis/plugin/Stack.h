#pragma once

#include <string>

namespace Orchard {

/// One text on the stack that an NSIS installer shares with its plugins, as NSIS lays it out in memory (UTF-16).
struct StackEntry
{
    StackEntry* next;
    wchar_t text[1]; // as many as the installer's string size
};

/// Takes the topmost text off; the first argument of a call is on top. UTF-8; empty when there is none.
std::string Pop(StackEntry** stack);

/// Puts a text on top, for the script to pop. It is cut off at the installer's string size.
///
/// @param stringSize  in UTF-16 units, with the NUL.
void Push(StackEntry** stack, int stringSize, const std::string& text);

} // namespace Orchard
