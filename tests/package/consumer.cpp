// Uses something of each folder, so that each must link, and prints what the check compares.

#include <KelInsInfra/config/KelInsJavaProperties.h>
#include <KelInsInfra/foundation/KelInsEnv.h>
#include <KelInsInfra/foundation/KelInsString.h>
#include <KelInsInfra/foundation/KelInsSys.h>
#include <KelInsInfra/hash/KelInsUUID.h>
#include <KelInsInfra/hash/SHA256.h>
#include <KelInsInfra/io/KelInsIO.h>
#include <KelInsInfra/io/Path.h>
#include <KelInsInfra/json/Driver.h>
#include <KelInsInfra/registry/KelInsMSI.h>
#include <KelInsInfra/registry/KelInsReg.h>
#include <KelInsInfra/system/KelInsSys.h>
#include <KelInsInfra/xml/Outputter.h>
#include <iostream>

int main()
{
    KelInsEnv::PutEnv("KELINS_CONSUMER", "C:/Orchard//bin/");
    const KelInsIO::Path path(KelInsEnv::GetEnv("KELINS_CONSUMER"));
    std::cout << (path + "pear.exe").GetPath() << ' ' << KelInsString::Narrow(KelInsString::Widen("ok")) << ' '
              << KelInsJavaProperties::saveConvert("a=b", false) << ' ' << KelInsIO::Path::Sep
              << KelInsSys::GetLastErrorMessage(0) << '\n';

    JSON::Driver json;
    json.Parse(R"({"a": [1, true]})");
    std::cout << KelInsHash::SHA256::GetHash("abc").substr(0, 8) << ' ' << KelInsUUID::GetUUID(true).size() << ' '
              << json.GetJSON() << ' ' << XML::Outputter().ToString(*XML::Element::Create("a"), false) << '\n';

    try { // an exception of the library, caught by its base on the other side of the border
        KelInsReg::GetRootKeyHandleFromString("HKXX");
    } catch (const std::runtime_error& error) {
        std::cout << error.what();
    }
    std::cout << KelInsMSI::GetVersion("{0F7C9D2E-5B1A-4E63-9C88-2D4B6A7E1F30}").size() << ' '
              << KelInsIO::Exists(KelInsSys::GetExecutablePath()) << '\n';
    return 0;
}
