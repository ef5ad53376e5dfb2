/// Ctrl-C in the middle of a sweep.
#include "tests/network/Devices.h"
#include "tests/network/harness/Loopback.h"
#include "tests/network/harness/Program.h"
#include "tests/network/harness/Snmpd.h"
#include "tests/network/harness/WaitFor.h"

#include <gtest/gtest.h>

#include <csignal>

using namespace NetworkTests;

namespace {

constexpr int interruptedStatus = 130;
constexpr std::chrono::seconds interruptBound(3);

class Interrupt : public testing::Test {
protected:
    /// A sweep in which every silent address takes minutes.
    Command patientSweep(const std::string& target, std::uint16_t port) const
    {
        return discoverCommand({.arguments = {target, "--port", std::to_string(port), "-t", "30", "-r", "3"}},
                               folder_ / "settings.db");
    }

    /// Interrupts as a terminal does; the program must end in time with the status of an interruption.
    static Document interrupt(ChildProcess& sweep)
    {
        sweep.signal(SIGINT);
        EXPECT_EQ(sweep.waitForExit(interruptBound), interruptedStatus);
        return parseOutput(sweep.output());
    }

private:
    TemporaryFolder folder_;
};

TEST_F(Interrupt, OfALargeRangePrintsItsDocumentInTime)
{
    const std::uint16_t port = freeUdpPort({"0.0.0.0"});
    const SilentAddresses silence({"0.0.0.0"}, port);
    ChildProcess sweep(patientSweep("127.0.0.0/8", port));
    ASSERT_TRUE(waitFor([&] { return silence.asked(); }, sweepBound));
    const Document document = interrupt(sweep);
    EXPECT_EQ(document.at("interrupted"), true);
    EXPECT_EQ(document.at("printers"), Document::array());
    EXPECT_EQ(document.at("total"), 65536 * 254);
    EXPECT_LT(document.at("step"), document.at("total"));
}

TEST_F(Interrupt, PrintsThePrintersFoundSoFar)
{
    const std::string printer = ownAddress(1);
    const std::string silent = ownAddress(2);
    const std::uint16_t port = freeUdpPort({printer, silent});
    const Device device = fullPrinter(printer);
    const Snmpd agent({printer, port}, device.data, {v2c()});
    const SilentAddresses silence({silent}, port);
    ChildProcess sweep(patientSweep(ownNetwork() + ".0/24", port));
    ASSERT_TRUE(waitFor([&] { return silence.asked(); }, sweepBound));
    // The printer was asked first; it has answered within any bound that is none against a hang.
    std::this_thread::sleep_for(std::chrono::seconds(2));
    const Document document = interrupt(sweep);
    Document expected = finishedSweep(254, {device.record});
    expected["step"] = 253;
    expected["state"] = 2;
    expected["interrupted"] = true;
    EXPECT_EQ(document, expected);
}

} // namespace
