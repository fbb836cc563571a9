#include "tests/support/HandleCount.h"
#include "tests/support/ImportHook.h"
#include "tests/support/RegistryRoot.h"
#include <KelInsInfra/registry/Key.h>
#include <gtest/gtest.h>
#include <type_traits>
#include <utility>

namespace {

using KelInsReg::Key;

static_assert(std::is_nothrow_default_constructible_v<Key>);
static_assert(std::is_nothrow_move_constructible_v<Key>);
static_assert(std::is_nothrow_move_assignable_v<Key>);
static_assert(!std::is_copy_constructible_v<Key>);
static_assert(!std::is_copy_assignable_v<Key>);
static_assert(!std::is_convertible_v<HKEY, Key>); // explicit
static_assert(std::is_constructible_v<Key, HKEY>);
static_assert(std::is_same_v<decltype(std::declval<const Key&>().GetKey()), HKEY>);

/// Counts what the library closes, and makes keys for it to own.
class KeyTest : public testing::Test
{
protected:
    HKEY Open() const
    {
        HKEY key = nullptr;
        EXPECT_EQ(::RegOpenKeyExW(root_.Handle(), L"", 0, KEY_READ, &key), ERROR_SUCCESS);
        return key;
    }

    static bool IsOpen(HKEY key)
    {
        return ::RegQueryInfoKeyW(key, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                                  nullptr, nullptr) == ERROR_SUCCESS;
    }

    /// The handles closed so far, in order.
    std::vector<HKEY> Closed() const
    {
        std::vector<HKEY> keys;
        for (const auto& [key] : closing_.Calls())
            keys.push_back(key);
        return keys;
    }

    using Handles = std::vector<HKEY>;

private:
    RegistryRoot root_;
    ImportHook<LSTATUS(HKEY)> closing_{"RegCloseKey"};
};

TEST_F(KeyTest, DefaultIsEmptyAndClosesNothing)
{
    {
        Key key;
        EXPECT_EQ(key.GetKey(), nullptr);
        key.Close();
    }
    EXPECT_EQ(Closed(), Handles());
}

TEST_F(KeyTest, NullHandleIsEmpty)
{
    {
        const Key key(nullptr);
        EXPECT_EQ(key.GetKey(), nullptr);
    }
    EXPECT_EQ(Closed(), Handles());
}

TEST_F(KeyTest, OwnsTheHandleAndClosesItOnce)
{
    const HKEY handle = Open();
    {
        const Key key(handle);
        EXPECT_EQ(key.GetKey(), handle);
        EXPECT_TRUE(IsOpen(handle));
    }
    EXPECT_FALSE(IsOpen(handle));
    EXPECT_EQ(Closed(), Handles{handle});
}

TEST_F(KeyTest, CloseEmptiesAndIsDoneOnce)
{
    const HKEY handle = Open();
    {
        Key key(handle);
        key.Close();
        EXPECT_EQ(key.GetKey(), nullptr);
        EXPECT_FALSE(IsOpen(handle));
        key.Close();
    }
    EXPECT_EQ(Closed(), Handles{handle});
}

TEST_F(KeyTest, MoveConstructionEmptiesTheSource)
{
    const HKEY handle = Open();
    {
        Key source(handle);
        const Key target(std::move(source));
        EXPECT_EQ(source.GetKey(), nullptr); // NOLINT(bugprone-use-after-move): that is the question
        EXPECT_EQ(target.GetKey(), handle);
        EXPECT_TRUE(IsOpen(handle));
    }
    EXPECT_EQ(Closed(), Handles{handle});
}

TEST_F(KeyTest, MoveAssignmentClosesItsOwnFirst)
{
    const HKEY own = Open();
    const HKEY other = Open();
    {
        Key target(own);
        Key source(other);
        EXPECT_EQ(&(target = std::move(source)), &target);
        EXPECT_EQ(target.GetKey(), other);
        EXPECT_EQ(source.GetKey(), nullptr); // NOLINT(bugprone-use-after-move): that is the question
        EXPECT_EQ(Closed(), Handles{own});
        EXPECT_TRUE(IsOpen(other));
    }
    EXPECT_EQ(Closed(), (Handles{own, other}));
}

TEST_F(KeyTest, MoveOntoAnEmptyKeyClosesNothing)
{
    const HKEY handle = Open();
    Key target;
    Key source(handle);
    target = std::move(source);
    EXPECT_EQ(target.GetKey(), handle);
    EXPECT_EQ(Closed(), Handles());
}

TEST_F(KeyTest, MoveOfAnEmptyKeyClosesTheTarget)
{
    const HKEY handle = Open();
    Key target(handle);
    target = Key();
    EXPECT_EQ(target.GetKey(), nullptr);
    EXPECT_EQ(Closed(), Handles{handle});
}

TEST_F(KeyTest, MoveOntoItselfClosesNothing)
{
    const HKEY handle = Open();
    Key key(handle);
    Key& same = key;
    key = std::move(same);
    EXPECT_EQ(key.GetKey(), handle);
    EXPECT_TRUE(IsOpen(handle));
    EXPECT_EQ(Closed(), Handles());
}

TEST_F(KeyTest, MoveOntoAKeyWithTheSameHandleClosesNothingAndEmptiesNeither)
{
    const HKEY handle = Open();
    Key target(handle);
    Key source(handle);
    target = std::move(source);
    EXPECT_EQ(target.GetKey(), handle);
    EXPECT_EQ(source.GetKey(), handle); // NOLINT(bugprone-use-after-move): that is the question
    EXPECT_TRUE(IsOpen(handle));
    EXPECT_EQ(Closed(), Handles());
}

TEST_F(KeyTest, ThousandKeysLeaveNoHandle)
{
    const Key first(Open()); // what the system opens once for good
    const std::size_t handles = HandleCount();
    for (int i = 0; i < 1000; ++i) {
        Key key(Open());
        key = Key(Open());
        const Key moved(std::move(key));
    }
    EXPECT_EQ(HandleCount(), handles);
}

} // namespace
