#include "lab/Error.h"
#include "lab/ProfileLibrary.h"
#include "lab/Snmprec.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <random>

namespace Lab {
namespace {

ProfilePtr read(std::string_view text)
{
    return readSnmprec("device", "device.snmprec", text);
}

std::string textOf(std::string_view typeAndValue)
{
    return read("1.3.6.1|" + std::string(typeAndValue))->records().at(0).value.text();
}

std::string failure(std::string_view text)
{
    try {
        read(text);
    } catch (const Error& error) {
        return error.what();
    }
    return "no failure";
}

TEST(SnmprecFiles, EveryTypeIsRead)
{
    EXPECT_EQ(textOf("2|-2147483648"), "-2147483648");
    EXPECT_EQ(textOf("4|a text"), "a text");
    EXPECT_EQ(textOf("5|"), "");
    EXPECT_EQ(textOf("6|1.3.6.1.2.1.25.3.1.5"), ".1.3.6.1.2.1.25.3.1.5");
    EXPECT_EQ(textOf("64|192.0.2.255"), "192.0.2.255");
    EXPECT_EQ(textOf("65|4294967295"), "4294967295");
    EXPECT_EQ(textOf("66|0"), "0");
    EXPECT_EQ(textOf("67|128"), "128");
    EXPECT_EQ(textOf("68|opaque"), "opaque");
    EXPECT_EQ(textOf("70|18446744073709551615"), "18446744073709551615");
}

TEST(SnmprecFiles, ATypeIsTheTagOnTheWire)
{
    const auto profile = read("1.3.1|2|0\n1.3.2|64|1.2.3.4\n1.3.3|70|0\n");
    EXPECT_EQ(profile->records()[0].encodedValue[0], 2);
    EXPECT_EQ(profile->records()[1].encodedValue[0], 64);
    EXPECT_EQ(profile->records()[2].encodedValue[0], 70);
}

TEST(SnmprecFiles, HexadecimalValuesHoldAnyByte)
{
    EXPECT_EQ(textOf("4x|00fF7c"), (std::string{'\0', '\xFF', '|'}));
    EXPECT_EQ(textOf("4x|"), "");
    EXPECT_EQ(textOf("64x|7f000001"), "127.0.0.1");
    EXPECT_EQ(textOf("68x|9f78"), "\x9F\x78");
}

TEST(SnmprecFiles, AValueKeepsItsBarsAndBlanks)
{
    EXPECT_EQ(textOf("4| a|b | "), " a|b | ");
    EXPECT_EQ(textOf("4|"), "");
}

TEST(SnmprecFiles, LineEndsAndEmptyLinesDoNotMatter)
{
    const auto profile = read("\n1.3.1|4|one\r\n\r\n1.3.2|4|two");
    ASSERT_EQ(profile->records().size(), 2U);
    EXPECT_EQ(profile->records()[0].value.text(), "one");
    EXPECT_EQ(profile->records()[1].value.text(), "two");
}

TEST(SnmprecFiles, LinesMayComeInAnyOrder)
{
    const auto profile = read("1.3.10|2|10\n1.3.9|2|9\n1.3.9.1|2|91\n");
    EXPECT_EQ(profile->records()[0].value.text(), "9");
    EXPECT_EQ(profile->records()[1].value.text(), "91");
    EXPECT_EQ(profile->records()[2].value.text(), "10");
}

TEST(SnmprecFiles, AWrongLineIsNamedWithWhatWasExpectedAndFound)
{
    EXPECT_EQ(failure("1.3.1|2|5\n1.3.2|2|five\n"),
              "device.snmprec:2: expected a number from -2147483648 to 2147483647, found \"1.3.2|2|five\"");
    EXPECT_EQ(failure("\n\nhello"), "device.snmprec:3: expected OID|type|value, found \"hello\"");
    EXPECT_EQ(failure(".1.3|2|5"), "device.snmprec:1: expected an OID such as 1.3.6.1.2.1.1.1.0, found \".1.3|2|5\"");
    EXPECT_EQ(failure("1.3|65:numeric|rate=5"),
              "device.snmprec:1: expected type 2, 4, 5, 6, 64, 65, 66, 67, 68 or 70, or 4x, 64x or 68x, found "
              "\"1.3|65:numeric|rate=5\"");
}

TEST(SnmprecFiles, ValuesThatDoNotFitTheirTypeAreRefused)
{
    using testing::HasSubstr;
    EXPECT_THAT(failure("1.3|2|2147483648"), HasSubstr("expected a number from -2147483648 to 2147483647"));
    EXPECT_THAT(failure("1.3|2|"), HasSubstr("expected a number"));
    EXPECT_THAT(failure("1.3|2|5 "), HasSubstr("expected a number"));
    EXPECT_THAT(failure("1.3|65|-1"), HasSubstr("expected a number from 0 to 4294967295"));
    EXPECT_THAT(failure("1.3|67|4294967296"), HasSubstr("expected a number from 0 to 4294967295"));
    EXPECT_THAT(failure("1.3|70|18446744073709551616"), HasSubstr("expected a number from 0 to 18446744073709551615"));
    EXPECT_THAT(failure("1.3|4x|0"), HasSubstr("expected pairs of hexadecimal digits"));
    EXPECT_THAT(failure("1.3|4x|0g"), HasSubstr("expected pairs of hexadecimal digits"));
    EXPECT_THAT(failure("1.3|5|x"), HasSubstr("expected no value after type 5"));
    EXPECT_THAT(failure("1.3|6|.1.3"), HasSubstr("expected an OID"));
    EXPECT_THAT(failure("1.3|64|1.2.3"), HasSubstr("expected an address such as 192.0.2.1"));
    EXPECT_THAT(failure("1.3|64x|7f0000"), HasSubstr("expected an address of 4 bytes"));
    EXPECT_THAT(failure("1.3|2x|05"), HasSubstr("expected type"));
    EXPECT_THAT(failure("1.3||5"), HasSubstr("expected type"));
}

TEST(SnmprecFiles, AnOidGivenTwiceNamesTheFirstLine)
{
    EXPECT_EQ(failure("1.3.1|2|5\n1.3.2|2|5\n1.3.1|2|6\n"),
              "device.snmprec:3: expected an OID of its own, it is that of line 1, found \"1.3.1|2|6\"");
}

TEST(SnmprecFiles, AFileWithoutAnObjectIsRefused)
{
    EXPECT_EQ(failure("\n"), "device.snmprec: expected at least one line OID|type|value, found none");
}

TEST(SnmprecFiles, ALineOfStrangeBytesIsQuotedSafely)
{
    EXPECT_EQ(failure(std::string("\x1B[2J\xFF", 5) + std::string(100, 'x')),
              "device.snmprec:1: expected OID|type|value, found \"?[2J?" + std::string(55, 'x') + "...\"");
}

TEST(Profiles, FindExactlyWhatIsThere)
{
    const auto profile = read("1.3.1|2|1\n1.3.1.5|2|15\n1.3.2|2|2\n");
    EXPECT_EQ(profile->find(Oid{1, 3, 1, 5})->value.text(), "15");
    EXPECT_EQ(profile->find(Oid{1, 3, 1, 4}), nullptr);
    EXPECT_EQ(profile->find(Oid{1, 3}), nullptr);
    EXPECT_EQ(profile->find(Oid{1, 3, 3}), nullptr);
}

TEST(Profiles, GoOnToTheNextObjectInNumericalOrder)
{
    const auto profile = read("1.3.9|2|9\n1.3.10|2|10\n1.3.10.1|2|101\n1.3.16384|2|16384\n");
    EXPECT_EQ(profile->findNext(Oid{0, 0})->value.text(), "9");
    EXPECT_EQ(profile->findNext(Oid{1, 3})->value.text(), "9");
    EXPECT_EQ(profile->findNext(Oid{1, 3, 9})->value.text(), "10") << "9 before 10";
    EXPECT_EQ(profile->findNext(Oid{1, 3, 9, 7, 7})->value.text(), "10") << "below an object that is a leaf";
    EXPECT_EQ(profile->findNext(Oid{1, 3, 10})->value.text(), "101") << "a prefix comes before what continues it";
    EXPECT_EQ(profile->findNext(Oid{1, 3, 16383})->value.text(), "16384");
    EXPECT_EQ(profile->findNext(Oid{1, 3, 16384}), nullptr);
    EXPECT_EQ(profile->findNext(Oid{2, 0}), nullptr);
}

/// A folder of its own that is gone after the test.
class ProfileFolders : public testing::Test {
protected:
    ProfileFolders()
    {
        std::random_device number;
        do
            _folder =
                std::filesystem::temp_directory_path().generic_string() + "/lab-profiles-" + std::to_string(number());
        while (!std::filesystem::create_directory(_folder));
    }
    ~ProfileFolders() override { std::filesystem::remove_all(_folder); }

