#include <KelInsInfra/config/KelInsJavaProperties.h>
#include <gtest/gtest.h>

namespace {

TEST(SaveConvert, EmptyTextStaysEmpty)
{
    EXPECT_EQ(KelInsJavaProperties::saveConvert("", false), "");
    EXPECT_EQ(KelInsJavaProperties::loadConvert(""), "");
}

} // namespace
