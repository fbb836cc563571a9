#include "tests/support/ImportHook.h"
#include <KelInsInfra/json/internal/KeyedHash.h>
#include <gtest/gtest.h>
#include <stdexcept>

namespace {

/// Once per process: a document must be had where the system gives no random numbers.
TEST(JsonKeyedHashIsolated, NeedsNoRandomNumbers)
{
    const ImportHook<unsigned(void*)> random("_ZNSt13random_device9_M_getvalEv",
                                             [](void*) -> unsigned { throw std::runtime_error("no random numbers"); });
    EXPECT_NE(JSON::KeyedHash("a"), JSON::KeyedHash("b"));
    EXPECT_EQ(JSON::KeyedHash("a"), JSON::KeyedHash("a"));
    EXPECT_EQ(random.Calls().size(), 1u);
}

} // namespace
