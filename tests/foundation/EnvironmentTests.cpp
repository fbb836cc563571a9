#include <KelInsInfra/foundation/KelInsEnv.h>
#include <gtest/gtest.h>

namespace {

TEST(GetEnv, UnsetAndEmptyNamesAreEmpty)
{
    EXPECT_EQ(KelInsEnv::GetEnv("KELINS_TEST_NEVER_SET"), "");
    EXPECT_EQ(KelInsEnv::GetEnv(""), "");
}

TEST(PutEnv, SetsReplacesAndRemoves)
{
    KelInsEnv::PutEnv("KELINS_TEST_VALUE", "one");
    EXPECT_EQ(KelInsEnv::GetEnv("KELINS_TEST_VALUE"), "one");
    KelInsEnv::PutEnv("KELINS_TEST_VALUE", "two");
    EXPECT_EQ(KelInsEnv::GetEnv("KELINS_TEST_VALUE"), "two");
    KelInsEnv::PutEnv("KELINS_TEST_VALUE", "");
    EXPECT_EQ(KelInsEnv::GetEnv("KELINS_TEST_VALUE"), "");
}

TEST(PutEnv, EmptyNameDoesNothing)
{
    EXPECT_NO_THROW(KelInsEnv::PutEnv("", "value"));
}

TEST(PutEnv, WhatTheSystemCannotHoldIsNotReported)
{
    const std::string tooLong(40'000, 'x');
    KelInsEnv::PutEnv("KELINS_TEST_LONG", "before");
    KelInsEnv::PutEnv("KELINS_TEST_LONG", tooLong);
    KelInsEnv::PutEnv(tooLong, "value");
    EXPECT_EQ(KelInsEnv::GetEnv("KELINS_TEST_LONG"), "before");
    EXPECT_EQ(KelInsEnv::GetEnv(tooLong), "");
}

TEST(PutEnv, NonAsciiNamesAndValuesRoundTrip)
{
    const std::string value = "gr\xC3\xBC\xC3\x9F \xE6\x97\xA5\xE6\x9C\xAC \xF0\x9F\x8D\x8E";
    KelInsEnv::PutEnv("KELINS_\xC3\x84", value);
    EXPECT_EQ(KelInsEnv::GetEnv("KELINS_\xC3\x84"), value);
    KelInsEnv::PutEnv("KELINS_\xC3\x84", "");
}

} // namespace
