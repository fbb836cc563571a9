#pragma once

#include "Operation.h"

#include <memory>

namespace Sweeps {

/// Where operations work, and which there are: all of them on Windows, elsewhere those that are portable.
class Stage
{
public:
    Stage();
    ~Stage();
    Stage(const Stage&) = delete;
    Stage& operator=(const Stage&) = delete;

    [[nodiscard]] const Place& Get() const;

    /// Empties the place and puts into it what an operation works on.
    void Prepare(const Operation& operation) const;

    static std::vector<Operation> Operations();

private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

} // namespace Sweeps
