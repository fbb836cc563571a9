#pragma once

#include <string>

namespace Orchard {

/// What the package tells its custom actions, in the property CustomActionData: "NAME=value|NAME=value|...". A bar
/// stands in no name of a file.
struct ServerData
{
    std::string directory; // with '\' at its end
    std::string port;
    std::string site;
    std::string sitesFile; // empty where the user named none
};

/// @throws std::runtime_error  for a name that is not known.
ServerData ParseServerData(const std::string& customActionData);

} // namespace Orchard
