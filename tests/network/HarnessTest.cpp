/// What the other network tests build on: programs, networks and agents behave as they are used.
#include "tests/network/Devices.h"
#include "tests/network/harness/ChildProcess.h"
#include "tests/network/harness/Loopback.h"
#include "tests/network/harness/NameServer.h"
#include "tests/network/harness/Nmbd.h"
#include "tests/network/harness/Recording.h"
#include "tests/network/harness/Rights.h"
#include "tests/network/harness/SnmpTools.h"
#include "tests/network/harness/Snmpd.h"
#include "tests/network/harness/Snmpsim.h"
#include "tests/network/harness/TestNetwork.h"
#include "tests/network/harness/WaitFor.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <stdexcept>

using namespace NetworkTests;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

constexpr std::chrono::seconds bound(20);

Command shell(const std::string& script)
{
    return {.words = {"sh", "-c", script}};
}

TEST(ChildProcesses, GiveTheirOutputErrorsAndStatus)
{
    const Finished result = run(shell("echo out; echo err >&2; exit 7"), bound);
    EXPECT_EQ(result.output, "out\n");
    EXPECT_EQ(result.errors, "err\n");
    EXPECT_EQ(result.status, 7);
}

TEST(ChildProcesses, EndedBySignalHaveAStatusAbove128)
{
    ChildProcess process(shell("echo ready; exec sleep 1000"));
    EXPECT_EQ(process.readLine(bound), "ready");
    process.signal(SIGINT);
    EXPECT_EQ(process.waitForExit(bound), 128 + SIGINT);
}

TEST(ChildProcesses, ReadAndWriteLines)
{
    ChildProcess process(shell("while read -r line; do echo \"<$line>\"; done; echo end"));
    process.writeLine("one");
    EXPECT_EQ(process.readLine(bound), "<one>");
    process.writeLine("two");
    process.closeInput();
    EXPECT_EQ(process.readLine(bound), "<two>");
    EXPECT_EQ(process.readLine(bound), "end");
    EXPECT_EQ(process.readLine(bound), std::nullopt);
}

TEST(ChildProcesses, LeaveNoDescendants)
{
    std::string grandchild;
    {
        ChildProcess process(shell("sleep 1000 & echo $!; trap '' TERM; wait; sleep 1000"));
        grandchild = process.readLine(bound).value();
    }
    const auto gone = [&] { return kill(std::stoi(grandchild), 0) != 0; };
    EXPECT_TRUE(waitFor(gone, bound));
}

TEST(ChildProcesses, SeeOnlyTheEnvironmentTheyAreGiven)
{
    setenv("PRINTER_DISCOVERY_COMMUNITY", "of the developer", 1);
    const Finished result = run({.words = {"env"}, .environment = {{"GIVEN", "value"}}}, bound);
    EXPECT_THAT(result.output, HasSubstr("GIVEN=value\n"));
    EXPECT_THAT(result.output, testing::Not(HasSubstr("of the developer")));
}

TEST(ChildProcesses, UnknownProgramFails)
{
    EXPECT_NE(run({.words = {"no-such-program"}}, bound).status, 0);
}

TEST(TestNetworks, HaveALoopbackInterfaceAndFilesOfTheirOwn)
{
    SKIP_UNLESS(TestNetwork::permitted(), "networks: no right to make one");
    const TestNetwork network(TestNetwork::Files{{"/etc/hosts", "127.0.0.9 only-here\n"}});
    Command command = shell("cat /etc/hosts; ip -brief address");
    command.network = &network;
    const Finished result = run(command, bound);
    EXPECT_THAT(result.output, HasSubstr("127.0.0.9 only-here\nlo "));
    EXPECT_THAT(result.output, HasSubstr("127.0.0.1/8"));
    EXPECT_EQ(std::count(result.output.begin(), result.output.end(), '\n'), 2) << result.output;
    EXPECT_EQ(readFile("/etc/hosts").find("only-here"), std::string::npos);
}

TEST(TestNetworks, AnswerForTheNamesThatATestGives)
{
    SKIP_UNLESS(TestNetwork::permitted(), "networks: no right to make one");
    const TestNetwork network(
        {{"/etc/resolv.conf", "nameserver 127.0.0.53\n"}, {"/etc/nsswitch.conf", "hosts: dns\n"}});
    const NameServer dns(network, "127.0.0.53", {{"127.0.0.2", "printer.example"}});
    const Nmbd netBios(network, "127.0.0.2", "PRINTER");
    Command command = {.words = {"getent", "hosts", "127.0.0.2"}, .network = &network};
    EXPECT_THAT(run(command, bound).output, HasSubstr("printer.example"));
    command.words.back() = "127.0.0.3";
    EXPECT_EQ(run(command, bound).output, "");
    EXPECT_THAT(dns.asked(), ElementsAre("127.0.0.2", "127.0.0.3"));
}

TEST(Agents, AnswerWithEveryProfileTheyAreGivenAndNoOther)
{
    const Endpoint agent = freeEndpoint();
    std::vector<SnmpProfile> profiles = commonProfiles();
    profiles.push_back(v3("SHA", "AES-256"));
    const Snmpd snmpd(agent, fullPrinter(agent.address).data, profiles);
    for (const SnmpProfile& profile : profiles) {
        EXPECT_TRUE(answers(agent, profile)) << profile.name;
    }
    EXPECT_FALSE(answers(agent, v2c("private")));
    EXPECT_FALSE(answers(agent, v3("MD5", "AES")));
    SnmpProfile wrong = v3("SHA", "AES");
    wrong.authPassword = "not-this-one";
    EXPECT_FALSE(answers(agent, wrong));
}

