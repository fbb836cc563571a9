#include <KelInsInfra/json/internal/MakeOnce.h>
#include <atomic>
#include <chrono>
#include <gtest/gtest.h>
#include <latch>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>

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

/// Stays a while on its way to its place.
struct Slow
{
    Slow() = default;

    explicit Slow(int given) : value(given) {}

    Slow(Slow&&) = default;

    Slow& operator=(Slow&& other)
    {
        if (onTheWay != nullptr) {
            std::exchange(onTheWay, nullptr)->count_down();
            arrive->wait();
        }
        value = other.value;
        return *this;
    }

    int value = 0;
    static inline std::latch* onTheWay = nullptr; ///< of the first that is moved
    static inline std::latch* arrive = nullptr;
};

TEST(JsonMakeOnce, WhoComesLateWaitsUntilItIsThere)
{
    std::latch onTheWay(1);
    std::latch arrive(1);
    Slow::onTheWay = &onTheWay;
    Slow::arrive = &arrive;
    Slow thing;
    std::atomic<Made> made{};
    std::thread first([&] { MakeOnce(thing, made, [] { return Slow(1); }); });
    onTheWay.wait();

    std::latch madeToo(1);
    std::atomic<bool> returned = false;
    std::thread second([&] {
        MakeOnce(thing, made, [&] {
            madeToo.count_down();
            return Slow(2);
        });
        returned = true;
        EXPECT_EQ(thing.value, 1);
    });
    madeToo.wait();
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_FALSE(returned);
    arrive.count_down();
    first.join();
    second.join();
    EXPECT_EQ(thing.value, 1);
}

} // namespace
