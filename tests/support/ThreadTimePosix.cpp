#include "ThreadTime.h"

#include <stdexcept>
#include <sys/resource.h>

double ThreadSecondsInUserMode()
{
    rusage usage{};
    if (::getrusage(RUSAGE_THREAD, &usage) != 0)
        throw std::runtime_error("getrusage");
    return static_cast<double>(usage.ru_utime.tv_sec) + static_cast<double>(usage.ru_utime.tv_usec) / 1e6;
}
