#include "../InstalledVersions.h"
#include "../JsonFile.h"
#include "../Manifest.h"
#include "../Package.h"
#include "../Receipt.h"

#include "SamplePayload.h"
#include <KelInsInfra/foundation/KelInsEnv.h>
#include <KelInsInfra/foundation/KelInsSys.h>
#include <KelInsInfra/io/KelInsIO.h>
#include <gmock/gmock.h>

namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::FieldsAre;
using testing::StartsWith;
using testing::ThrowsMessage;

const std::string kWhole = R"({"product": "P", "publisher": "Q", "version": "1.2.3", "upgradeCode": "{U}",)"
                           R"("package": {"file": "x/p.msi", "productCode": "{C}", "options": ["B", "A"]},)"
                           R"("files": {"z.txt": "1", "x/p.msi": "2", "a/b.txt": "3"}})";

class ManifestFile : public testing::Test
{
protected:
    void Write(const std::string& text) const { WriteFile(directory / "manifest.json", text); }

    TempDirectory directory;
};

TEST_F(ManifestFile, IsReadInItsOrder)
{
    Write(kWhole);
    const Setup::Manifest manifest = Setup::ReadManifest(directory.Path());
    EXPECT_EQ(manifest.product, "P");
    EXPECT_EQ(manifest.publisher, "Q");
    EXPECT_EQ(manifest.version, "1.2.3");
    EXPECT_EQ(manifest.upgradeCode, "{U}");
    EXPECT_EQ(manifest.package, R"(x\p.msi)");
    EXPECT_EQ(manifest.productCode, "{C}");
    EXPECT_THAT(manifest.options, ElementsAre("B", "A"));
    EXPECT_THAT(manifest.files,
                ElementsAre(FieldsAre("z.txt", "1"), FieldsAre(R"(x\p.msi)", "2"), FieldsAre(R"(a\b.txt)", "3")));
}

