#pragma once

#include <KelInsInfra/foundation/internal/WindowsApi.h>
#include <cerrno>
#include <cstdint>
#include <type_traits>
#include <utility>

/// Owner of one system handle: Close is called once, on every path, and leaves the last error and errno as they were,
/// so that a failing call's code survives the clean-up that precedes its reading.
template <typename Handle, auto Close, auto Invalid = 0>
class UniqueHandle
{
public:
    UniqueHandle() = default;

    explicit UniqueHandle(Handle handle) : handle_(handle) {}

    UniqueHandle(UniqueHandle&& other) noexcept : handle_(std::exchange(other.handle_, InvalidValue())) {}

    UniqueHandle& operator=(UniqueHandle&& other) noexcept
    {
        std::swap(handle_, other.handle_);
        return *this;
    }

    UniqueHandle(const UniqueHandle&) = delete;
    UniqueHandle& operator=(const UniqueHandle&) = delete;

    ~UniqueHandle() { Reset(); }

    explicit operator bool() const { return handle_ != InvalidValue(); }

    [[nodiscard]] Handle Get() const { return handle_; }

    void Reset()
    {
        if (handle_ == InvalidValue())
            return;
        const DWORD lastError = ::GetLastError();
        const int errnoBefore = errno;
        Close(std::exchange(handle_, InvalidValue()));
        errno = errnoBefore;
        ::SetLastError(lastError);
    }

private:
    static Handle InvalidValue()
    {
        if constexpr (std::is_pointer_v<Handle>)
            // NOLINTNEXTLINE(performance-no-int-to-ptr): the system defines this handle value so
            return reinterpret_cast<Handle>(static_cast<std::intptr_t>(Invalid));
        else
            return Invalid;
    }

    Handle handle_ = InvalidValue();
};

using UniqueFileHandle = UniqueHandle<HANDLE, ::CloseHandle, -1>;
using UniqueFindHandle = UniqueHandle<HANDLE, ::FindClose, -1>;
using UniqueLocalMemory = UniqueHandle<HLOCAL, ::LocalFree>;
