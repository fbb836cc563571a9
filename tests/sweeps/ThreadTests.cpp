// Distinct objects on many threads at once: every portable operation gives what it gives alone. Under the thread
// sanitizer this finds what they share. Left out is what is documented as being for one thread at a time: parsing JSON,
// and UUIDs.

#include "Operation.h"

#include <gtest/gtest.h>
#include <thread>

namespace {

using Sweeps::Operation;

std::vector<Operation> OperationsForManyThreads()
{
    std::vector<Operation> operations;
    Sweeps::AddTextOperations(operations);
    Sweeps::AddDocumentOperations(operations);
    Sweeps::AddInternalOperations(operations);
    std::erase_if(operations, [](const Operation& operation) {
        return operation.name == "Uuid" || operation.name == "JsonParse" || operation.name == "JsonMembers";
    });
    return operations;
}

TEST(ManyThreads, WorkOnDistinctObjects)
{
    constexpr int kThreads = 16;
    constexpr int kRounds = 10;
    const std::vector<Operation> operations = OperationsForManyThreads();
    std::vector<std::string> alone;
    for (const Operation& operation : operations)
        alone.push_back(operation.run({}));
    std::vector<int> wrong(kThreads);
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back([&, t] {
            for (std::size_t i = 0; i < operations.size() * kRounds; ++i) {
                const std::size_t which = (i + static_cast<std::size_t>(t)) % operations.size();
                wrong[static_cast<std::size_t>(t)] += operations[which].run({}) == alone[which] ? 0 : 1;
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(wrong, std::vector<int>(kThreads));
}

} // namespace