TEST_F(ManifestFile, MayComeFromAWindowsEditor)
{
    std::string text = kWhole;
    text.insert(1, "\r\n");
    Write(text);
    testing::internal::CaptureStdout();
    EXPECT_EQ(Setup::ReadManifest(directory.Path()).product, "P");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

struct BrokenCase
{
    const char* label;
    const char* from; // what of the whole manifest
    const char* to;
    const char* reason;

    friend void PrintTo(const BrokenCase& c, std::ostream* out) { *out << c.from << " -> " << c.to; }
};

class BrokenManifest : public ManifestFile, public testing::WithParamInterface<BrokenCase>
{};

TEST_P(BrokenManifest, IsRefusedAndNothingIsWrittenToStandardOutput)
{
    std::string text = kWhole;
    text.replace(text.find(GetParam().from), std::string(GetParam().from).size(), GetParam().to);
    Write(text);
    testing::internal::CaptureStdout();
    EXPECT_THAT([&] { Setup::ReadManifest(directory.Path()); },
                ThrowsMessage<std::runtime_error>(StartsWith(GetParam().reason)));
    std::cout << std::flush;
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

constexpr BrokenCase kBroken[] = {
    {"NoProduct", R"("product": "P", )", "", "JSON::Driver::GetAttribute - Empty field: product"},
    {"ProductIsANumber", R"("P")", "7", "JSON::Driver::GetAttribute - product is not a String. Actual type: Number"},
    {"ProductWithBackslash", R"("P")", R"("P\\Q")", R"("P\Q" is not the name of a product.)"},
    {"NoPackage", R"("package")", R"("other")", "JSON::Driver::GetAttribute - Empty field: package"},
    {"OptionsAreAnObject", R"(["B", "A"])", "{}", "JSON::Value::GetArrayValues - Value is not an Array"},
    {"FilesAreAnArray", R"({"z.txt": "1", "x/p.msi": "2", "a/b.txt": "3"})", "[]",
     "JSON::Value::GetObjectValues - Value is not an Object"},
    {"PackageIsNoFile", R"("x/p.msi": "2", )", "", R"(The package x\p.msi is not among the files.)"},
};

INSTANTIATE_TEST_SUITE_P(Manifests, BrokenManifest, testing::ValuesIn(kBroken),
                         [](const auto& row) { return std::string(row.param.label); });

TEST_F(ManifestFile, WhatIsNotJsonIsNamed)
{
    const std::string file = directory / "manifest.json";
    for (const std::string& text :
         {std::string(), kWhole.substr(0, 100), kWhole + "}", "\xEF\xBB\xBF" + kWhole, "# x\n" + kWhole}) {
        Write(text);
        testing::internal::CaptureStdout();
        EXPECT_THAT([&] { Setup::ReadManifest(directory.Path()); },
                    ThrowsMessage<std::runtime_error>("The file " + file + " is not JSON: it was damaged or cut off."))
            << text;
        std::cout << std::flush;
        EXPECT_EQ(testing::internal::GetCapturedStdout(), "") << text;
    }
}

TEST_F(ManifestFile, Missing)
{
    EXPECT_THAT([&] { Setup::ReadManifest(directory.Path()); },
                ThrowsMessage<std::runtime_error>("There is no file " + (directory / "manifest.json") +
                                                  ", or it cannot be read."));
}

TEST(ReceiptTest, GivesItsOptionsBack)
{
    const TempDirectory directory;
    Setup::Manifest manifest;
    manifest.product = "Gr\xC3\xBCn \"& Co\"";
    const Setup::Properties options = {{"B", R"(C:\x "y")"}, {"A", ""}, {"C", "="}};
    Setup::WriteReceipt(directory.Path(), manifest, options);
    const auto receipt = Setup::ReadReceipt(directory.Path());
    ASSERT_TRUE(receipt);
    EXPECT_EQ(receipt->product, manifest.product);
    EXPECT_EQ(receipt->options, options);
}

TEST(ReceiptTest, MissingAndBroken)
{
    const TempDirectory directory;
    EXPECT_FALSE(Setup::ReadReceipt(directory.Path()));
    WriteFile(directory / "state.json", "{");
    EXPECT_THROW(Setup::ReadReceipt(directory.Path()), std::runtime_error);
}

TEST(VersionsTest, AreComparedByTheirFirstThreeNumbers)
{
    const std::vector<std::string> rising = {"", "0.1", "0.9.9", "1", "1.0.1", "1.2", "1.10.0", "2.0.0", "10.0"};
    for (std::size_t i = 0; i < rising.size(); ++i)
        for (std::size_t j = 0; j < rising.size(); ++j)
            EXPECT_EQ(Setup::CompareVersions(rising[i], rising[j]) < 0, i < j) << rising[i] << " and " << rising[j];
    EXPECT_EQ(Setup::CompareVersions("1.2.3.4", "1.2.3.5"), 0);
    EXPECT_EQ(Setup::CompareVersions("1.2", "1.2.0"), 0);
}

TEST(PackageTest, CommandLine)
{
    EXPECT_EQ(Setup::InstallCommand(R"(C:\a b\p.msi)", {{"A", R"(x "y")"}, {"B", ""}}, R"(C:\log.txt)"),
              '"' + KelInsEnv::GetEnv("SystemRoot") + R"(\System32\msiexec.exe" /i "C:\a b\p.msi" /qn /norestart )" +
                  R"(/L*v "C:\log.txt" A="x ""y""" B="")");
}

TEST(PackageTest, ExitCodesComeWhole)
{
    const TempDirectory directory;
    Setup::Log log(directory / "setup.log");
    const std::string package = directory / "package.msi";
    WriteFile(package, "no package");
    EXPECT_THAT([&] { Setup::InstallPackage(package, {}, log); },
                ThrowsMessage<std::runtime_error>(AllOf( // Windows says 1620, Wine 1627
                    testing::ContainsRegex("failed with 16\\d\\d: "),
                    StartsWith("The installation of the package " + package + " failed with "),
                    EndsWith("\nLook for the reason in " + log.GetFile() + ".msi.txt"))));
}

TEST(PackageTest, WhatIsNotInstalledNeedsNoRemoval)
{
    const TempDirectory directory;
    Setup::Log log(directory / "setup.log");
    EXPECT_NO_THROW(Setup::RemovePackage("{A0000009-4B1D-4E0B-9C3C-1F2E3D4C5B60}", log));
}

TEST(LogTest, AppendsWithTheTimeBeforeEachText)
{
    const TempDirectory directory;
    const std::string file = directory / "setup.log";
    Setup::Log(file).Write("first\nsecond line");
    Setup::Log(file).Write("gr\xC3\xBCn");
    EXPECT_THAT(ReadFile(file),
                testing::MatchesRegex("....-..-.. ..:..:..Z  first\r\n                      second line\r\n"
                                      "....-..-.. ..:..:..Z  gr\xC3\xBCn\r\n"));
    EXPECT_THAT(
        [&] { Setup::Log(directory.Path()); },
        ThrowsMessage<std::runtime_error>("The log " + directory.Path() +
                                          " cannot be written.\nClose the program that uses it, or name another: "
                                          "--log <file>"));
}

} // namespace
