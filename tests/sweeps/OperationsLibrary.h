#pragma once

#include "Operation.h"

#include <array>

namespace Sweeps {

/// How an operation ended. Holds no memory of its own, so that blocks of the heap can be counted around it.
struct Outcome
{
    enum class Kind
    {
        Result,
        Exception,   ///< a std::runtime_error
        OutOfMemory, ///< std::bad_alloc
        OtherException,
    };

    Kind kind = Kind::Result;
    std::array<char, 16384> text{};
    std::size_t size = 0;

    [[nodiscard]] std::string Text() const { return {text.data(), size}; }
};

} // namespace Sweeps

extern "C" {
__declspec(dllexport) const std::vector<Sweeps::Operation>* KelInsOperations();
__declspec(dllexport) void KelInsRun(const Sweeps::Operation* operation, const Sweeps::Place* place,
                                     Sweeps::Outcome* outcome);
}
