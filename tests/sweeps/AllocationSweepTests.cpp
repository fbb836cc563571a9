// Each operation with each of its allocations failing: the first, the second, and so on until it gets by; that one
// alone, and all from there on. It ends in std::bad_alloc or in the right result, never in part of it, and loses no
// block.

#include "Stage.h"

#include "tests/support/Heap.h"
#include <cstdio>
#include <gtest/gtest.h>
#include <optional>

namespace {

using Lasts = Heap::Exhaustion::Lasts;
using Sweeps::Operation;
using Sweeps::Stage;

std::vector<std::string> OperationNames()
{
    std::vector<std::string> names;
    for (const Operation& operation : Stage::Operations())
        names.push_back(operation.name);
    return names;
}

struct Outcome
{
    std::optional<std::string> result; ///< nothing for std::bad_alloc
    std::string wrongly;               ///< another exception
    bool happened = false;
};

class AllocationSweep : public testing::TestWithParam<std::string>
{
protected:
    AllocationSweep()
    {
        for (const Operation& operation : Stage::Operations())
            if (operation.name == GetParam())
                operation_ = operation;
    }

    [[nodiscard]] Outcome Run(std::size_t allocations, Lasts lasts) const
    {
        Outcome outcome;
        stage_.Prepare(operation_);
        {
            const Heap::Exhaustion exhaustion(allocations, lasts);
            try {
                outcome.result = operation_.run(stage_.Get());
            } catch (const std::bad_alloc&) {
                // as it should be
            } catch (const std::exception& error) {
                outcome.wrongly = error.what();
            }
        }
        outcome.happened = Heap::Exhaustion::Happened();
        return outcome;
    }

    /// From a fresh process on, so that what is found out once is found out with allocations failing.
    std::size_t SweepLasting()
    {
        std::vector<Outcome> outcomes;
        do
            outcomes.push_back(Run(outcomes.size(), Lasts::ForAll));
        while (outcomes.back().happened);
        right_ = outcomes.back().result.value_or("an exception without a reason");
        for (std::size_t n = 0; n < outcomes.size(); ++n)
            Check(outcomes[n], n);
        return outcomes.size() - 1;
    }

    std::size_t SweepSingle()
    {
        std::size_t blocks = 0;
        for (std::size_t n = 0;; ++n) {
            if (const Outcome outcome = Run(n, Lasts::ForOne); !outcome.happened)
                return n;
            else
                Check(outcome, n);
            if (n == 0)
                blocks = Heap::BlocksInUse();
            EXPECT_EQ(Heap::BlocksInUse(), blocks) << "lost after " << n << " allocations";
        }
    }

    void Check(const Outcome& outcome, std::size_t allocations) const
    {
        EXPECT_EQ(outcome.wrongly, "") << "after " << allocations << " allocations";
        if (!outcome.result || *outcome.result == right_)
            return;
        const bool isDocumented = operation_.withoutMemory && operation_.withoutMemory(*outcome.result, right_);
        EXPECT_TRUE(isDocumented) << "after " << allocations << " allocations, a part of the result, "
                                  << outcome.result->size() << " bytes";
    }

    std::string right_;
    Stage stage_;
    Operation operation_;
};

TEST_P(AllocationSweep, EveryAllocation)
{
    const std::size_t lasting = SweepLasting();
    const std::size_t single = SweepSingle();
    if (operation_.cleanUp)
        operation_.cleanUp();
    std::printf("| %-28s | %5zu | %6zu |\n", GetParam().c_str(), single, lasting + single);
}

INSTANTIATE_TEST_SUITE_P(Each, AllocationSweep, testing::ValuesIn(OperationNames()),
                         [](const auto& test) { return test.param; });

} // namespace
