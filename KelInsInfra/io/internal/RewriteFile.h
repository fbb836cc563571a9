#pragma once

#include <istream>
#include <string>

namespace KelInsIO {

/// The words that a caller puts around the text of each failure.
struct MessageFrame
{
    std::string before;
    std::string after;
};

/// Content of a file that was opened for reading.
/// @throws std::runtime_error  "Failed to open <name>": the stream was not; "Failed to read <name>"; each in the frame.
std::string ReadForRewriting(std::istream& file, const std::string& name, const MessageFrame& frame);

/// Replaces the content of a file, or creates it, by copying a temporary file over it: whatever fails, the whole new
/// content lies in the temporary file before the file itself is touched. A read-only file is made writable for the copy
/// and, when that succeeded, read-only again.
/// @throws std::runtime_error  "Failed to open <temporaryName>" and "Failed to write <temporaryName>": the file is
///         untouched; "Failed to write <name>": not as long as it should be after the copy, the temporary file is kept;
///         each in the frame. And as Copy.
void RewriteFile(const std::string& name, const std::string& temporaryName, const std::string& content,
                 const MessageFrame& frame);

} // namespace KelInsIO
