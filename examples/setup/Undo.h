#pragma once

#include <functional>
#include <string>
#include <vector>

namespace Setup {

/// How to take back what an installation has done so far, should it fail.
class Undo
{
public:
    /// To be called before something is done that the action takes back. It must not mind that there is nothing to be
    /// taken back; what it throws is reported.
    void WillDo(std::function<void()> takeBack);

    /// To be called before a file or directory that does not exist yet is made. Directories that other files have come
    /// into stay.
    void WillMake(const std::string& path);

    /// Takes all of it back, last thing first.
    /// @return what could not be taken back, one text for each with the reason.
    std::vector<std::string> TakeBack();

private:
    std::vector<std::function<void()>> actions_;
};

} // namespace Setup
