#include "lab/Error.h"
#include "lab/Ipv4.h"

#include <gmock/gmock.h>

namespace Lab {
namespace {

std::string failure(std::string_view network)
{
    try {
        Network::parse(network);
    } catch (const Error& error) {
        return error.what();
    }
    return "no failure";
}

TEST(Addresses, AreStrictDottedQuads)
{
    EXPECT_EQ(parseIpv4("127.0.0.1"), Address{0x7F000001});
    EXPECT_EQ(parseIpv4("255.255.255.255"), Address{0xFFFFFFFF});
    for (const char* text : {"", "127.0.0", "127.0.0.1.", "127.0.0.1.2", "127.0.0.256", "127.0.0.01", "127.0..1",
                             "127.0.0.-1", " 127.0.0.1", "127.0.0.1 ", "127.0.0.x", "..."})
        EXPECT_FALSE(parseIpv4(text)) << text;
}

TEST(Addresses, PrintAsTheyAreRead)
{
    for (const char* text : {"0.0.0.0", "127.77.0.9", "255.255.255.255"})
        EXPECT_EQ(formatIpv4(parseIpv4(text).value()), text);
}

TEST(Addresses, OfLoopbackBeginWith127)
{
    EXPECT_TRUE(isLoopback(parseIpv4("127.0.0.0").value()));
    EXPECT_TRUE(isLoopback(parseIpv4("127.255.255.255").value()));
    EXPECT_FALSE(isLoopback(parseIpv4("126.255.255.255").value()));
    EXPECT_FALSE(isLoopback(parseIpv4("128.0.0.0").value()));
}

TEST(Networks, PlacesLeaveOutTheFirstAndLastOfEachBlockOf256)
{
    const Network network = Network::parse("127.80.0.0/23");
    EXPECT_EQ(network.text(), "127.80.0.0/23");
    ASSERT_EQ(network.places(), 508U);
    EXPECT_EQ(formatIpv4(network.place(0)), "127.80.0.1");
    EXPECT_EQ(formatIpv4(network.place(253)), "127.80.0.254");
    EXPECT_EQ(formatIpv4(network.place(254)), "127.80.1.1");
    EXPECT_EQ(formatIpv4(network.place(507)), "127.80.1.254");
}

/// Counts the places one by one.
TEST(Networks, PlacesAreExactlyTheAddressesBetween)
{
    for (const char* text : {"127.1.2.0/25", "127.1.2.128/25", "127.1.2.64/26", "127.1.2.4/30", "127.1.2.0/31",
                             "127.1.2.254/31", "127.1.2.255/32", "127.1.2.7/32", "127.1.0.0/22", "127.255.0.0/16"}) {
        const Network network = Network::parse(text);
        const std::string whole(text);
        const Address base = parseIpv4(whole.substr(0, whole.find('/'))).value();
        const std::uint64_t size = std::uint64_t{1} << (32 - std::stoi(whole.substr(whole.find('/') + 1)));
        std::uint32_t index = 0;
        for (std::uint64_t offset = 0; offset < size; ++offset) {
            const auto address = static_cast<Address>(base + offset);
            if (address % 256 == 0 || address % 256 == 255)
                continue;
            ASSERT_LT(index, network.places()) << text;
            ASSERT_EQ(network.place(index++), address) << text;
        }
        EXPECT_EQ(index, network.places()) << text;
    }
}

TEST(Networks, ASlash16Has65024Places)
{
    EXPECT_EQ(Network::parse("127.80.0.0/16").places(), 65024U);
    EXPECT_EQ(Network::parse("127.0.0.0/8").places(), 65536U * 254U);
}

TEST(Networks, OtherTextsAreRefusedWithWhatIsExpected)
{
    const std::string expected = "expected a network within 127.0.0.0/8 such as 127.77.0.0/24, found ";
    for (const char* text : {"", "127.77.0.0", "127.77.0.0/", "127.77.0.0/33", "127.77.0.0/x", "127.0.0.0/7",
                             "10.0.0.0/24", "127.77.0/24", "127.77.0.0/24/24", "127.77.0.0/024"})
        EXPECT_EQ(failure(text), expected + '"' + text + '"');
}

TEST(Networks, HostBitsAreRefusedWithTheNetworkThatIsMeant)
{
    EXPECT_EQ(failure("127.77.0.9/24"),
              "expected a network without host bits such as 127.77.0.0/24, found \"127.77.0.9/24\"");
}

} // namespace
} // namespace Lab
