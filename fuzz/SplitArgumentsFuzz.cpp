// Any text is split just as an independently written model splits it.

#include "tests/system/SplitArgumentsModel.h"
#include <KelInsInfra/system/ProcessBuilder.h>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text(reinterpret_cast<const char*>(data), size);
    if (KelInsSys::ProcessBuilder::SplitArguments(text) != SplitArgumentsModel::Split(text))
        std::abort();
    return 0;
}
