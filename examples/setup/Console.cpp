#include "Console.h"

#include <csignal>
#include <cstdio>
#include <io.h>
#include <iostream>
#include <stdexcept>
#include <windows.h> // the console's code page: the only thing here that has no other door

namespace Setup {
namespace {

volatile std::sig_atomic_t interrupted = 0;

void RememberInterrupt(int)
{
    interrupted = 1;
}

} // namespace

Utf8Console::Utf8Console() : previous_(::GetConsoleOutputCP())
{
    ::SetConsoleOutputCP(CP_UTF8); // no console: fails, and nothing needs it
}

Utf8Console::~Utf8Console()
{
    ::SetConsoleOutputCP(previous_);
}

Progress::Progress(std::string task, std::size_t total)
    : task_(std::move(task)), total_(total), terminal_(::_isatty(::_fileno(stdout)) != 0)
{
    std::signal(SIGINT, RememberInterrupt);
    if (terminal_)
        ShowBar(0);
}

Progress::~Progress()
{
    if (terminal_)
        std::cout << std::endl;
    std::signal(SIGINT, SIG_DFL);
}

void Progress::Step()
{
    if (interrupted)
        throw std::runtime_error("Interrupted.");
    ++done_;
    const std::size_t percent = total_ == 0 ? 100 : done_ * 100 / total_;
    if (percent < shownPercent_ + (terminal_ ? 1 : 10))
        return;
    shownPercent_ = percent;
    if (terminal_)
        ShowBar(percent);
    else
        ShowLine(percent);
}

void Progress::ShowBar(std::size_t percent) const
{
    constexpr std::size_t kWidth = 40;
    const std::size_t filled = percent * kWidth / 100;
    std::cout << '\r' << task_ << " [" << std::string(filled, '#') << std::string(kWidth - filled, '.') << "] "
              << percent << " %" << std::flush;
}

void Progress::ShowLine(std::size_t percent) const
{
    std::cout << task_ << ": " << percent << " %, " << done_ << " of " << total_ << " files" << std::endl;
}

} // namespace Setup
