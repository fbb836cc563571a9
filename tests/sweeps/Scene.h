#pragma once

#include "Operation.h"
#include "Traces.h"

#include "tests/support/Files.h"
#include "tests/support/RegistryRoot.h"
#include "tests/support/TempDirectory.h"

namespace Sweeps {

/// A directory and a key that are empty before each run.
class Scene
{
public:
    Scene() : place_{directory_ / "\xC3\xA9", key_.Path()} { Empty(); }

    [[nodiscard]] const Place& Get() const { return place_; }

    void Empty() const
    {
        RemoveTree(place_.directory);
        MakeDirectories(place_.directory);
        ::RegDeleteTreeW(key_.Handle(), nullptr);
    }

    [[nodiscard]] Traces Look() const { return TracesOf(place_.directory, place_.key); }

private:
    TempDirectory directory_;
    RegistryRoot key_;
    Place place_;
};

/// Empties the scene and puts into it what an operation works on.
inline void Prepare(const Scene& scene, const Operation& operation)
{
    scene.Empty();
    if (operation.prepare)
        operation.prepare(scene.Get());
}

} // namespace Sweeps
