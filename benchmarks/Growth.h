#pragma once

#include <benchmark/benchmark.h>
#include <functional>
#include <string>

// The same work at three sizes each, named "<work>/<size in MB>": the report takes the exponent from them.

/// A text of so many megabytes: what comes first, pieces, what comes last.
inline std::string TextOfMegabytes(std::size_t megabytes, const std::string& first, const std::string& piece,
                                   const std::string& last)
{
    std::string text = first;
    text.reserve((megabytes << 20U) + 1000);
    while (text.size() < megabytes << 20U)
        text += piece;
    return text + last;
}

/// @param prepare  makes the work of one size.
inline void RegisterGrowth(const std::string& name,
                           const std::function<std::function<void()>(std::size_t megabytes)>& prepare)
{
    for (const std::size_t megabytes : {1U, 8U, 64U}) {
        const auto run = [prepare, megabytes](benchmark::State& state) {
            const std::function<void()> work = prepare(megabytes);
            work(); // the heap gets its memory
            for (auto _ : state)
                work();
        };
        benchmark::RegisterBenchmark((name + "/" + std::to_string(megabytes)).c_str(), run);
    }
}
