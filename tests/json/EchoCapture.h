#pragma once

#include <iostream>
#include <sstream>

/// Gathers what is written to std::cout during its life.
class EchoCapture
{
public:
    EchoCapture() : former_(std::cout.rdbuf(gathered_.rdbuf())) {}

    ~EchoCapture() { std::cout.rdbuf(former_); }

    EchoCapture(const EchoCapture&) = delete;
    EchoCapture& operator=(const EchoCapture&) = delete;

    std::string Text() const { return gathered_.str(); }

private:
    std::ostringstream gathered_;
    std::streambuf* former_;
};
