#include "../Server.h"
#include "../ServerData.h"

#include "../../../../tests/support/TempDirectory.h"
#include <KelInsInfra/io/KelInsIO.h>
#include <KelInsInfra/registry/KelInsReg.h>
#include <gmock/gmock.h>

namespace {

using KelInsReg::RegistryView;
using KelInsReg::RootKey;
using Orchard::ServerData;
using testing::HasSubstr;
using testing::ThrowsMessage;

const std::string kKey = R"(Software\Orchard Server)";
constexpr RegistryView kView = RegistryView::Force64RegView;
const std::string kSites = "; mine\n[Sites]\nOther=81\n";

TEST(ServerDataTest, IsReadFromCustomActionData)
{
    const ServerData data = Orchard::ParseServerData("SERVERPORT=80|INSTALLDIR=C:\\x y\\|SITENAME=a=b|SITESFILE=|");
    EXPECT_EQ(data.port, "80");
    EXPECT_EQ(data.directory, "C:\\x y\\");
    EXPECT_EQ(data.site, "a=b");
    EXPECT_EQ(data.sitesFile, "");
    EXPECT_EQ(Orchard::ParseServerData("").directory, "");
}

TEST(ServerDataTest, UnknownNamesAreRefused)
{
    EXPECT_THAT([] { Orchard::ParseServerData("SERVERPORT=80|PORT"); },
                ThrowsMessage<std::runtime_error>("CustomActionData holds an unknown name: PORT"));
}

class Server : public testing::Test
{
protected:
    Server()
    {
        Write(data.directory + "server.ini", "[Listen]\nPort=0\n[Paths]\nSearch=x\n");
        Write(data.directory + "welcome.html", "@SITENAME@ @SERVERPORT@");
        Write(data.sitesFile, kSites);
    }

    ~Server() override
    {
        try {
            Orchard::ForgetBackup(data);
            Orchard::Unconfigure();
        } catch (const std::exception&) { // the test that comes next will tell
        }
    }

    static void Write(const std::string& file, const std::string& text)
    {
        KelInsIO::GetOutputFileStream(file, {}) << text;
    }

    static std::string Read(const std::string& file)
    {
        std::ifstream stream = KelInsIO::GetInputFileStream(file, {});
        return KelInsIO::InputStreamToString(stream);
    }

    /// The site that the registry names; empty where there is no key.
    static std::string RegisteredSite()
    {
        std::string site;
        try {
            KelInsReg::GetValue(RootKey::LocalMachine, kKey, "Site", site, kView);
        } catch (const std::runtime_error&) { // none
        }
        return site;
    }

    TempDirectory place;
    ServerData data{place.Path() + "\\", "8090", "Gr\xC3\xBCn", place / "sites.ini"};
};

TEST_F(Server, IsConfigured)
{
    Orchard::Configure(data);
    EXPECT_EQ(Read(data.directory + "server.ini"),
              "[Listen]\r\nPort=8090\r\n[Paths]\r\nSearch=x;" + data.directory + "plugins\r\n");
    EXPECT_EQ(Read(data.directory + "welcome.html"), "Gr\xC3\xBCn 8090");
    EXPECT_EQ(Read(data.sitesFile), "; mine\r\n[Sites]\r\nOther=81\r\nGr\xC3\xBCn=8090\r\n");
    EXPECT_EQ(RegisteredSite(), data.site);
    std::int32_t port = 0;
    KelInsReg::GetValue(RootKey::LocalMachine, kKey, "Port", port, kView);
    EXPECT_EQ(port, 8090);

    Orchard::ForgetBackup(data);
    EXPECT_FALSE(KelInsIO::Exists(data.sitesFile + ".before-orchard"));
    EXPECT_EQ(RegisteredSite(), data.site);
    Orchard::Unconfigure();
    EXPECT_EQ(RegisteredSite(), "");
}

TEST_F(Server, IsRestored)
{
    KelInsIO::SetReadOnly(data.sitesFile, true);
    Orchard::Configure(data);
    Orchard::Restore(data);
    EXPECT_EQ(Read(data.sitesFile), kSites);
    EXPECT_FALSE(KelInsIO::SetReadOnly(data.sitesFile, true)); // it was already
    EXPECT_FALSE(KelInsIO::Exists(data.sitesFile + ".before-orchard"));
    EXPECT_EQ(RegisteredSite(), "");
}

TEST_F(Server, IsRestoredToTheOlderVersion)
{
    Orchard::Configure(data);
    Orchard::ForgetBackup(data);
    ServerData newer = data;
    newer.site = "newer";
    Orchard::Configure(newer);
    EXPECT_EQ(RegisteredSite(), "newer");
    Orchard::Restore(newer);
    EXPECT_EQ(RegisteredSite(), data.site);
    EXPECT_THAT(Read(data.sitesFile), testing::Not(HasSubstr("newer")));
}

TEST_F(Server, IsRestoredWhereTheConfigurationStopped)
{
    KelInsIO::Delete(data.directory + "welcome.html");
    EXPECT_THROW(Orchard::Configure(data), std::runtime_error);
    EXPECT_NE(Read(data.sitesFile), kSites);
    Orchard::Restore(data);
    EXPECT_EQ(Read(data.sitesFile), kSites);
    EXPECT_EQ(RegisteredSite(), "");
}

TEST_F(Server, NothingIsRestoredWhereNothingWasDone)
{
    Orchard::Configure(data);
    Orchard::ForgetBackup(data);
    Orchard::Restore(data);
    EXPECT_EQ(RegisteredSite(), data.site);
    EXPECT_NE(Read(data.sitesFile), kSites);
}

TEST_F(Server, NeedsNoSitesFileButNoneThatIsMissing)
{
    const std::string missing = place / "missing.ini";
    data.sitesFile = "";
    Orchard::Configure(data);
    Orchard::Restore(data);
    EXPECT_EQ(RegisteredSite(), "");

    data.sitesFile = missing;
    EXPECT_THAT([&] { Orchard::Configure(data); },
                ThrowsMessage<std::runtime_error>("SITESFILE is " + missing + "; there is no such file."));
    EXPECT_FALSE(KelInsIO::Exists(missing));
}

TEST_F(Server, Ports)
{
    for (const char* port : {"1", "80", "65535"}) {
        Write(data.directory + "server.ini", std::string("[Listen]\nPort=") + port + '\n');
        EXPECT_NO_THROW(Orchard::Check(data)) << port;
    }
    for (const char* port : {"", "0", "-1", "65536", "99999999999", "x", "80x", " 80", "8 0"}) {
        Write(data.directory + "server.ini", std::string("[Listen]\nPort=") + port + '\n');
        EXPECT_THAT([&] { Orchard::Check(data); },
                    ThrowsMessage<std::runtime_error>(std::string("SERVERPORT is ") + port +
                                                      "; it must be a number from 1 to 65535."));
    }
}

} // namespace
