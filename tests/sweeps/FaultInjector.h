#pragma once

#include "FaultTable.h"

#include <array>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace Sweeps {

/// A function of the system on its way to the library, or to the runtimes that work for it.
struct HookedFunction
{
    std::string name; ///< "CreateFileW"; "C++ runtime: _write"; "C runtime: WriteFile"; "looked up: _waccess_s"
    std::vector<Fault> faults;
    std::vector<void**> slots{};
    void* original = nullptr;
    std::size_t calls = 0; ///< while armed
};

/// Stands between a freshly loaded library and all functions of the system that it imports or looks up by name, and
/// between the C and C++ runtimes and those that these call for its files. One at a time; not for several threads.
class FaultInjector
{
public:
    explicit FaultInjector(HMODULE library);
    ~FaultInjector();
    FaultInjector(const FaultInjector&) = delete;
    FaultInjector& operator=(const FaultInjector&) = delete;

    [[nodiscard]] const std::vector<HookedFunction>& Functions() const { return functions_; }

    /// What the library imports or looked up, and nobody has thought about.
    [[nodiscard]] const std::vector<std::string>& Unknown() const { return unknown_; }

    /// From now on calls are counted.
    void Arm();

    /// Likewise, and the nth call (from 1) of a function fails; with all later ones when it is to last.
    void Arm(const std::string& function, std::size_t n, const Fault& fault, bool lasts);

    /// Likewise, and the nth call of all together is not returned from: what is to happen instead is done before it.
    /// Functions whose failure leaves no trace in a file are not counted.
    void ArmAtAnyCall(std::size_t n, std::function<void()> instead, bool afterHalf);

    /// Calls pass through uncounted.
    void Disarm();

    /// Since Arm: calls of one function; whether the fault came about.
    [[nodiscard]] std::size_t Calls(const std::string& function) const;

    [[nodiscard]] bool Happened() const { return happened_; }

    /// Calls that ArmAtAnyCall counts, since Arm.
    [[nodiscard]] std::size_t CallsOfAll() const { return callsOfAll_; }

private:
    using Arguments = std::array<Word, 12>; // no function that is hooked takes more

    template <std::size_t I>
    static Word Thunk(Word a, Word b, Word c, Word d, Word e, Word f, Word g, Word h, Word i, Word j, Word k, Word l)
    {
        return current_->Dispatch(I, {a, b, c, d, e, f, g, h, i, j, k, l});
    }

    static void* ThunkOf(std::size_t index);

    void HookLibrary(HMODULE library);
    void HookRuntime(HMODULE runtime, const std::string& prefix, const std::vector<std::string>& functions);
    void ExpectLookUps();
    std::size_t Add(const std::string& name, const std::string& function);
    Word Dispatch(std::size_t index, const Arguments& arguments);
    Word Fail(const HookedFunction& function, Arguments arguments) const;
    void CountForAll(const HookedFunction& function, const Arguments& arguments);
    Word LookUp(const Arguments& arguments);

    static inline FaultInjector* current_ = nullptr;

    std::vector<HookedFunction> functions_;
    std::vector<std::string> unknown_;
    bool armed_ = false;
    bool happened_ = false;
    const HookedFunction* failing_ = nullptr;
    std::size_t failingCall_ = 0;
    bool lasts_ = false;
    Fault fault_{};
    std::size_t callsOfAll_ = 0;
    std::size_t insteadAt_ = 0;
    bool afterHalf_ = false;
    std::function<void()> instead_;
};

} // namespace Sweeps
