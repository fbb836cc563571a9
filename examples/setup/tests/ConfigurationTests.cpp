#include "../Configuration.h"

#include "../../../tests/support/TempDirectory.h"
#include <KelInsInfra/io/KelInsIO.h>
#include <gmock/gmock.h>

namespace {

using testing::HasSubstr;
using testing::ThrowsMessage;

class Configuration : public testing::Test
{
protected:
    void Write(const std::string& name, const std::string& text) const
    {
        KelInsIO::CreateDir(KelInsIO::Path(directory / name).GetParent().GetPath());
        KelInsIO::GetOutputFileStream(directory / name, {}) << text;
    }

    [[nodiscard]] std::string Read(const std::string& name) const
    {
        std::ifstream stream = KelInsIO::GetInputFileStream(directory / name, {});
        return KelInsIO::InputStreamToString(stream);
    }

    [[nodiscard]] std::string Configured(const std::string& name, const std::string& text) const
    {
        Write(name, text);
        Setup::Configure(directory.Path(), name);
        return Read(name);
    }

    TempDirectory directory;
    const std::string target = directory.Path();
    const std::string slashed = KelInsIO::Path::Slashify(target);
};

TEST_F(Configuration, Settings)
{
    EXPECT_EQ(
        Configured("settings.ini", "; ours\n[Paths]\n; searched\nSearch=C:\\a\nDocuments=C:\\b\n\n[Other]\nSearch=1\n"),
        "; ours\r\n[Paths]\r\n; searched\r\nSearch=C:\\a;" + target + "\\bin\r\nDocuments=" + target +
            "\\docs;C:\\b\r\n\r\n[Other]\r\nSearch=1\r\n[Installation]\r\nDirectory=" + target + "\r\nVersion=1.0\r\n");
}

TEST_F(Configuration, Environment)
{
    EXPECT_EQ(Configured("start.env", "# start\nAPP_HOME=x\nexport APP_HOME\nAPP_MODULES=core\nexport APP_MODULES\n"
                                      "APP_LANGUAGES=en\nexport APP_LANGUAGES\n"),
              "# start\r\nAPP_HOME='" + slashed +
                  "'\r\nexport APP_HOME\r\nAPP_MODULES=core,documents\r\nexport APP_MODULES\r\n"
                  "APP_LANGUAGES=de,en\r\nexport APP_LANGUAGES\r\nAPP_VERSION=1.0\r\nexport APP_VERSION\r\n");
}

TEST_F(Configuration, MalformedEnvironmentStaysAsItIs)
{
    const std::string malformed = "APP_HOME=x\nexport APP_HOUSE\n";
    Write("start.env", malformed);
    EXPECT_THAT([&] { Setup::Configure(directory.Path(), "start.env"); },
                ThrowsMessage<std::runtime_error>(
                    (directory / "start.env") + ": bad format: missing \"export APP_HOME\" after line\nAPP_HOME=x\n" +
                    "The file start.env could not be adapted to its place. Correct it in the payload."));
    EXPECT_EQ(Read("start.env"), malformed);
}

TEST_F(Configuration, Properties)
{
    EXPECT_EQ(
        Configured("app.properties", "# ours\ninstall.dir=\n"), "# ours\r\ninstall.dir=" + [&] {
            std::string escaped;
            for (const char c : target)
                escaped += std::string(c == '\\' || c == ':' ? "\\" : "") + c;
            return escaped;
        }() + "\r\ninstall\\ note=Written by setup\\: do not edit\\!\r\n");
}

TEST_F(Configuration, Templates)
{
    EXPECT_EQ(Configured("templates\\a\\start.cmd.in", "cd @prefix@/@prefix@\nrem @VERSION@ @OTHER@\n"),
              "cd " + slashed + "/" + slashed + "\r\nrem 1.0 @OTHER@");
}

TEST_F(Configuration, ServerXml)
{
    EXPECT_EQ(Configured("server.xml", "<Server b='2' a='1'><!--x--><Service><Sample/><Connector port='1' home='?'/>"
                                       "<Note>5 &lt; 6</Note><Sample>y</Sample></Service></Server>"),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<Server a=\"1\" b=\"2\">\n  <!--x-->\n  <Service>\n"
              "    <Connector home=\"" +
                  target + "\" port=\"1\"/>\n    <Note>5 &lt; 6</Note>\n    <Documents path=\"" + target +
                  "\\docs\"/>\n  </Service>\n</Server>\n");
}

TEST_F(Configuration, BrokenServerXmlStaysAsItIs)
{
    const std::pair<const char*, std::string> cases[] = {
        {"<Server>\n<Service>\n</Server>", "Unexpected closing tag: Server instead of Service (line 3)"},
        {"no element", "The file " + (directory / "server.xml") + " holds no element."},
        {"<Server/>", "There is no element Service in the element Server."},
        {"<Server><Service/></Server>", "There is no element Connector in the element Service."},
    };
    for (const auto& [text, reason] : cases) {
        Write("server.xml", text);
        EXPECT_THAT(
            [&] { Setup::Configure(directory.Path(), "server.xml"); },
            ThrowsMessage<std::runtime_error>(
                reason + "\nThe file server.xml could not be adapted to its place. Correct it in the payload."));
        EXPECT_EQ(Read("server.xml"), text);
    }
}

TEST_F(Configuration, WhichFiles)
{
    for (const std::string& required : Setup::RequiredFiles())
        EXPECT_TRUE(Setup::IsConfigured(required)) << required;
    EXPECT_TRUE(Setup::IsConfigured("templates\\x"));
    EXPECT_FALSE(Setup::IsConfigured("docs\\settings.ini"));
    EXPECT_FALSE(Setup::IsConfigured("templates.txt"));
}

} // namespace
