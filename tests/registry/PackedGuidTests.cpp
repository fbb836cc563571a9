#include <KelInsInfra/registry/KelInsMSI.h>
#include <algorithm>
#include <cctype>
#include <gtest/gtest.h>
#include <random>

namespace {

struct PackedCase
{
    const char* label;
    const char* uuid;
    const char* key;

    friend void PrintTo(const PackedCase& c, std::ostream* out) { *out << c.uuid; }
};

template <typename Case>
std::string LabelOf(const testing::TestParamInfo<Case>& info)
{
    return info.param.label;
}

/// Braced, with the dashes in their places: both directions hold.
constexpr PackedCase kPairs[] = {
    {"Example", "{12345678-90AB-CDEF-1234-567890ABCDEF}", "87654321BA09FEDC2143658709BADCFE"},
    {"LowerCaseStays", "{12345678-90ab-cdef-1234-567890abcdef}", "87654321ba09fedc2143658709badcfe"},
    {"MixedCaseStays", "{aBcDeFaB-cDeF-AbCd-EfAb-CdEfAbCdEfAb}", "BaFeDcBaFeDcdCbAfEbAdCfEbAdCfEbA"},
    {"EveryPlace", "{01234567-89ab-cdef-ghij-klmnopqrstuv}", "76543210ba98fedchgjilknmporqtsvu"},
    {"NotHexadecimal", "{zyxwvuts-rqpo-nmlk-jihg-fedcba!?.,;:}", "stuvwxyzopqrklmnijghefcdab?!,.:;"},
    {"Zeros", "{00000000-0000-0000-0000-000000000000}", "00000000000000000000000000000000"},
};

class PackedGuid : public testing::TestWithParam<PackedCase>
{};

TEST_P(PackedGuid, PacksAndUnpacks)
{
    EXPECT_EQ(KelInsMSI::UUIDtoRegistryKey(GetParam().uuid), GetParam().key);
    EXPECT_EQ(KelInsMSI::RegistryKeyToUUID(GetParam().key), GetParam().uuid);
}

INSTANTIATE_TEST_SUITE_P(Pairs, PackedGuid, testing::ValuesIn(kPairs), LabelOf<PackedCase>);

/// Not in their usual form: packing only.
constexpr PackedCase kOddForms[] = {
    {"Parentheses", "(12345678-90AB-CDEF-1234-567890ABCDEF)", "87654321BA09FEDC2143658709BADCFE"},
    {"AnyTwoCharacters", "x12345678-90AB-CDEF-1234-567890ABCDEFy", "87654321BA09FEDC2143658709BADCFE"},
    {"ClosingBraceFirst", "}12345678-90AB-CDEF-1234-567890ABCDEF{", "87654321BA09FEDC2143658709BADCFE"},
    {"NoDashes", "{1234567890ABCDEF1234567890ABCDEF}", "87654321BA09FEDC2143658709BADCFE"},
    {"MisplacedDashes", "{1-2345678-90ABCDEF12-34567890ABCDE-F}", "87654321BA09FEDC2143658709BADCFE"},
    {"DashesOutside", "---{12345678-90AB-CDEF-1234-567890ABCDEF}-", "87654321BA09FEDC2143658709BADCFE"},
    {"ManyDashes", "{--12345678--90AB--CDEF--1234--567890ABCDEF--}", "87654321BA09FEDC2143658709BADCFE"},
    {"Empty", "", ""},
    {"DashesAlone", "----", ""},
    {"BracesAlone", "{}", ""},
    {"WithoutBraces", "12345678-90AB-CDEF-1234-567890ABCDEF", ""},
    {"OneBrace", "{12345678-90AB-CDEF-1234-567890ABCDEF", ""},
    {"OneDigitLess", "{12345678-90AB-CDEF-1234-567890ABCDE}", ""},
    {"OneDigitMore", "{12345678-90AB-CDEF-1234-567890ABCDEF0}", ""},
    {"BytesCountNotLetters",
     "{\xC3\xA4"
     "2345678-90AB-CDEF-1234-567890ABCDEF}",
     ""},
};

class UUIDtoRegistryKey : public testing::TestWithParam<PackedCase>
{};

TEST_P(UUIDtoRegistryKey, OddForm)
{
    EXPECT_EQ(KelInsMSI::UUIDtoRegistryKey(GetParam().uuid), GetParam().key);
}

INSTANTIATE_TEST_SUITE_P(Forms, UUIDtoRegistryKey, testing::ValuesIn(kOddForms), LabelOf<PackedCase>);

TEST(UUIDtoRegistryKeyLengths, EveryWrongLengthIsEmpty)
{
    for (std::size_t length = 0; length <= 100; ++length) {
        const std::string text(length, '7');
        const std::string expected = length == 34 ? std::string(32, '7') : "";
        EXPECT_EQ(KelInsMSI::UUIDtoRegistryKey(text), expected) << length;
        EXPECT_EQ(KelInsMSI::UUIDtoRegistryKey("-" + text + "-"), expected) << length; // dashes do not count
    }
    EXPECT_EQ(KelInsMSI::UUIDtoRegistryKey(std::string(1 << 20, '7')), "");
}

TEST(RegistryKeyToUUIDLengths, EveryWrongLengthIsAPairOfBraces)
{
    for (std::size_t length = 0; length <= 100; ++length) {
        const std::string expected = length == 32 ? "{77777777-7777-7777-7777-777777777777}" : "{}";
        EXPECT_EQ(KelInsMSI::RegistryKeyToUUID(std::string(length, '7')), expected) << length;
    }
    EXPECT_EQ(KelInsMSI::RegistryKeyToUUID(std::string(1 << 20, '7')), "{}");
}

TEST(RegistryKeyToUUIDText, DashesAndNulsAreTransposedLikeDigits)
{
    EXPECT_EQ(KelInsMSI::RegistryKeyToUUID("-1234567-1-1-2-3-4-5-6-7-8-9-0-a"),
              "{7654321--1-1--3-2--4-5--6-7-8-9-0-a-}");
    std::string key(32, 'x');
    key[0] = '\0';
    std::string uuid = "{xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx}";
    uuid[8] = '\0';
    EXPECT_EQ(KelInsMSI::RegistryKeyToUUID(key), uuid);
    EXPECT_EQ(KelInsMSI::UUIDtoRegistryKey(uuid), key);
}

TEST(PackedGuidTransposition, EachIsTheOthersInverse)
{
    std::mt19937 random(1); // the same texts in every run
    for (int round = 0; round < 1000; ++round) {
        std::string key(32, '\0');
        std::generate(key.begin(), key.end(), [&random] { return "0123456789ABCDEFabcdef"[random() % 22]; });
        const std::string uuid = KelInsMSI::RegistryKeyToUUID(key);
        ASSERT_EQ(uuid.size(), 38U);
        EXPECT_EQ(KelInsMSI::UUIDtoRegistryKey(uuid), key);
        EXPECT_EQ(KelInsMSI::RegistryKeyToUUID(KelInsMSI::UUIDtoRegistryKey(uuid)), uuid);
    }
}

} // namespace
