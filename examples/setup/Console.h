#pragma once

#include <cstddef>
#include <string>

namespace Setup {

/// Shows UTF-8 in the console as long as it lives.
class Utf8Console
{
public:
    Utf8Console();
    ~Utf8Console();
    Utf8Console(const Utf8Console&) = delete;
    Utf8Console& operator=(const Utf8Console&) = delete;

private:
    unsigned previous_;
};

/// How far a long task has come: a bar on a terminal, a line per tenth elsewhere (log files, pipes).
class Progress
{
public:
    /// @param task   for instance "Copying".
    /// @param total  number of steps.
    Progress(std::string task, std::size_t total);
    ~Progress(); ///< ends the bar's line

    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// One step is done.
    /// @throws std::runtime_error  when Ctrl+C was pressed, so that the task can be taken back in order.
    void Step();

private:
    void ShowBar(std::size_t percent) const;
    void ShowLine(std::size_t percent) const;

    std::string task_;
    std::size_t total_;
    std::size_t done_ = 0;
    std::size_t shownPercent_ = 0;
    bool terminal_;
};

} // namespace Setup
