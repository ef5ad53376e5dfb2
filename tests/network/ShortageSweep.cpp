/// Sweeps on a machine that has less than they could use.
#include "tests/network/harness/Lab.h"
#include "tests/network/harness/Loopback.h"
#include "tests/network/harness/Program.h"
#include "tests/network/harness/Rights.h"
#include "tests/network/harness/TestNetwork.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace NetworkTests;
using testing::HasSubstr;
using testing::Not;

namespace {

constexpr int addresses = 63;

class ShortageSweep : public testing::Test {
protected:
    static std::string network() { return ownNetwork() + ".0/26"; }

    /// All addresses of the lab's network, and its printers.
    static Document everything()
    {
        std::vector<Document> printers;
        for (const LabDevice& device : Lab::list(network(), Individuality::byAddress)) {
            if (!device.printer.is_null()) {
                printers.push_back(device.printer);
            }
        }
        return finishedSweep(addresses, printers);
    }

    /// The command of a sweep after `preparation`, a line for the shell.
    Command after(const std::string& preparation, Sweep sweep, std::uint16_t port) const
    {
        sweep.arguments.insert(sweep.arguments.begin(), {network(), "--port", std::to_string(port), "-t", "0.3"});
        Command command = discoverCommand(sweep, folder_ / "settings.db");
        command.words.insert(command.words.begin(), {"sh", "-c", preparation + "; exec \"$@\"", "sh"});
        return command;
    }

    TemporaryFolder folder_;
};

TEST_F(ShortageSweep, ReachesAllWithAFewLocalPorts)
{
    SKIP_UNLESS(TestNetwork::permitted(), "local ports: no right to make a network");
    const TestNetwork other;
    constexpr std::uint16_t port = 1161;
    // Of a hundred ports, others have all but eight.
    const std::string lab =
        builtProgram("printer-lab") + " --port " + std::to_string(port) + " --network " + network() + " --idle-exit 2";
    const std::string others = "import socket, time\n"
                               "taken = [socket.socket(socket.AF_INET, socket.SOCK_DGRAM) for _ in range(92)]\n"
                               "for number, each in enumerate(taken): each.bind((\"\", 40000 + number))\n"
                               "print(\"ready\", flush=True)\n"
                               "time.sleep(20)\n";
    const std::string preparation = "mkfifo \"$HOME/ready\" \"$HOME/taken\"; " + lab + " >\"$HOME/ready\" & " +
                                    "python3 -c '" + others + "' >\"$HOME/taken\" & " +
                                    "grep -q -m 1 ready <\"$HOME/ready\"; grep -q ready <\"$HOME/taken\"; " +
                                    "echo '40000 40099' >/proc/sys/net/ipv4/ip_local_port_range";
    const Finished result =
        run(after(preparation, {.arguments = {"-q", "--rate", "0"}, .network = &other}, port), sweepBound);
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(parseOutput(result.output), everything());
}

TEST_F(ShortageSweep, SaysThatTheTaskLimitIsLowered)
{
    const std::uint16_t port = freeUdpPort({"0.0.0.0"});
    const Lab lab(network(), port);
    const Finished result = run(after("ulimit -n 600", {.arguments = {"--tasks", "60000"}}, port), sweepBound);
    EXPECT_EQ(parseOutput(result.output), everything());
    EXPECT_THAT(result.errors, HasSubstr("60000 tasks at once are more than this machine can give"));
    EXPECT_THAT(result.errors, HasSubstr("open files"));
}

TEST_F(ShortageSweep, SaysNothingOfALimitThatTheMachineCanGive)
{
    const std::uint16_t port = freeUdpPort({"0.0.0.0"});
    const Lab lab(network(), port);
    const Finished result = run(after("ulimit -n 600", {.arguments = {"--tasks", "50"}}, port), sweepBound);
    EXPECT_EQ(parseOutput(result.output), everything());
    EXPECT_THAT(result.errors, Not(HasSubstr("this machine")));
}

} // namespace
