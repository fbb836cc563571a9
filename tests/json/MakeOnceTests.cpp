#include <KelInsInfra/json/internal/MakeOnce.h>
#include <atomic>
#include <gtest/gtest.h>
#include <memory>
#include <stdexcept>
#include <string>
#include <tests/support/OnThreads.h>
#include <vector>

namespace {

using JSON::MakeOnce;

/// Owns what is made.
struct Holder
{
    ~Holder() { delete thing.load(); }

    std::atomic<std::string*> thing = nullptr;
};

TEST(JsonMakeOnce, MakesItOnce)
{
    Holder holder;
    for (const char* text : {"first", "second"})
        EXPECT_EQ(MakeOnce(holder.thing, [&] { return std::string(text); }), "first");
}

TEST(JsonMakeOnce, TriesAgainAfterAFailure)
{
    Holder holder;
    EXPECT_THROW(MakeOnce(holder.thing, []() -> std::string { throw std::runtime_error("no memory"); }),
                 std::runtime_error);
    EXPECT_EQ(holder.thing, nullptr);
    EXPECT_EQ(MakeOnce(holder.thing, [] { return std::string("second"); }), "second");
}

TEST(JsonMakeOnce, WhoMakesItTooLateTakesTheOther)
{
    Holder holder;
    const std::string& thing = MakeOnce(holder.thing, [&] {
        MakeOnce(holder.thing, [] { return std::string("inner"); });
        return std::string("outer");
    });
    EXPECT_EQ(thing, "inner");
    EXPECT_EQ(&thing, holder.thing);
}

TEST(JsonMakeOnce, ManyThreadsGetTheSame)
{
    for (int round = 0; round < 20; ++round) {
        Holder holder;
        std::vector<const std::string*> seen(8);
        OnThreads(8, [&](int i) {
            const std::string& thing =
                MakeOnce(holder.thing, [i] { return std::string(100, static_cast<char>('a' + i)); });
            EXPECT_EQ(thing, std::string(100, thing[0]));
            seen[static_cast<std::size_t>(i)] = &thing;
        });
        for (const std::string* thing : seen)
            EXPECT_EQ(thing, holder.thing);
    }
}

} // namespace
