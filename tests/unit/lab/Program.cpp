// The running program, asked with net-snmp's command line tools on loopback.
#include "lab/ProfileLibrary.h"
#include "tests/unit/lab/RunningLab.h"

#include <nlohmann/json.hpp>

#include <gmock/gmock.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace Lab {
namespace {

using Testing::Ended;
using testing::HasSubstr;
using Testing::RunningLab;
using Testing::shell;

std::vector<std::string> linesOf(const std::string& text)
{
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);)
        lines.push_back(line);
    return lines;
}

std::vector<std::string> with(std::vector<std::string> arguments, std::initializer_list<const char*> more)
{
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
}

const std::vector<std::string> freePort{"--port", "0", "--until-stdin-closes", "--idle-exit", "120"};

/// A lab that serves one farm to all tests of the suite.
class ProgramAnswers : public testing::Test {
protected:
    static void SetUpTestSuite()
    {
        lab = std::make_unique<RunningLab>(with(freePort, {"--verbatim"}));
        lab->waitUntilReady();
        shell("snmpget -v1 -c public -t 0.1 -r 0 127.0.0.1:1 .1 2>&1"); // on a new machine makes folders, and says so
    }
    static void TearDownTestSuite() { lab.reset(); }

    /// Asks with one of net-snmp's tools; the answer as `OID value` lines with numerical OIDs, errors among them.
    static Ended ask(const std::string& tool, const std::string& version, const std::string& address,
                     const std::string& oid, const std::string& community = "public")
    {
        const std::string who = version == "3" ? " -l noAuthNoPriv -u " : " -c ";
        return shell("MIBS= " + tool + " -v" + version + who + community + " -t 1 -r 0 -Onq " + address + ":" +
                     std::to_string(lab->port()) + " " + oid + " 2>&1");
    }

    /// Where the farm's list has a profile.
    static std::string addressOf(const std::string& profile)
    {
        for (const std::string& line : linesOf(shell(PRINTER_LAB " --list").output)) {
            const auto device = nlohmann::json::parse(line);
            if (device["profile"] == profile)
                return device["ip"];
        }
        return "no address";
    }

    /// What a walk of the whole device should show: the OIDs of its profile.
    static std::vector<std::string> oidsOf(const std::string& profile, bool withLongCounters)
    {
        std::vector<std::string> oids;
        const ProfilePtr whole = builtInProfiles().at(profile);
        for (const Record& record : whole->records()) {
            if (withLongCounters || record.value.tag != Tag::counter64)
                oids.push_back(formatOid(record.oid));
        }
        return oids;
    }

    static std::vector<std::string> walk(const std::string& version, const std::string& profile)
    {
        std::vector<std::string> oids;
        for (const std::string& line : linesOf(ask("snmpwalk", version, addressOf(profile), ".1").output)) {
            if (line.starts_with(".1.") && line.find("No more variables") == std::string::npos)
                oids.push_back(line.substr(0, line.find(' ')));
        }
        return oids;
    }

    static std::unique_ptr<RunningLab> lab;
};

std::unique_ptr<RunningLab> ProgramAnswers::lab;

TEST_F(ProgramAnswers, AGetInEveryVersion)
{
    for (const char* version : {"1", "2c", "3"}) {
        const Ended answer = ask("snmpget", version, addressOf("laser-mono"), ".1.3.6.1.2.1.25.3.2.1.3.1");
        EXPECT_EQ(answer.status, 0);
        EXPECT_EQ(answer.output, ".1.3.6.1.2.1.25.3.2.1.3.1 \"Halvorsen LP-3120dn\"\n");
    }
}

TEST_F(ProgramAnswers, SeveralVarbindsAtOnce)
{
    EXPECT_EQ(ask("snmpget", "2c", addressOf("laser-mono"), ".1.3.6.1.2.1.1.5.0 .1.3.6.1.2.1.2.1.0").output,
              ".1.3.6.1.2.1.1.5.0 \"lp-3120\"\n.1.3.6.1.2.1.2.1.0 2\n");
}

TEST_F(ProgramAnswers, AGetNextInEveryVersion)
{
    for (const char* version : {"1", "2c", "3"})
        EXPECT_EQ(ask("snmpgetnext", version, addressOf("laser-mono"), ".1.3.6.1.2.1.25.3.2.1.2").output,
                  ".1.3.6.1.2.1.25.3.2.1.2.1 .1.3.6.1.2.1.25.3.1.5\n");
}

