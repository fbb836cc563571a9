#pragma once

#include <KelInsInfra/foundation/KelInsSys.h>
#include <cstdint>
#include <gtest/gtest.h>
#include <string>

/// The whole text of a failure for which the system gave a code.
inline std::string SystemFailure(const std::string& message, std::uint32_t code)
{
    return message + " - " + KelInsSys::GetLastErrorMessage(code) + "\n";
}

template <typename Case>
std::string LabelOf(const testing::TestParamInfo<Case>& info)
{
    return info.param.label;
}
