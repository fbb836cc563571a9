#include <KelInsInfra/json/internal/MakeOnce.h>
#include <atomic>
#include <chrono>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <tests/support/OnThreads.h>
#include <thread>

namespace {

using JSON::Made;
using JSON::MakeOnce;

TEST(JsonMakeOnce, MakesItOnce)
{
    std::string thing;
    std::atomic<Made> made{};
    for (const char* text : {"first", "second"})
        MakeOnce(thing, made, [&] { return std::string(text); });
    EXPECT_EQ(thing, "first");
    EXPECT_EQ(made, Made::Yes);
}

TEST(JsonMakeOnce, TriesAgainAfterAFailure)
{
    std::string thing;
    std::atomic<Made> made{};
    EXPECT_THROW(MakeOnce(thing, made, []() -> std::string { throw std::runtime_error("no memory"); }),
                 std::runtime_error);
    EXPECT_EQ(made, Made::No);
    MakeOnce(thing, made, [] { return std::string("second"); });
    EXPECT_EQ(thing, "second");
}

TEST(JsonMakeOnce, WhoMakesItTooLateTakesTheOther)
{
    std::string thing;
    std::atomic<Made> made{};
    MakeOnce(thing, made, [&] {
        MakeOnce(thing, made, [] { return std::string("inner"); });
        return std::string("outer");
    });
    EXPECT_EQ(thing, "inner");
}

/// Stays on its way to its place until it may go on.
struct Slow
{
    Slow() = default;

    explicit Slow(int given) : value(given) {}

    Slow(Slow&&) = default;

    Slow& operator=(Slow&& other) noexcept
    {
        onTheWay = true;
        WaitUntil([] { return mayGoOn.load(); });
        value = other.value;
        return *this;
    }

    int value = 0;
    static inline std::atomic<bool> onTheWay = false;
    static inline std::atomic<bool> mayGoOn = false;
};

TEST(JsonMakeOnce, WhoComesWhileItIsOnItsWayWaits)
{
    Slow::onTheWay = false;
    Slow::mayGoOn = false;
    Slow thing;
    std::atomic<Made> made{};
    std::thread first([&] { MakeOnce(thing, made, [] { return Slow(1); }); });
    WaitUntil([] { return Slow::onTheWay.load(); });

    std::atomic<bool> madeToo = false;
    std::atomic<bool> returned = false;
    std::thread second([&] {
        MakeOnce(thing, made, [&] {
            madeToo = true;
            return Slow(2);
        });
        returned = true;
        EXPECT_EQ(thing.value, 1);
    });
    WaitUntil([&] { return madeToo.load(); });
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_FALSE(returned);
    Slow::mayGoOn = true;
    first.join();
    second.join();
    EXPECT_EQ(thing.value, 1);
}

} // namespace
