#include <KelInsInfra/foundation/internal/WindowsApi.h>
#include <KelInsInfra/registry/Key.h>
#include <utility>

namespace KelInsReg {

Key::Key() noexcept = default;

Key::Key(HKEY__* handle) noexcept : handle_(handle) {}

Key::Key(Key&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}

Key& Key::operator=(Key&& other) noexcept
{
    if (handle_ == other.handle_) // itself, or a second owner: closing would leave a dead handle
        return *this;
    Close();
    handle_ = std::exchange(other.handle_, nullptr);
    return *this;
}

Key::~Key()
{
    Close();
}

void Key::Close() noexcept
{
    if (handle_ != nullptr)
        ::RegCloseKey(std::exchange(handle_, nullptr));
}

HKEY__* Key::GetKey() const noexcept
{
    return handle_;
}

} // namespace KelInsReg
