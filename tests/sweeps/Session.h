#pragma once

#include "FaultInjector.h"
#include "OperationsLibrary.h"

#include <memory>

namespace Sweeps {

/// The product, freshly loaded, with a fault injector around it. One at a time.
class Session
{
public:
    Session();
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    [[nodiscard]] FaultInjector& Injector() { return *injector_; }

    /// Valid while this lives.
    [[nodiscard]] const Operation& Find(const std::string& name) const;

    [[nodiscard]] const std::vector<Operation>& All() const { return *operations_; }

    void Run(const Operation& operation, const Place& place, Outcome& outcome) const;

private:
    HMODULE library_;
    const std::vector<Operation>* operations_;
    decltype(&::KelInsRun) run_;
    std::unique_ptr<FaultInjector> injector_;
};

} // namespace Sweeps