TEST(Agents, HoldWhatTheyAreGiven)
{
    const Endpoint agent = freeEndpoint();
    const Snmpd snmpd(agent, secondRowPrinter(agent.address).data, {v2c()});
    EXPECT_EQ(getWithTool(agent, v2c(), ".1.3.6.1.2.1.25.3.2.1.2.2"), "OID: .1.3.6.1.2.1.25.3.1.5");
    EXPECT_EQ(getWithTool(agent, v2c(), ".1.3.6.1.2.1.25.3.2.1.3.1"), "STRING: \"Second Row\"");
    EXPECT_EQ(getWithTool(agent, v2c(), ".1.3.6.1.2.1.43.5.1.1.17.1"), "\"\"");
    EXPECT_EQ(getWithTool(agent, v2c(), ".1.3.6.1.4.1.1347.43.5.1.1.28.1"), "INTEGER: -4711");
    EXPECT_THAT(getWithTool(agent, v2c(), ".1.3.6.1.2.1.1.5.0"), HasSubstr("No Such"));
}

TEST(Agents, OfTheSimulatorAnswerAtTheirOwnAddresses)
{
    const TemporaryFolder folder;
    const auto first = folder.write("a.snmprec", "1.3.6.1.2.1.1.1.0|4|first\n");
    const auto second = folder.write("b.snmprec", "1.3.6.1.2.1.1.1.0|4x|7365636f6e64\n");
    const std::uint16_t port = freeUdpPort({ownAddress(1), ownAddress(2)});
    const std::vector<SnmpProfile> profiles = commonProfiles();
    const Snmpsim simulator({{ownAddress(1), first}, {ownAddress(2), second}}, port, profiles);
    for (const SnmpProfile& profile : profiles) {
        const SnmpProfile reaching = Snmpsim::reaching(profile);
        EXPECT_EQ(getWithTool({ownAddress(1), port}, reaching, ".1.3.6.1.2.1.1.1.0"), "STRING: \"first\"");
        EXPECT_EQ(getWithTool({ownAddress(2), port}, reaching, ".1.3.6.1.2.1.1.1.0"), "STRING: \"second\"");
    }
}

/// A recording with the lines that a test gives.
class Recordings : public testing::Test {
protected:
    Recording recording(const std::string& lines) const { return Recording(folder_.write("device.snmprec", lines)); }

    TemporaryFolder folder_;
};

TEST_F(Recordings, ArePrintersByAnyRowOfTheDeviceTable)
{
    EXPECT_TRUE(recording("1.3.6.1.2.1.25.3.2.1.2.1|6|1.3.6.1.2.1.25.3.1.3\n"
                          "1.3.6.1.2.1.25.3.2.1.2.7|6|1.3.6.1.2.1.25.3.1.5\n")
                    .isPrinter());
    EXPECT_FALSE(recording("1.3.6.1.2.1.25.3.2.1.2.1|6|1.3.6.1.2.1.25.3.1.3\n"
                           "1.3.6.1.2.1.25.3.2.1.3.1|6|1.3.6.1.2.1.25.3.1.5\n")
                     .isPrinter());
}

TEST_F(Recordings, GiveTheRecordThatASweepMustGive)
{
    const Recording printer = recording("1.3.6.1.2.1.2.2.1.6.1|4x|00abCDef0102\n"
                                        "1.3.6.1.2.1.2.2.1.6.2|4|\n"
                                        "1.3.6.1.2.1.25.3.2.1.3.1|4x|436166e9\n"
                                        "1.3.6.1.2.1.43.5.1.1.17.1|4|\n"
                                        "1.3.6.1.4.1.1347.43.5.1.1.28.1|2|42\n"
                                        "1.3.6.1.4.1.367.3.2.1.2.1.4.0|4|third\n");
    EXPECT_EQ(printer.record("127.0.0.1"),
              printerRecord("127.0.0.1", "Café", Document::array({"00-AB-CD-EF-01-02"}), "42"));
}

TEST_F(Recordings, OfAnotherFormAreRefused)
{
    EXPECT_THROW(recording("1.3.6.1.2.1.1.1.0 = STRING: no recording\n"), std::runtime_error);
    EXPECT_THROW(recording(""), std::runtime_error);
}

TEST(JsonTexts, KeepUtf8AndShowOtherBytesAsLatin1)
{
    EXPECT_EQ(jsonText("plain"), "plain");
    EXPECT_EQ(jsonText("f\xc3\xa4rbt \xe2\x82\xac \xf0\x9f\x96\xa8"), "färbt € 🖨");
    EXPECT_EQ(jsonText("Caf\xe9"), "Café");
    EXPECT_EQ(jsonText("\xc3"), "Ã");
    EXPECT_EQ(jsonText("\xed\xa0\x80"), "\u00ed\u00a0\u0080") << "a surrogate is no UTF-8";
    EXPECT_EQ(jsonText("\xc0\xaf"), "\u00c0\u00af") << "an overlong form is no UTF-8";
}

} // namespace
