// installed_versions_probe UPGRADE_CODE: prints each entry of KelInsMSI::GetVersion as "version|message|detail|code",
// then whether a version was found.

#include <KelInsInfra/registry/KelInsMSI.h>
#include <iostream>

int main(int argumentCount, char** arguments)
{
    const auto versions = KelInsMSI::GetVersion(argumentCount > 1 ? arguments[1] : "");
    for (const KelInsMSI::Version& v : versions)
        std::cout << v.version << '|' << v.message << '|' << v.detail << '|' << v.errorCode << '\n';
    std::cout << (KelInsMSI::HasFoundVersion(versions) ? "found" : "not found") << '\n';
}
