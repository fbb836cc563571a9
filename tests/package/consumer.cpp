// Uses something of each installed header, and prints one line that the check compares.

#include <KelInsInfra/config/KelInsJavaProperties.h>
#include <KelInsInfra/foundation/KelInsEnv.h>
#include <KelInsInfra/foundation/KelInsString.h>
#include <KelInsInfra/foundation/KelInsSys.h>
#include <KelInsInfra/io/Path.h>
#include <iostream>

int main()
{
    KelInsEnv::PutEnv("KELINS_CONSUMER", "C:/Orchard//bin/");
    const KelInsIO::Path path(KelInsEnv::GetEnv("KELINS_CONSUMER"));
    std::cout << (path + "pear.exe").GetPath() << ' ' << KelInsString::Narrow(KelInsString::Widen("ok")) << ' '
              << KelInsJavaProperties::saveConvert("a=b", false) << ' ' << KelInsIO::Path::Sep
              << KelInsSys::GetLastErrorMessage(0) << '\n';
    return 0;
}