TEST_F(ProgramAnswers, AWalkWithEveryObjectInItsOrder)
{
    for (const char* profile : {"laser-colour", "switch", "server"}) {
        EXPECT_EQ(walk("2c", profile), oidsOf(profile, true)) << profile;
        EXPECT_EQ(walk("3", profile), oidsOf(profile, true)) << profile;
        EXPECT_EQ(walk("1", profile), oidsOf(profile, false)) << profile;
    }
    EXPECT_NE(oidsOf("switch", true), oidsOf("switch", false)) << "the comparison covers long counters";
}

TEST_F(ProgramAnswers, AMissingObjectAsItsVersionDoes)
{
    const Ended v1 = ask("snmpget", "1", addressOf("laser-mono"), ".1.3.6.1.2.1.99.0");
    EXPECT_EQ(v1.status, 2);
    EXPECT_THAT(v1.output, HasSubstr("noSuchName"));
    const Ended v2 = ask("snmpget", "2c", addressOf("laser-mono"), ".1.3.6.1.2.1.99.0");
    EXPECT_EQ(v2.status, 0);
    EXPECT_THAT(v2.output, HasSubstr("No Such Instance"));
}

TEST_F(ProgramAnswers, TheEndOfADeviceAsItsVersionDoes)
{
    EXPECT_THAT(ask("snmpgetnext", "1", addressOf("ups"), ".2.0").output, HasSubstr("noSuchName"));
    EXPECT_THAT(ask("snmpgetnext", "2c", addressOf("ups"), ".2.0").output, HasSubstr("No more variables"));
}

TEST_F(ProgramAnswers, NothingToAnotherCommunity)
{
    const Ended answer = ask("snmpget", "2c", addressOf("laser-mono"), ".1.3.6.1.2.1.1.5.0", "private");
    EXPECT_EQ(answer.status, 1);
    EXPECT_THAT(answer.output, HasSubstr("Timeout"));
}

TEST_F(ProgramAnswers, AReportToAnotherUser)
{
    const Ended answer = ask("snmpget", "3", addressOf("laser-mono"), ".1.3.6.1.2.1.1.5.0", "private");
    EXPECT_EQ(answer.status, 1);
    EXPECT_THAT(answer.output, HasSubstr("Unknown user name"));
}

TEST_F(ProgramAnswers, NothingWhereNoDeviceStands)
{
    const Ended answer = ask("snmpget", "2c", "127.77.0.2", ".1.3.6.1.2.1.1.5.0");
    EXPECT_EQ(answer.status, 1);
    EXPECT_THAT(answer.output, HasSubstr("Timeout")) << "silence, not a closed port";
}

TEST_F(ProgramAnswers, AsManyDevicesAsTheListSays)
{
    for (const std::string& line : linesOf(shell(PRINTER_LAB " --list").output)) {
        const auto device = nlohmann::json::parse(line);
        EXPECT_EQ(ask("snmpget", "1", device["ip"], ".1.3.6.1.2.1.1.3.0").status, 0) << line;
    }
}

class Program : public testing::Test {
protected:
    Program()
    {
        std::string pattern = testing::TempDir() + "lab-program-XXXXXX";
        _folder = ::mkdtemp(pattern.data());
    }
    ~Program() override { std::filesystem::remove_all(_folder); }

    std::string write(const std::string& name, const std::string& text) const
    {
        std::ofstream(_folder + "/" + name) << text;
        return _folder + "/" + name;
    }

    static Ended run(const std::vector<std::string>& arguments) { return RunningLab(arguments).waitForEnd(); }

    std::string _folder;
};

TEST_F(Program, AnnouncesItsFarm)
{
    RunningLab lab(with(freePort, {"--network", "127.80.0.0/16", "--devices", "2000", "--printers", "500"}));
    const std::string line = lab.waitUntilReady();
    EXPECT_EQ(line, "printer-lab: 127.80.0.0/16, UDP port " + std::to_string(lab.port()) +
                        ", 2000 devices, 500 of them printers");
}

TEST_F(Program, EndsWithSuccessOnASignal)
{
    for (const int number : {SIGINT, SIGTERM}) {
        RunningLab lab(freePort);
        lab.waitUntilReady();
        lab.signal(number);
        EXPECT_EQ(lab.waitForEnd().status, 0);
    }
}

TEST_F(Program, EndsWhenItsInputCloses)
{
    RunningLab lab({"--port", "0", "--until-stdin-closes"});
    lab.waitUntilReady();
    lab.closeInput();
    EXPECT_EQ(lab.waitForEnd().status, 0);
}

TEST_F(Program, StaysWhenItsInputClosesUnlessToldOtherwise)
{
    RunningLab lab({"--port", "0", "--idle-exit", "60"});
    lab.waitUntilReady();
    lab.closeInput();
    EXPECT_EQ(shell("MIBS= snmpget -v1 -c public -t 5 -r 0 127.77.0.1:" + std::to_string(lab.port()) +
                    " .1.3.6.1.2.1.1.3.0 2>&1")
                  .status,
              0);
    lab.signal(SIGTERM);
    EXPECT_EQ(lab.waitForEnd().status, 0);
}

