#include "host/Secrets.h"

#include "host/Errors.h"
#include "tests/unit/host/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace Host {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

class SecretFiles : public testing::Test {
protected:
    TemporaryFolder folder;

    std::string refusal(const std::string& path)
    {
        try {
            readSecretFile(path, "--community-file");
        } catch (const UsageError& error) {
            return error.what();
        }
        return "accepted";
    }

    std::string read(const std::string& content) { return readSecretFile(folder.write("secret", content), "--x-file"); }
};

TEST_F(SecretFiles, GiveTheirFirstLine)
{
    EXPECT_EQ(read("s3cret"), "s3cret");
    EXPECT_EQ(read("s3cret\n"), "s3cret");
    EXPECT_EQ(read("s3cret\r\n"), "s3cret");
    EXPECT_EQ(read("s3cret\nmore\n"), "s3cret");
    EXPECT_EQ(read(" with blanks \n"), " with blanks ");
}

TEST_F(SecretFiles, ReadableByOthersAreRefusedWithTheRemedy)
{
    for (const int mode : {0640, 0620, 0610, 0604, 0602, 0601, 0644, 0777}) {
        const std::string path = folder.write("secret", "s3cret", std::filesystem::perms(mode));
        EXPECT_THAT(refusal(path), AllOf(HasSubstr("--community-file"), HasSubstr(path),
                                         HasSubstr(TestSupport::mendingCommand), Not(HasSubstr("s3cret"))))
            << std::oct << mode;
    }
    for (const int mode : {0600, 0400, 0700})
        EXPECT_EQ(refusal(folder.write("secret", "s3cret", std::filesystem::perms(mode))), "accepted")
            << std::oct << mode;
}

TEST_F(SecretFiles, ThatCannotBeReadAreRefused)
{
    EXPECT_THAT(refusal(folder.file("absent")), AllOf(HasSubstr("--community-file"), HasSubstr("cannot read")));
    std::filesystem::create_directory(folder.file("folder"));
    std::filesystem::permissions(folder.file("folder"), std::filesystem::perms(0700));
    EXPECT_THAT(refusal(folder.file("folder")), HasSubstr("cannot read"));
}

TEST_F(SecretFiles, WithoutASecretAreRefused)
{
    EXPECT_THAT(refusal(folder.write("empty", "")), HasSubstr("is empty"));
    EXPECT_THAT(refusal(folder.write("blank", "\nsecond\n")), HasSubstr("is empty"));
    EXPECT_THAT(refusal(folder.write("binary", std::string("a\0b", 3))), HasSubstr("no text"));
}

TEST(HiddenArguments, ShowNoSecretAnyMore)
{
    std::vector<std::string> texts = {"10.0.0.1", "-A", "password1", "-Xpassword2", "--community=other"};
    std::vector<char*> arguments;
    for (std::string& text : texts)
        arguments.push_back(text.data());
    hideArguments(arguments, {"password1", "password2", "other", ""});
    EXPECT_THAT(texts, testing::ElementsAre("10.0.0.1", "-A", "*********", "-X*********", "--community=*****"));
}

} // namespace
} // namespace Host
