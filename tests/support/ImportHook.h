#pragma once

#include <KelInsInfra/foundation/internal/WindowsApi.h>
#include <array>
#include <cerrno>
#include <cstdint>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

/// A slot of a module's import directory.
struct ImportedFunction
{
    std::string module; ///< file name, as the directory spells it
    std::string name;
    void** slot;
};

/// All that a module imports by name.
std::vector<ImportedFunction> ImportedFunctions(HMODULE module);

/// Makes a slot, or a variable of the compiler's stubs, hold another address.
void RedirectSlot(void** slot, void* target);

/// The places through which loaded modules call one function, redirected while this lives.
///
/// Mostly these are the slots of the import directory. Functions such as _waccess_s, which the compiler's own library
/// looks up by name on first use and remembers in a variable, are found by that variable instead: the module must have
/// called them once before.
class ImportSlots
{
public:
    /// @param function  exported name, for example "DeleteFileW".
    /// @param alsoIn    further modules by file name; the module that holds the library comes first in any case:
    ///                  KelInsInfra.dll where it is loaded, else the program itself.
    /// @throws std::runtime_error  when one of the modules does not call the function; where further ones are named,
    ///                             the library need not call it itself.
    ImportSlots(const std::string& function, const std::vector<std::wstring>& alsoIn, void* target);
    ~ImportSlots();
    ImportSlots(const ImportSlots&) = delete;
    ImportSlots& operator=(const ImportSlots&) = delete;

    [[nodiscard]] void* Original() const { return original_; }

private:
    std::vector<void**> slots_;
    void* original_ = nullptr;
};

/// What a failing function leaves beside its result.
struct FailureCode
{
    std::optional<DWORD> lastError;
    std::optional<int> errnoValue;
};

inline FailureCode LastError(DWORD code)
{
    return {code, std::nullopt};
}

inline FailureCode Errno(int value)
{
    return {std::nullopt, value};
}

/// Nothing: for functions whose result is the code.
inline FailureCode NoCode()
{
    return {};
}

template <typename Signature>
class ImportHook;

/// Stands between the library and one function of the system: counts the calls, records their arguments, passes them
/// on, and lets those fail that it is told to.
///
/// @code
/// ImportHook<BOOL(LPCWSTR)> hook("DeleteFileW");
/// hook.FailCall(2, FALSE, LastError(ERROR_ACCESS_DENIED));
/// @endcode
///
/// Hooks of different functions may live at once, up to eight of one signature. Not for calls from several threads.
template <typename R, typename... A>
class ImportHook<R(A...)>
{
    template <typename T>
    static constexpr bool kIsText = std::is_same_v<T, const wchar_t*> || std::is_same_v<T, const char*>;

    template <typename T>
    using Text = std::basic_string<std::remove_cv_t<std::remove_pointer_t<T>>>;

    template <typename T>
    struct RecordedAs
    {
        using type = T;
    };

    template <typename T>
    requires kIsText<T>

    struct RecordedAs<T>
    {
        using type = Text<T>;
    };

public:
    using Function = std::function<R(A...)>;
    using Call = std::tuple<typename RecordedAs<A>::type...>; ///< texts are copied

    /// Passes every call on until told otherwise.
    explicit ImportHook(const std::string& function, const std::vector<std::wstring>& alsoIn = {})
        : index_(TakeFreeIndex(this)),
          slots_(function, alsoIn, reinterpret_cast<void*>(kThunks[index_])),
          replacement_([this](A... arguments) { return CallOriginal(arguments...); })
    {}

    ImportHook(const std::string& function, Function replacement, const std::vector<std::wstring>& alsoIn = {})
        : ImportHook(function, alsoIn)
    {
        replacement_ = std::move(replacement);
    }

    ~ImportHook() = default;
    ImportHook(const ImportHook&) = delete;
    ImportHook& operator=(const ImportHook&) = delete;

    /// Lets the nth call from the hook's beginning fail (from 1); the others go through.
    void FailCall(std::size_t n, R result, FailureCode code) { failures_.push_back({n, n, result, code}); }

    /// Lets the nth call and all after it fail.
    void FailFrom(std::size_t n, R result, FailureCode code) { failures_.push_back({n, SIZE_MAX, result, code}); }

    R CallOriginal(A... arguments) const { return reinterpret_cast<R (*)(A...)>(slots_.Original())(arguments...); }

    [[nodiscard]] const std::vector<Call>& Calls() const { return calls_; }

private:
    static constexpr std::size_t kMaxAtOnce = 8;

    struct Failure
    {
        std::size_t first;
        std::size_t last;
        R result;
        FailureCode code;
    };

    /// A place in the table of hooks, given back last: after the slots call the system again.
    class Index
    {
    public:
        explicit Index(std::size_t index) : index_(index) {}

        ~Index() { active_[index_] = nullptr; }

        Index(const Index&) = delete;
        Index& operator=(const Index&) = delete;

        operator std::size_t() const { return index_; }

    private:
        std::size_t index_;
    };

    static Index TakeFreeIndex(ImportHook* hook)
    {
        for (std::size_t i = 0; i < kMaxAtOnce; ++i)
            if (active_[i] == nullptr) {
                active_[i] = hook;
                return Index(i);
            }
        throw std::runtime_error("ImportHook: too many hooks of one signature");
    }

    template <std::size_t I>
    static R Thunk(A... arguments)
    {
        return active_[I]->Dispatch(arguments...);
    }

    template <std::size_t... I>
    static constexpr auto MakeThunks(std::index_sequence<I...>)
    {
        return std::array<R (*)(A...), sizeof...(I)>{&Thunk<I>...};
    }

    R Dispatch(A... arguments)
    {
        const DWORD lastError = ::GetLastError();
        calls_.emplace_back(Record(arguments)...);
        ::SetLastError(lastError);
        for (const Failure& failure : failures_)
            if (failure.first <= calls_.size() && calls_.size() <= failure.last)
                return Fail(failure);
        return replacement_(arguments...);
    }

    static R Fail(const Failure& failure)
    {
        if (failure.code.errnoValue)
            errno = *failure.code.errnoValue;
        if (failure.code.lastError)
            ::SetLastError(*failure.code.lastError);
        return failure.result;
    }

    template <typename T>
    static typename RecordedAs<T>::type Record(T argument)
    {
        if constexpr (kIsText<T>) {
            const bool isText = reinterpret_cast<std::uintptr_t>(argument) > 0xFFFF; // lower ones are ordinals, or null
            return isText ? Text<T>(argument) : Text<T>();
        } else {
            return argument;
        }
    }

    static inline std::array<ImportHook*, kMaxAtOnce> active_{};
    static constexpr auto kThunks = MakeThunks(std::make_index_sequence<kMaxAtOnce>());

    std::vector<Failure> failures_;
    std::vector<Call> calls_;
    Index index_;
    ImportSlots slots_;
    Function replacement_;
};
