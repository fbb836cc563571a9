#include <KelInsInfra/foundation/KelInsEnv.h>
#include <KelInsInfra/foundation/KelInsString.h>
#include <cstdlib>

namespace KelInsEnv {
namespace {

/// Whether the C runtime takes a name or value of that length: for longer ones it would end the process.
bool IsTakenByRuntime(const std::wstring& text)
{
    constexpr std::size_t kMaxUnits = 32767; // of the system
    return text.size() < kMaxUnits;
}

} // namespace

std::string GetEnv(const std::string& name)
{
    const std::wstring wideName = KelInsString::Widen(name);
    if (name.empty() || !IsTakenByRuntime(wideName))
        return {};
    return KelInsString::Narrow(::_wgetenv(wideName.c_str()));
}

void PutEnv(const std::string& name, const std::string& value)
{
    const std::wstring wideName = KelInsString::Widen(name);
    const std::wstring wideValue = KelInsString::Widen(value);
    if (name.empty() || !IsTakenByRuntime(wideName) || !IsTakenByRuntime(wideValue))
        return;
    ::_wputenv_s(wideName.c_str(), wideValue.c_str()); // result: not reported
}

} // namespace KelInsEnv
