#include "ServerData.h"

#include <KelInsInfra/foundation/KelInsString.h>
#include <stdexcept>

namespace Orchard {

ServerData ParseServerData(const std::string& customActionData)
{
    ServerData data;
    for (const std::string& entry : KelInsString::Split(customActionData, '|', false)) {
        const std::size_t equals = entry.find('=');
        const std::string name = entry.substr(0, equals);
        const std::string value = equals == std::string::npos ? "" : entry.substr(equals + 1);
        if (name == "INSTALLDIR")
            data.directory = value;
        else if (name == "SERVERPORT")
            data.port = value;
        else if (name == "SITENAME")
            data.site = value;
        else if (name == "SITESFILE")
            data.sitesFile = value;
        else
            throw std::runtime_error("CustomActionData holds an unknown name: " + name);
    }
    return data;
}

} // namespace Orchard