    void write(const std::string& name, const std::string& text) const { std::ofstream(_folder + "/" + name) << text; }

    [[nodiscard]] std::string failureToRead() const
    {
        try {
            readProfiles(_folder);
        } catch (const Error& error) {
            return error.what();
        }
        return "no failure";
    }

    std::string _folder;
};

TEST_F(ProfileFolders, EachSnmprecFileIsAProfileOfItsName)
{
    write("b.snmprec", "1.3.1|4|of b");
    write("a.snmprec", "1.3.1|4|of a");
    write("README.md", "not a profile");
    const auto library = readProfiles(_folder);
    ASSERT_EQ(library.size(), 2U);
    EXPECT_EQ(library.at("a")->find(Oid{1, 3, 1})->value.text(), "of a");
    EXPECT_EQ(library.at("b")->name(), "b");
}

TEST_F(ProfileFolders, AWrongFileIsNamedWithItsPath)
{
    write("a.snmprec", "1.3.1|4");
    EXPECT_EQ(failureToRead(), _folder + "/a.snmprec:1: expected OID|type|value, found \"1.3.1|4\"");
}

TEST_F(ProfileFolders, AFolderWithoutProfilesIsRefused)
{
    EXPECT_EQ(failureToRead(), _folder + ": expected a folder of .snmprec files, found none in it");
    std::filesystem::remove(_folder);
    EXPECT_EQ(failureToRead(), _folder + ": expected a folder of .snmprec files, found: No such file or directory");
}

TEST(ProfileLibraries, AnUnknownNameIsAnsweredWithTheKnownOnes)
{
    const ProfileLibrary library{{"a", read("1.3|2|1")}, {"b", read("1.3|2|1")}};
    EXPECT_EQ(findProfile(library, "b"), library.at("b"));
    try {
        findProfile(library, "c");
        FAIL();
    } catch (const Error& error) {
        EXPECT_STREQ(error.what(), "expected a profile out of a, b");
    }
}

} // namespace
} // namespace Lab