TEST_F(Program, EndsAfterATimeWithoutRequests)
{
    EXPECT_EQ(run({"--port", "0", "--idle-exit", "1"}).status, 0);
}

TEST_F(Program, CountsRequestsAndAnswers)
{
    RunningLab lab(with(freePort, {"--stats", "--community", "secret"}));
    lab.waitUntilReady();
    for (const char* community : {"secret", "public"})
        shell("MIBS= snmpget -v1 -r 0 -t 1 -c " + std::string(community) + " 127.77.0.1:" + std::to_string(lab.port()) +
              " .1.3.6.1.2.1.1.3.0 2>&1");
    lab.closeInput();
    EXPECT_EQ(lab.waitForEnd().errors, "printer-lab: 2 requests, 1 answers, 0 dropped\n");
}

TEST_F(Program, RefusesAPortInUse)
{
    RunningLab lab(freePort);
    lab.waitUntilReady();
    const std::string port = std::to_string(lab.port());
    const Ended second = run({"--port", port});
    EXPECT_EQ(second.status, 1);
    EXPECT_EQ(second.errors, "printer-lab: cannot open UDP port " + port + ": Address already in use\n");
}

TEST_F(Program, NamesWrongInputAndEndsWithStatus2)
{
    const Ended network = run({"--network", "10.0.0.0/24"});
    EXPECT_EQ(network.status, 2);
    EXPECT_EQ(network.errors, "printer-lab: expected a network within 127.0.0.0/8 such as 127.77.0.0/24, found "
                              "\"10.0.0.0/24\"\n");
    const std::string file = write("plan", "127.0.0.1 nothing-known");
    const Ended plan = run({"--plan", file});
    EXPECT_EQ(plan.status, 2);
    EXPECT_THAT(plan.errors, testing::StartsWith("printer-lab: " + file + ":1: expected a profile out of "));
    EXPECT_EQ(run({"--plan", _folder + "/missing"}).errors,
              "printer-lab: " + _folder + "/missing: expected a file that can be read\n");
    EXPECT_EQ(run({"--frobnicate"}).status, 2);
}

TEST_F(Program, ServesAPlanOfOnesOwnProfiles)
{
    write("mine.snmprec", "1.3.6.1.2.1.1.5.0|4|my device\n");
    const std::string plan = write("plan", "127.99.1.2 mine\n");
    RunningLab lab(with(freePort, {"--profiles", _folder.c_str(), "--plan", plan.c_str()}));
    EXPECT_THAT(lab.waitUntilReady(), HasSubstr("plan " + plan));
    EXPECT_THAT(shell("MIBS= snmpwalk -v2c -c public -Onq 127.99.1.2:" + std::to_string(lab.port()) + " .1").output,
                testing::StartsWith(".1.3.6.1.2.1.1.5.0 \"my device\"\n"));
}

TEST_F(Program, HasHostileDevicesWhereAPlanNamesThem)
{
    EXPECT_THAT(run({"--list"}).output, testing::Not(HasSubstr("hostile")));
    const std::string file = write("plan", "127.99.1.2 error-status-5\n127.99.1.3 laser-mono\n");
    const std::vector<std::string> lines = linesOf(run({"--plan", file, "--list", "--verbatim"}).output);
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_EQ(lines[0], R"({"ip":"127.99.1.2","profile":"error-status-5","printer":true,"hostile":true,)"
                        R"("name":"Halvorsen LP-3120dn","mac":["02-1A-01-00-00-01"],"sn":"HLP31K20417"})");
    EXPECT_THAT(lines[1], testing::Not(HasSubstr("hostile")));
    RunningLab lab(with(freePort, {"--plan", file.c_str()}));
    lab.waitUntilReady();
    for (const auto& [address, answer] : {std::pair("127.99.1.2", "genError"), std::pair("127.99.1.3", "lp-3120")})
        EXPECT_THAT(shell("MIBS= snmpget -v2c -c public -Onq " + std::string(address) + ":" +
                          std::to_string(lab.port()) + " .1.3.6.1.2.1.1.5.0 2>&1")
                        .output,
                    HasSubstr(answer));
}

TEST_F(Program, HoldsTheProfilesOfTheSourceTree)
{
    const std::string builtIn = shell(PRINTER_LAB " --list").output;
    EXPECT_EQ(shell(PRINTER_LAB " --list --profiles " LAB_PROFILES).output, builtIn);
    EXPECT_THAT(builtIn, HasSubstr("laser-mono"));
}

} // namespace
} // namespace Lab
