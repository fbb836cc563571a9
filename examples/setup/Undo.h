#pragma once

#include <string>
#include <vector>

namespace Setup {

/// What an installation has made so far, so that a failure can be taken back.
class Undo
{
public:
    /// To be called before a file or directory that does not exist yet is made.
    void WillMake(const std::string& path);

    /// Removes all of it, last thing first. Directories that other files have come into stay.
    /// @return what could not be removed, one text for each with the reason.
    std::vector<std::string> TakeBack();

private:
    std::vector<std::string> paths_;
};

} // namespace Setup
