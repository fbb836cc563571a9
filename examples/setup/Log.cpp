#include "Log.h"

#include <KelInsInfra/foundation/KelInsEnv.h>
#include <KelInsInfra/foundation/KelInsString.h>
#include <KelInsInfra/io/KelInsIO.h>
#include <ctime>
#include <iomanip>
#include <iostream>
#include <stdexcept>

namespace Setup {

std::string Log::DefaultFile()
{
    return KelInsEnv::GetEnv("TEMP") + KelInsIO::Path::Sep + "orchard-setup.log";
}

Log::Log(const std::string& file) : file_(file), stream_(KelInsIO::GetOutputFileStream(file, std::ios::app))
{
    if (!stream_)
        throw std::runtime_error("The log " + file +
                                 " cannot be written.\nClose the program that uses it, or name another: --log <file>");
}

void Log::Write(const std::string& text)
{
    std::string indented = text;
    KelInsString::ReplaceAll(indented, "\n", "\r\n                      "); // as wide as the time
    const std::time_t now = std::time(nullptr);
    stream_ << std::put_time(std::gmtime(&now), "%Y-%m-%d %H:%M:%SZ  ") << indented << "\r\n" << std::flush;
}

void Log::Tell(const std::string& text)
{
    std::cout << text << std::endl;
    Write(text);
}

} // namespace Setup
