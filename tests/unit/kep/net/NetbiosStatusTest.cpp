#include "net/NetbiosStatus.h"

#include "tests/unit/kep/net/StatusReply.h"

#include <gtest/gtest.h>

#include <random>

namespace {

using namespace Kep::Testing;
using Kep::Net::nodeStatusRequest;
using Kep::Net::readNodeStatus;

constexpr std::uint16_t id = 0xABCD;

class NodeStatus : public testing::Test {
protected:
    std::optional<std::string> read() const { return readNodeStatus(reply_.bytes(), id); }

    StatusReply reply_{id};
};

TEST(NodeStatusRequest, AsksForAllNamesOfTheNode)
{
    Bytes expected{0xAB, 0xCD, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0};
    StatusReply::append(expected, StatusReply::encodedWildcard());
    StatusReply::append(expected, {0, 0x21, 0, 1});
    const auto request = nodeStatusRequest(id);
    EXPECT_EQ(Bytes(request.begin(), request.end()), expected);
}

TEST_F(NodeStatus, TheUniqueNameOfTheMachineIsTaken)
{
    reply_.add("OFFICE", 0x00, true).add("SERVER", 0x20).add("PRINTER-1", 0x00).add("SECOND", 0x00);
    EXPECT_EQ(read(), "PRINTER-1");
}

TEST_F(NodeStatus, WithoutOneTheFileServersNameIsTaken)
{
    reply_.add("OFFICE", 0x00, true).add("MESSENGER", 0x03).add("SERVER", 0x20);
    EXPECT_EQ(read(), "SERVER");
}

TEST_F(NodeStatus, GroupNamesAreNoMachineNames)
{
    reply_.add("OFFICE", 0x00, true).add("GROUP", 0x20, true);
    EXPECT_EQ(read(), "");
}

TEST_F(NodeStatus, ANodeWithoutNamesHasNone)
{
    EXPECT_EQ(read(), "");
}

TEST_F(NodeStatus, PaddingBlanksAndNulsAreTrimmedAtTheEndOnly)
{
    reply_.add(std::string(" A B\0 \0", 7), 0x00);
    EXPECT_EQ(read(), " A B");
}

TEST_F(NodeStatus, AllFifteenBytesMayBeName)
{
    reply_.add("ABCDEFGHIJKLMNO", 0x00);
    EXPECT_EQ(read(), "ABCDEFGHIJKLMNO");
}

TEST_F(NodeStatus, BytesAreAsTheHostSentThem)
{
    reply_.add("M\xDCLLER", 0x00);
    EXPECT_EQ(read(), "M\xDCLLER");
}

TEST_F(NodeStatus, AnEmptyMachineNameYieldsToTheNext)
{
    reply_.add("", 0x00).add("NEXT", 0x00);
    EXPECT_EQ(read(), "NEXT");
}

TEST_F(NodeStatus, RepliesToOtherRequestsAreNone)
{
    reply_.add("PRINTER", 0x00);
    EXPECT_EQ(readNodeStatus(reply_.bytes(), id + 1), std::nullopt);
}

TEST_F(NodeStatus, ARequestIsNoReply)
{
    EXPECT_EQ(readNodeStatus(nodeStatusRequest(id), id), std::nullopt);
}

TEST_F(NodeStatus, AnotherOperationIsNoReply)
{
    reply_.add("PRINTER", 0x00).flags = 0xAC00;
    EXPECT_EQ(read(), std::nullopt);
}

TEST_F(NodeStatus, AnErrorMeansNoName)
{
    reply_.add("PRINTER", 0x00).flags = 0x8403;
    EXPECT_EQ(read(), "");
}

TEST_F(NodeStatus, ARepeatedQuestionIsPassedOver)
{
    reply_.add("PRINTER", 0x00).questions = 1;
    reply_.questionSection = StatusReply::encodedWildcard();
    StatusReply::append(reply_.questionSection, {0, 0x21, 0, 1});
    EXPECT_EQ(read(), "PRINTER");
}

TEST_F(NodeStatus, ANameMayBeAPointerWhichIsNotFollowed)
{
    reply_.add("PRINTER", 0x00).name = {0xC0, 0x0C};
    EXPECT_EQ(read(), "PRINTER");
    reply_.name = {0xFF, 0xFF};
    EXPECT_EQ(read(), "PRINTER");
}

TEST_F(NodeStatus, ALabelLengthThatIsNoneIsRefused)
{
    reply_.add("PRINTER", 0x00);
    for (const int length : {0x40, 0x80, 0xBF}) {
        reply_.name = Bytes(static_cast<std::size_t>(length) + 1, 1);
        reply_.name[0] = static_cast<std::uint8_t>(length);
        reply_.name.push_back(0);
        EXPECT_EQ(read(), std::nullopt) << length;
    }
}

TEST_F(NodeStatus, QuestionsThatAreNotThereAreRefused)
{
    reply_.add("PRINTER", 0x00).questions = 0xFFFF;
    EXPECT_EQ(read(), std::nullopt);
}

TEST_F(NodeStatus, AReplyWithoutAnswerIsNone)
{
    reply_.add("PRINTER", 0x00).answers = 0;
    EXPECT_EQ(read(), std::nullopt);
}

TEST_F(NodeStatus, AnswersOfOtherTypesAndClassesAreNone)
{
    reply_.add("PRINTER", 0x00).type = 0x0020;
    EXPECT_EQ(read(), std::nullopt);
    reply_.type = 0x0021;
    reply_.klass = 2;
    EXPECT_EQ(read(), std::nullopt);
}

TEST_F(NodeStatus, ALengthBeyondThePacketIsRefused)
{
    reply_.add("PRINTER", 0x00).extraLength = 1;
    EXPECT_EQ(read(), std::nullopt);
    reply_.extraLength = 40'000;
    EXPECT_EQ(read(), std::nullopt);
}

TEST_F(NodeStatus, ALengthThatEndsWithinTheNamesIsRefused)
{
    reply_.add("PRINTER", 0x00).add("SERVER", 0x20).extraLength = -46 - 1;
    EXPECT_EQ(read(), std::nullopt);
}

TEST_F(NodeStatus, MoreNamesThanThereAreAreRefused)
{
    reply_.add("PRINTER", 0x00).extraCount = 3;
    EXPECT_EQ(read(), std::nullopt);
    reply_.extraCount = 254;
    EXPECT_EQ(read(), std::nullopt);
}

TEST_F(NodeStatus, EveryTruncationIsRefused)
{
    reply_.add("PRINTER", 0x00).add("SERVER", 0x20);
    const Bytes whole = reply_.bytes();
    for (std::size_t length = 0; length < whole.size(); ++length) {
        EXPECT_EQ(readNodeStatus(Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length)), id),
                  std::nullopt)
            << length;
    }
}

TEST_F(NodeStatus, DamagedBytesAreNeverReadPastTheEnd)
{
    reply_.add("PRINTER", 0x00).add("SERVER", 0x20);
    const Bytes whole = reply_.bytes();
    for (std::size_t place = 0; place < whole.size(); ++place) {
        for (int value = 0; value < 256; ++value) {
            Bytes damaged = whole;
            damaged[place] = static_cast<std::uint8_t>(value);
            damaged.shrink_to_fit();
            const auto name = readNodeStatus(damaged, id);
            EXPECT_LE(name.value_or("").size(), 15U);
        }
    }
}

TEST_F(NodeStatus, RandomBytesOfEveryLengthAreNoAnswer)
{
    std::mt19937 random(1);
    for (std::size_t length = 0; length < 600; ++length) {
        Bytes noise(length);
        for (auto& byte : noise) {
            byte = static_cast<std::uint8_t>(random());
        }
        const auto name = readNodeStatus(noise, 1);
        EXPECT_LE(name.value_or("").size(), 15U);
    }
}

} // namespace
