#include <KelInsInfra/foundation/KelInsEnv.h>
#include <KelInsInfra/foundation/KelInsString.h>
#include <cstdlib>

namespace KelInsEnv {

std::string GetEnv(const std::string& name)
{
    if (name.empty())
        return {};
    return KelInsString::Narrow(::_wgetenv(KelInsString::Widen(name).c_str()));
}

void PutEnv(const std::string& name, const std::string& value)
{
    if (name.empty())
        return;
    ::_wputenv_s(KelInsString::Widen(name).c_str(), KelInsString::Widen(value).c_str()); // result: not reported
}

} // namespace KelInsEnv
