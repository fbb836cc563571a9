#pragma once

#include <fstream>
#include <string>

namespace Setup {

/// What setup does, for those who have to find out later what went wrong: a text file in UTF-8 that each run appends
/// to, with the time (UTC) before each line.
class Log
{
public:
    /// The one in the user's folder for temporary files.
    static std::string DefaultFile();

    /// @throws std::runtime_error  when the file cannot be opened.
    explicit Log(const std::string& file);

    /// Appends a text; each further line of it is indented. Nothing is thrown: a full disk must not end an
    /// installation.
    void Write(const std::string& text);

    /// The same, and shows the text to the user.
    void Tell(const std::string& text);

    const std::string& GetFile() const { return file_; }

private:
    std::string file_;
    std::ofstream stream_;
};

} // namespace Setup
