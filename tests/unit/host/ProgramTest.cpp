/// The built program as a user or a script meets it.
#include "host/DisplayText.h"
#include "tests/unit/host/Process.h"
#include "tests/unit/host/SilentAgent.h"
#include "tests/unit/host/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

namespace Host {
namespace {

using Json = nlohmann::ordered_json;
using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

class TheProgram : public testing::Test {
protected:
    TemporaryFolder folder;

    /// The program with a configuration folder of the test's own.
    Process::Options quiet() const
    {
        return {{"XDG_CONFIG_HOME=" + folder.file("config"), "HOME=" + folder.file("home")}, false, false, {}};
    }

    static std::vector<std::string> command(std::vector<std::string> arguments)
    {
        arguments.insert(arguments.begin(), underTest(HOST_PROGRAM));
        return arguments;
    }

    struct Ended {
        int status;
        std::string output;
        std::string errors;
    };

    Ended run(const std::vector<std::string>& arguments, const Process::Options& options)
    {
        Process process(command(arguments), options);
        const int status = process.wait();
        return {status, process.output(), process.errors()};
    }

    Ended run(const std::vector<std::string>& arguments) { return run(arguments, quiet()); }

    /// One address whose probe takes minutes.
    std::vector<std::string> patientSweep(const SilentAgent& agent)
    {
        return command({"discover", "127.78.0.1", "--port", agent.port(), "-t", "30", "-r", "9", "--format", "json",
                        "--no-names"});
    }

    void expectWhatItHasOn(int signal)
    {
        const SilentAgent agent({"127.78.0.1"});
        Process process(patientSweep(agent), quiet());
        ASSERT_TRUE(agent.waitForRequest());
        process.signal(signal);
        EXPECT_EQ(process.wait(), 130);
        EXPECT_EQ(process.output(), "{\"step\":0,\"total\":1,\"state\":2,\"printers\":[],\"interrupted\":true}\n");
        EXPECT_EQ(process.errors(), "1 address to probe\n1 address: 1 not probed\n");
    }

    static std::string startDocument(const std::string& cookie, const std::string& port)
    {
        return R"({"cookie":")" + cookie +
               R"(","config":{"usePing":false,"pingTimeout":500,"snmpTimeout":500,)"
               R"("includeRanges":[{"from":"127.78.0.1","to":"127.78.0.1"}],"excludeRanges":[],)"
               R"("snmpProfile":{"snmpVersion":2,"snmpPort":)" +
               port + R"(,"communityRead":"public","communityWrite":""}}})";
    }

    static std::string contentOf(const std::string& path)
    {
        std::ifstream file(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    static void say(const Process& process, int id, const std::string& operation, const std::string& params)
    {
        process.write(R"({"jsonrpc":"2.0","id":)" + std::to_string(id) + R"(,"method":"PrinterDiscovery.)" + operation +
                      R"(","params":)" + params + "}\n");
    }
};

TEST_F(TheProgram, ShowsHelpAndVersion)
{
    const Ended help = run({"--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_THAT(help.output, HasSubstr("Examples:"));
    EXPECT_THAT(help.errors, IsEmpty());
    EXPECT_EQ(run({"--version"}).status, 0);
    EXPECT_EQ(run({"discover", "--help"}).status, 0);
}

TEST_F(TheProgram, EndsWith2AndNamesWhatIsWrongBeforeAnythingIsLoaded)
{
    const std::vector<std::pair<std::vector<std::string>, std::string>> wrong = {
        {{}, "discover, serve or settings"},
        {{"discover"}, "TARGET"},
        {{"discover", "10.0.0.9-10.0.0.1"}, "\"10.0.0.9-10.0.0.1\" is reversed"},
        {{"discover", "10.0.1.0"}, "\"10.0.1.0\" holds no address to probe"},
        {{"discover", "127.0.0.1", "--plugin", "/nonexistent", "--port", "0"}, "--port"},
        {{"discover", "127.0.0.1", "--frob"}, "--frob"},
        {{"discover", "127.0.0.1", "-v", "3"}, "-u"},
        {{"serve"}, "--stdio"},
        {{"settings", "get", "no.such.key"}, "no.such.key"},
        {{"settings", "set", "host.snmp.retries", "many"}, "host.snmp.retries"},
    };
    for (const auto& [arguments, named] : wrong) {
        const Ended ended = run(arguments);
        EXPECT_EQ(ended.status, 2) << named;
        EXPECT_THAT(ended.errors, AllOf(HasSubstr("printer-discovery: "), HasSubstr(named)));
        EXPECT_THAT(ended.output, IsEmpty());
    }
}

TEST_F(TheProgram, EndsWith1WhenThereIsNoPlugin)
{
    const Ended absent = run({"discover", "127.0.0.1", "--plugin", "/nonexistent.so"});
    EXPECT_EQ(absent.status, 1);
    EXPECT_THAT(absent.errors, HasSubstr("/nonexistent.so"));
    const Ended other = run({"discover", "127.0.0.1", "--plugin", folder.write("text.so", "no library")});
    EXPECT_EQ(other.status, 1);
    EXPECT_THAT(other.output, IsEmpty());
}

TEST_F(TheProgram, EndsWith1WhenTheDataStoreIsNone)
{
    const std::string store = folder.write("settings.db", "this is no database, whatever its name may say about it");
    for (const auto& arguments : {std::vector<std::string>{"discover", "127.0.0.1", "--data-store", store},
                                  {"serve", "--stdio", "--data-store", store},
                                  {"settings", "list", "--data-store", store}}) {
        const Ended ended = run(arguments);
        EXPECT_EQ(ended.status, 1);
        EXPECT_THAT(ended.errors, HasSubstr(store));
    }
}

TEST_F(TheProgram, FindingNothingIsADocumentWithCountsAndAdviceBesideIt)
{
    const std::string port = closedPort();
    const Ended ended =
        run({"discover", "127.78.0.1-127.78.0.3", "--exclude", "127.78.0.2", "--port", port, "--format", "json"});
    EXPECT_EQ(ended.status, 0);
    EXPECT_EQ(ended.output, "{\"step\":2,\"total\":2,\"state\":1,\"printers\":[]}\n");
    EXPECT_EQ(ended.errors, "2 addresses to probe\n2 addresses: 2 port closed\n2 hosts have UDP port " + port +
                                " closed: SNMP is switched off there, or listens at another port.\n");
}

TEST_F(TheProgram, WritesWhatBecameOfEachAddressForItsOwnerAlone)
{
    const std::string path = folder.write("outcomes.csv", "of an earlier run", std::filesystem::perms(0644));
    const Ended ended = run({"discover", "127.78.0.1-2", "--port", closedPort(), "--outcomes", path, "-q"});
    EXPECT_EQ(ended.status, 0);
    EXPECT_EQ(ended.errors, "");
    EXPECT_EQ(contentOf(path), "ip,outcome,problem\r\n127.78.0.1,portClosed,\r\n127.78.0.2,portClosed,\r\n");
    EXPECT_EQ(std::filesystem::status(path).permissions(), std::filesystem::perms(0600));
}

TEST_F(TheProgram, WritesTheOutcomesOfAnInterruptedRun)
{
    const SilentAgent agent({"127.78.0.1"});
    const std::string path = folder.file("outcomes.csv");
    auto arguments = patientSweep(agent);
    arguments.insert(arguments.end(), {"127.78.0.2", "--outcomes", path});
    Process process(arguments, quiet());
    ASSERT_TRUE(agent.waitForRequest());
    process.signal(SIGINT);
    EXPECT_EQ(process.wait(), 130);
    EXPECT_THAT(process.errors(), EndsWith("not probed\n")) << "no advice on what was not finished";
    EXPECT_THAT(contentOf(path), AllOf(StartsWith("ip,outcome,problem\r\n"), Not(HasSubstr("127.78.0.1,"))))
        << "what was not reached is left out";
}

TEST_F(TheProgram, RefusesOutcomesThatItCannotWriteBeforeItSweeps)
{
    const SilentAgent agent({"127.78.0.1"});
    for (const std::string& path :
         {folder.file("absent/o.csv"), folder.file("o.txt"), folder.file("o"), std::string("csv")}) {
        const Ended ended = run({"discover", "127.78.0.1", "--port", agent.port(), "--outcomes", path});
        EXPECT_EQ(ended.status, 2) << path;
        EXPECT_THAT(ended.errors, HasSubstr("--outcomes")) << path;
    }
    EXPECT_FALSE(std::filesystem::exists(folder.file("o.txt")));
}

TEST_F(TheProgram, MakesNoOutcomesInADryRun)
{
    const std::string path = folder.file("outcomes.csv");
    EXPECT_EQ(run({"discover", "127.78.0.1", "--dry-run", "--outcomes", path}).status, 0);
    EXPECT_FALSE(std::filesystem::exists(path));
}

TEST_F(TheProgram, ARunOfNoAddressesFinishes)
{
    const Ended ended = run({"discover", "127.78.0.1", "--exclude", "127.78.0.0/24", "--format", "json"});
    EXPECT_EQ(ended.status, 0);
    EXPECT_EQ(ended.output, "{\"step\":0,\"total\":0,\"state\":1,\"printers\":[]}\n");
}

TEST_F(TheProgram, PaintsProgressOnATerminalAndTheResultOnStandardOutput)
{
    const SilentAgent agent({"127.78.0.1"});
    Process::Options options = quiet();
    options.terminal = true;
    const Ended ended = run({"discover", "127.78.0.1", "--port", agent.port(), "-t", "0.5", "-r", "0"}, options);
    EXPECT_EQ(ended.status, 0);
    EXPECT_EQ(ended.output, "ADDRESS  NAME  SERIAL  MAC  HOST NAME\n");
    EXPECT_THAT(ended.errors, AllOf(HasSubstr("\r0 of 1 probed, 0 printers found, 0:00"),
                                    HasSubstr("1 of 1 addresses probed, 0 printers found in ")));
}

TEST_F(TheProgram, SaysThatATableOnATerminalWithoutEscapeSequencesIsPlain)
{
    const std::string note = "this terminal takes no escape sequences: the table has no colours";
    const auto errors = [this](const std::vector<std::string>& environment, const std::vector<std::string>& more) {
        Process::Options options = quiet();
        options.outputTerminal = true;
        options.environment.insert(options.environment.end(), environment.begin(), environment.end());
        std::vector<std::string> arguments = {"discover", "127.78.0.1", "--exclude", "127.78.0.1"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return run(arguments, options).errors;
    };
    EXPECT_THAT(errors({"TERM=dumb"}, {}), HasSubstr(note));
    EXPECT_THAT(errors({"TERM=xterm"}, {}), Not(HasSubstr(note)));
    EXPECT_THAT(errors({"TERM=dumb", "NO_COLOR=1"}, {}), Not(HasSubstr(note)));
    EXPECT_THAT(errors({"TERM=dumb"}, {"--format", "json"}), Not(HasSubstr(note)));
    EXPECT_THAT(errors({"TERM=dumb"}, {"--quiet"}), Not(HasSubstr(note)));
}

TEST_F(TheProgram, AnInterruptedRunPrintsWhatItHasWithoutWaitingForProbes)
{
    expectWhatItHasOn(SIGINT);
}

TEST_F(TheProgram, ATerminatedRunPrintsItToo)
{
    expectWhatItHasOn(SIGTERM);
}

TEST_F(TheProgram, LeavesAtOnceWhenInterruptedTwice)
{
    const SilentAgent agent({"127.78.0.1"});
    Process process(patientSweep(agent), quiet());
    ASSERT_TRUE(agent.waitForRequest());
    process.signal(SIGINT);
    std::this_thread::sleep_for(std::chrono::milliseconds(200)); // two at once would count as one
    process.signal(SIGINT);
    EXPECT_EQ(process.wait(), 130);
    EXPECT_EQ(process.output(), "");
}

TEST_F(TheProgram, HidesSecretsFromTheProcessList)
{
    const SilentAgent agent({"127.78.0.1"});
    auto arguments = patientSweep(agent);
    for (const char* argument : {"-v3", "-uadmin", "-lauthPriv", "-aSHA", "-A", "authentic", "-xAES", "-Xprivately"})
        arguments.emplace_back(argument);
    Process process(arguments, quiet());
    ASSERT_TRUE(agent.waitForRequest());
    EXPECT_THAT(process.shownCommandLine(),
                AllOf(HasSubstr("127.78.0.1"), Not(HasSubstr("authentic")), Not(HasSubstr("privately"))));
}

TEST_F(TheProgram, TakesSecretsFromTheEnvironment)
{
    const std::vector<std::string> arguments = {"discover", "127.78.0.1", "--port", closedPort(), "-v", "3",
                                                "-u",       "admin",      "-a",     "SHA",        "-x", "AES"};
    EXPECT_EQ(run(arguments).status, 2);
    Process::Options options = quiet();
    options.environment.push_back("PRINTER_DISCOVERY_AUTH_PASSWORD=authentic");
    options.environment.push_back("PRINTER_DISCOVERY_PRIV_PASSWORD=privately");
    EXPECT_EQ(run(arguments, options).status, 0);
}

TEST_F(TheProgram, RefusesSecretFilesThatOthersCanRead)
{
    const std::string path = folder.write("community", "s3cret\n", std::filesystem::perms(0644));
    const Ended ended = run({"discover", "127.78.0.1", "--community-file", path});
    EXPECT_EQ(ended.status, 2);
    EXPECT_THAT(ended.errors, AllOf(HasSubstr(path), HasSubstr("chmod 600"), Not(HasSubstr("s3cret"))));
}

TEST_F(TheProgram, DoesNotOverlookAFailureToWrite)
{
    Process::Options options = quiet();
    options.outputFile = "/dev/full";
    for (const auto& arguments : {std::vector<std::string>{"discover", "127.78.0.1", "--port", closedPort()},
                                  {"settings", "list"},
                                  {"--help"}}) {
        const Ended ended = run(arguments, options);
        EXPECT_EQ(ended.status, 1);
        EXPECT_THAT(ended.errors, HasSubstr("standard output"));
    }
}

TEST_F(TheProgram, KeepsSettingsInTheUsersFolderForTheUserAlone)
{
    EXPECT_EQ(run({"settings", "get", "host.snmp.timeout"}).output, "1\n");
    EXPECT_EQ(run({"settings", "set", "host.snmp.timeout", "2.5"}).status, 0);
    EXPECT_EQ(run({"settings", "get", "host.snmp.timeout"}).output, "2.5\n");
    namespace fs = std::filesystem;
    const fs::path kept = folder.file("config/printer-discovery");
    EXPECT_EQ(fs::status(kept).permissions(), fs::perms(0700));
    EXPECT_EQ(fs::status(kept / "settings.db").permissions(), fs::perms(0600));
    EXPECT_EQ(run({"settings", "unset", "host.snmp.timeout"}).status, 0);
    EXPECT_EQ(run({"settings", "get", "host.snmp.timeout"}).output, "1\n");
}

TEST_F(TheProgram, ServesStatusWhileABlockingStartIsUnderWay)
{
    run({"settings", "set", "host.snmp.timeout", "1"});
    run({"settings", "set", "host.snmp.retries", "9"});
    const SilentAgent agent({"127.78.0.1"});
    Process process(command({"serve", "--stdio"}), quiet());
    say(process, 1, "startDiscoveryBlocking", startDocument("c", agent.port()));
    ASSERT_TRUE(agent.waitForRequest());
    for (int id = 2; id < 5; ++id) {
        say(process, id, "getStatus", R"({"cookie":"c","firstIdx":0})");
        EXPECT_EQ(process.line(),
                  R"({"jsonrpc":"2.0","result":{"step":0,"total":1,"state":2,"cookie":"c","printers":[]},"id":)" +
                      std::to_string(id) + "}");
    }
    process.closeInput();
    EXPECT_EQ(process.line(), R"({"jsonrpc":"2.0","result":{"success":true},"id":1})");
    EXPECT_EQ(process.wait(), 0);
    EXPECT_EQ(process.output() + process.errors(), "");
}

TEST_F(TheProgram, ServesErrorsAsJsonRpcErrors)
{
    Process process(command({"serve", "--stdio"}), quiet());
    say(process, 1, "getStatus", R"({"cookie":"c"})");
    const Json failed = Json::parse(process.line());
    EXPECT_EQ(failed["error"]["code"], -32000);
    EXPECT_EQ(failed["error"]["message"], failed["error"]["data"]["message"]);
    EXPECT_EQ(failed["error"]["data"]["code"], "internalServerError");
    EXPECT_EQ(failed["error"]["data"]["operation"], (Json{{"service", ""}, {"operation", ""}, {"params", nullptr}}));
    say(process, 2, "frobnicate", "{}");
    EXPECT_EQ(Json::parse(process.line())["error"]["code"], -32601);
    process.write("{\"s3cret\n");
    EXPECT_THAT(process.line(), AllOf(HasSubstr("-32700"), Not(HasSubstr("s3cret"))));
    process.write(std::string(17 * 1024 * 1024, 'x') + "\n");
    EXPECT_THAT(process.line(), AllOf(HasSubstr("-32600"), HasSubstr("16777216")));
    say(process, 3, "getServiceConfig", "{}");
    EXPECT_EQ(Json::parse(process.line())["result"]["state"], "started");
    EXPECT_EQ(process.wait(), 0);
}

TEST_F(TheProgram, ServesUntilItIsTerminated)
{
    const SilentAgent agent({"127.78.0.1"});
    run({"settings", "set", "host.snmp.timeout", "60"});
    Process process(command({"serve", "--stdio"}), quiet());
    say(process, 1, "startDiscoveryBlocking", startDocument("c", agent.port()));
    ASSERT_TRUE(agent.waitForRequest());
    process.signal(SIGTERM);
    EXPECT_EQ(process.wait(), 130);
}

TEST_F(TheProgram, CanBeInterruptedAfterTheEndOfInput)
{
    const SilentAgent agent({"127.78.0.1"});
    run({"settings", "set", "host.snmp.timeout", "60"});
    Process process(command({"serve", "--stdio"}), quiet());
    say(process, 1, "startDiscoveryBlocking", startDocument("c", agent.port()));
    ASSERT_TRUE(agent.waitForRequest());
    process.closeInput();
    std::this_thread::sleep_for(std::chrono::milliseconds(300)); // the end of input comes before the signal
    process.signal(SIGINT);
    EXPECT_EQ(process.wait(), 130);
}

TEST_F(TheProgram, DryRunsPrintWhatWouldBeSweptAndDoNothing)
{
    const Ended ended =
        run({"discover", "127.78.0-1.1-9", "--exclude", "127.78.0.5", "--dry-run", "--plugin", "/nonexistent"});
    EXPECT_EQ(ended.status, 0);
    EXPECT_EQ(ended.output,
              "127.78.0.1-127.78.0.4\n127.78.0.6-127.78.0.9\n127.78.1.1-127.78.1.9\n# 17 addresses to probe\n");
    EXPECT_EQ(ended.errors, "");
    EXPECT_EQ(run({"discover", "127.78.0.1", "--dry-run", "-v3"}).status, 2) << "what is wrong is refused";
}

TEST_F(TheProgram, SaysNothingOnStandardErrorWhenQuiet)
{
    const SilentAgent agent({"127.78.0.1"});
    Process::Options options = quiet();
    options.terminal = true;
    const Ended ended = run({"discover", "127.78.0.1", "-q", "--port", agent.port(), "-t", "0.1", "-r", "0"}, options);
    EXPECT_EQ(ended.status, 0);
    EXPECT_EQ(ended.errors, "");
}

TEST_F(TheProgram, ReadsTargetsFromStandardInput)
{
    Process process(command({"discover", "-", "--dry-run"}), quiet());
    process.write("127.78.0.1 # one\n127.78.0.7,9\n");
    process.closeInput();
    EXPECT_EQ(process.wait(), 0);
    EXPECT_EQ(process.output(), "127.78.0.1\n127.78.0.7\n127.78.0.9\n# 3 addresses to probe\n");
}

TEST_F(TheProgram, HidesSecretsBeforeItReadsTargets)
{
    Process process(command({"discover", "-", "-v3", "-uadmin", "-aSHA", "-Aauthentic"}), quiet());
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (process.shownCommandLine().find("-A*") == std::string::npos && std::chrono::steady_clock::now() < deadline)
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    EXPECT_THAT(process.shownCommandLine(), AllOf(HasSubstr("-A*********"), Not(HasSubstr("authentic"))));
    process.closeInput();
    EXPECT_EQ(process.wait(), 2);
    EXPECT_THAT(process.errors(), AllOf(HasSubstr("no target"), Not(HasSubstr("authentic"))));
}

TEST_F(TheProgram, RefusesACredentialsFileThatOthersCanRead)
{
    const std::string path = folder.write("credentials", "[a]\ncommunity = s3cret\n", std::filesystem::perms(0640));
    const Ended ended = run({"discover", "127.78.0.1", "--credentials", path});
    EXPECT_EQ(ended.status, 2);
    EXPECT_THAT(ended.errors, AllOf(HasSubstr(path), HasSubstr("chmod 600"), Not(HasSubstr("s3cret"))));
}

TEST_F(TheProgram, TakesDefaultsFromTheConfigurationOfTheSnmpTools)
{
    std::filesystem::create_directories(folder.file("home/.snmp"));
    folder.write("home/.snmp/snmp.conf", "defVersion 3\ndefSecurityName admin\ndefAuthType SHA-999\n");
    const Ended refused = run({"discover", "127.78.0.1", "--dry-run"});
    EXPECT_EQ(refused.status, 2);
    EXPECT_THAT(refused.errors, HasSubstr("defAuthType of " + folder.file("home/.snmp/snmp.conf")));
    EXPECT_EQ(run({"discover", "127.78.0.1", "--dry-run", "-v", "2c"}).status, 0);
    EXPECT_EQ(run({"discover", "127.78.0.1", "--dry-run", "-l", "noAuthNoPriv"}).status, 0);
}

/// A secret of which no four bytes in a row occur anywhere else.
constexpr const char* Secret = "qZ7xW2kV9jQ4";

MATCHER(KeepsTheSecret, "")
{
    const std::string secret = Secret;
    for (std::size_t at = 0; at + 4 <= secret.size(); ++at)
        if (std::string_view(arg).find(secret.substr(at, 4)) != std::string_view::npos)
            return false;
    return true;
}

TEST_F(TheProgram, RepeatsNoSecretWhenTheCommandLineIsWrong)
{
    const std::string secret = Secret;
    const std::vector<std::vector<std::string>> wrong = {
        {"--comunity=" + secret},
        {"-P" + secret},
        {"-q" + secret},
        {"-q=" + secret},
        {"-c", secret, "-c", secret},
        {"-c", secret, "--community-file", "file"},
        {"-c", secret, "--credentials", "file"},
        {"-c", secret, "--port", "0"},
        {"-c", secret, "-v", "4"},
        {"-c", secret, "-v", "3", "-u", "admin"},
        {"-c", secret + "\xff"},
        {"-c", secret, "-A"},
        {"-A", secret},
        {"-v", "3", "-A", secret},
        {"-v", "3", "-u", "admin", "-A", secret},
        {"-v", "3", "-u", "admin", "-a", "SHA", "-A", secret.substr(0, 7)},
        {"-v", "3", "-u", "admin", "-a", "SHA", "-A", secret, "-X", secret},
        {"-v", "3", "-u", "admin", "-a", "SHA", "-A", secret, "-x", "AES", "-X", secret.substr(0, 7)},
        {"-v", "3", "-u", "admin", "-a", "SHA-9", "-A", secret, "-x", "AES", "-X", secret},
        {"-v", "3", "-u", "admin", "-a", "SHA", "-A", secret, "-x", "AES", "-X", secret + "\xff"},
    };
    for (std::vector<std::string> arguments : wrong) {
        arguments.insert(arguments.begin(), {"discover", "127.78.0.1", "--plugin", PLUGIN_LIBRARY});
        const Ended ended = run(arguments);
        EXPECT_EQ(ended.status, 2) << ended.errors;
        EXPECT_THAT(ended.errors, AllOf(HasSubstr("printer-discovery: "), KeepsTheSecret()));
        EXPECT_EQ(ended.output, "");
    }
    EXPECT_THAT(run({"serve", "--stdio", "-c", secret}).errors, AllOf(HasSubstr("-c"), KeepsTheSecret()));
    EXPECT_THAT(run({"settings", "list", "--community=" + secret}).errors,
                AllOf(HasSubstr("--community"), KeepsTheSecret()));
}

TEST_F(TheProgram, RepeatsNoSecretOfACredentialsFile)
{
    const std::string secret = Secret;
    for (const std::string& content :
         {secret, secret + "\n[a]\n", "community = " + secret, "[a]\n" + secret, "[a]\n" + secret + " = community",
          "[a]\ncomunity = " + secret, "[a]\ncommunity = " + secret + "\ncommunity = " + secret,
          "[a]\ncommunity = " + secret + "\nuser = admin", "[a]\ncommunity = " + secret + "\nversion = 4",
          "[a]\ncommunity = " + secret + "\xff\n", "[a]\ncommunity = " + secret + std::string(1, '\0'),
          "[a]\ncommunity = " + secret + "\n[a]\n", "[a]\nauth-password = " + secret,
          "[a]\nuser = u\nauth-password = " + secret,
          "[a]\nuser = u\nauth-protocol = SHA\nauth-password = " + secret.substr(0, 7),
          "[a]\nuser = u\nauth-protocol = SHA\nauth-password = " + secret + "\npriv-password = " + secret,
          "[a]\ncommunity = " + secret + '\n' + std::string(70'000, '#')}) {
        const Ended ended = run({"discover", "127.78.0.1", "--credentials", folder.write("credentials", content)});
        EXPECT_EQ(ended.status, 2) << content;
        EXPECT_THAT(ended.errors, AllOf(HasSubstr("printer-discovery: "), KeepsTheSecret()));
        EXPECT_EQ(ended.output, "");
    }
}

/// Default credentials in the user's own file of the net-snmp tools.
class TheProgramAndSnmpConf : public TheProgram {
protected:
    std::string write(const std::string& content, std::filesystem::perms perms = std::filesystem::perms(0600))
    {
        std::filesystem::create_directories(folder.file("home/.snmp"));
        return folder.write("home/.snmp/snmp.conf", content, perms);
    }

    Ended dryRun(std::vector<std::string> more = {})
    {
        more.insert(more.begin(), {"discover", "127.78.0.1", "--dry-run"});
        return run(more);
    }
};

TEST_F(TheProgramAndSnmpConf, RepeatNoSecret)
{
    const std::string secret = Secret;
    const std::string admin = "defVersion 3\ndefSecurityName admin\ndefAuthType SHA\n";
    for (const std::string& content :
         {admin + "defAuthPassphrase " + secret.substr(0, 7), admin + "defPassphrase \"" + secret.substr(0, 7),
          admin + "defPrivType AES-9\ndefPassphrase " + secret,
          admin + "defPrivType AES\ndefAuthPassphrase " + secret + "\ndefPrivPassphrase " + secret.substr(0, 7),
          "defVersion 4\ndefCommunity " + secret}) {
        write(content);
        const Ended ended = dryRun();
        EXPECT_EQ(ended.status, 2) << content;
        EXPECT_THAT(ended.errors, AllOf(HasSubstr("snmp.conf"), KeepsTheSecret()));
    }
    write(secret + "\n[" + secret + "\ndefCommunity " + secret + '"');
    const Ended ended = dryRun();
    EXPECT_EQ(ended.status, 0);
    EXPECT_THAT(ended.output + ended.errors, KeepsTheSecret());
}

TEST_F(TheProgramAndSnmpConf, GiveNoSecretThatOthersCanRead)
{
    const std::string secret = Secret;
    const std::string admin = "defSecurityName admin\ndefAuthType SHA\ndefPrivType AES\ndefVersion ";
    for (const auto& [content, directive] : {std::pair{"defCommunity " + secret, "defCommunity"},
                                             {"defAuthPassphrase " + secret + "\n" + admin + "3", "defAuthPassphrase"},
                                             {"defPassphrase " + secret + "\n" + admin + "3", "defPassphrase"}}) {
        for (const int mode : {0644, 0640, 0602}) {
            const std::string path = write(content, std::filesystem::perms(mode));
            const Ended ended = dryRun();
            EXPECT_EQ(ended.status, 2) << content;
            EXPECT_THAT(ended.errors,
                        AllOf(HasSubstr(directive + (" of " + path)), HasSubstr("chmod 600"), KeepsTheSecret()));
            EXPECT_EQ(dryRun({"-v", "2c", "-c", "other"}).status, 0) << "it is not used";
        }
        write(content);
        EXPECT_EQ(dryRun().status, directive == std::string("defAuthPassphrase") ? 2 : 0) << "no other passphrase";
    }
    write("defCommunity public\ndefVersion 1\n", std::filesystem::perms(0644));
    EXPECT_EQ(dryRun().status, 0) << "no secret in it";
}

TEST_F(TheProgram, HidesACommunityFromTheProcessListHoweverItIsGiven)
{
    const std::string secret = Secret;
    for (const std::vector<std::string>& given : {std::vector<std::string>{"-c", secret},
                                                  {"-c" + secret},
                                                  {"--community", secret},
                                                  {"--community=" + secret}}) {
        const SilentAgent agent({"127.78.0.1"});
        auto arguments = patientSweep(agent);
        arguments.insert(arguments.end(), given.begin(), given.end());
        Process process(arguments, quiet());
        ASSERT_TRUE(agent.waitForRequest());
        EXPECT_THAT(process.shownCommandLine(), AllOf(HasSubstr("127.78.0.1"), HasSubstr("****"), KeepsTheSecret()));
    }
}

TEST_F(TheProgram, MakesFilesForTheirOwnerAloneWhateverTheUmask)
{
    const std::string store = folder.file("own.db");
    for (const char* arguments :
         {"settings set host.snmp.retries 1", "settings set host.snmp.retries 2 --data-store"}) {
        Process process({"/bin/sh", "-c",
                         "umask 0; exec " + underTest(HOST_PROGRAM) + ' ' + arguments +
                             (std::string(arguments).ends_with("--data-store") ? ' ' + store : "")},
                        quiet());
        EXPECT_EQ(process.wait(), 0) << process.errors();
    }
    std::size_t files = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder.file(""))) {
        if (entry.is_regular_file()) {
            ++files;
            EXPECT_EQ(entry.status().permissions(), std::filesystem::perms(0600)) << entry.path();
        }
    }
    EXPECT_GE(files, 2U);
}

/// The devices of the lab on an address block of this test's own.
class TheProgramAndTheLab : public TheProgram {
public:
    static std::string portOf(const std::string& announcement)
    {
        const std::string before = "UDP port ";
        const auto begin = announcement.find(before) + before.size();
        return announcement.substr(begin, announcement.find(',', begin) - begin);
    }

protected:
    static constexpr const char* Network = "127.79.0.0/24";

    Process lab{{underTest(LAB_PROGRAM), "--network", Network, "--port", "0", "--until-stdin-closes"}};
    std::string port = portOf(lab.line());

    void SetUp() override { ASSERT_EQ(lab.line(), "ready"); }

    /// What a discovery should report, by the lab's own account.
    static Json expectedPrinters()
    {
        Process list({underTest(LAB_PROGRAM), "--network", Network, "--list"});
        EXPECT_EQ(list.wait(), 0);
        Json printers = Json::array();
        std::istringstream lines(list.output());
        for (std::string line; std::getline(lines, line);) {
            const Json device = Json::parse(line);
            if (device["printer"])
                printers.push_back({{"hostname", ""},
                                    {"ip", device["ip"]},
                                    {"mac", device["mac"]},
                                    {"name", device["name"]},
                                    {"sn", device["sn"]}});
        }
        return printers;
    }

    Ended sweep(const std::string& format)
    {
        return run({"discover", Network, "--port", port, "-t", "1", "-r", "2", "--no-names", "--format", format});
    }
};

TEST_F(TheProgramAndTheLab, FindExactlyThePrinters)
{
    const Ended ended = sweep("json");
    EXPECT_EQ(ended.status, 0);
    const Json printers = expectedPrinters();
    EXPECT_GT(printers.size(), 5U);
    EXPECT_EQ(Json::parse(ended.output), (Json{{"step", 254}, {"total", 254}, {"state", 1}, {"printers", printers}}));
    EXPECT_EQ(ended.errors,
              "254 addresses to probe\n254 addresses: 14 printers, 4 other devices answered, 236 silent\n");
}

TEST_F(TheProgramAndTheLab, GiveALineForEachPrinter)
{
    const Json printers = expectedPrinters();
    for (const char* format : {"table", "csv"}) {
        const Ended ended = sweep(format);
        EXPECT_EQ(ended.status, 0);
        for (const Json& printer : printers)
            EXPECT_THAT(ended.output, AllOf(HasSubstr(printer["ip"].get<std::string>()),
                                            HasSubstr(printer["sn"].get<std::string>())));
        EXPECT_EQ(std::count(ended.output.begin(), ended.output.end(), '\n'), static_cast<long>(printers.size()) + 1);
    }
}

TEST_F(TheProgramAndTheLab, StreamALineForEachPrinterAndTheCountsAtTheEnd)
{
    const Json printers = expectedPrinters();
    const Ended ended =
        run({"discover", Network, "--port", port, "-t", "1", "-r", "2", "--no-names", "--stream", "-q"});
    EXPECT_EQ(ended.status, 0);
    EXPECT_EQ(ended.errors, "");
    std::vector<Json> lines;
    std::istringstream text(ended.output);
    for (std::string line; std::getline(text, line);)
        lines.push_back(Json::parse(line));
    ASSERT_EQ(lines.size(), printers.size() + 1);
    EXPECT_EQ(lines.back(), (Json{{"step", 254}, {"total", 254}, {"state", 1}, {"found", printers.size()}}));
    lines.pop_back();
    EXPECT_THAT(lines, testing::UnorderedElementsAreArray(printers.begin(), printers.end()));
}

TEST_F(TheProgramAndTheLab, StreamPrintersWhileTheRunGoesOn)
{
    Process process(command({"discover", Network, "--port", port, "-t", "30", "-r", "9", "--no-names", "--stream"}),
                    quiet());
    const Json expected = expectedPrinters();
    for (std::size_t i = 0; i < expected.size(); ++i)
        EXPECT_TRUE(Json::parse(process.line()).contains("ip"));
    process.signal(SIGINT);
    EXPECT_EQ(process.wait(), 130);
    const Json end = Json::parse(process.output());
    EXPECT_EQ(end["found"], expected.size());
    EXPECT_EQ(end["interrupted"], true);
}

TEST_F(TheProgramAndTheLab, LeaveAtOnceWhenNobodyReadsTheStreamAnyMore)
{
    Process process(command({"discover", Network, "--port", port, "-t", "60", "-r", "9", "--no-names", "--stream"}),
                    quiet());
    process.closeOutput();
    EXPECT_EQ(process.wait(), 1);
    EXPECT_THAT(process.errors(), HasSubstr("cannot write to standard output"));
}

TEST_F(TheProgramAndTheLab, CompareWithAnEarlierResult)
{
    Json earlier = Json::parse(sweep("json").output);
    Json& printers = earlier["printers"];
    ASSERT_GT(printers.size(), 5U);
    const auto withSerial =
        std::find_if(printers.begin(), printers.end(), [](const Json& each) { return each["sn"] != ""; });
    ASSERT_NE(withSerial, printers.end());
    const std::string movedTo = (*withSerial)["ip"];
    (*withSerial)["ip"] = "10.9.8.7";
    printers.push_back(
        {{"hostname", ""}, {"ip", "127.79.0.250"}, {"mac", Json::array()}, {"name", "Lost"}, {"sn", "LOST1"}});
    const std::string added = printers[0]["ip"] == "10.9.8.7" ? printers[1]["ip"] : printers[0]["ip"];
    printers.erase(printers[0]["ip"] == "10.9.8.7" ? 1 : 0);
    const std::string file = folder.write("earlier.json", earlier.dump());
    const std::vector<std::string> again = {"discover", Network, "--port",     port, "-t",     "1",
                                            "-r",       "2",     "--no-names", "-q", "--diff", file};

    const Ended table = run(again);
    EXPECT_EQ(table.status, 0);
    EXPECT_THAT(table.output, AllOf(HasSubstr("\n\nCompared with " + file + ": 1 new, 1 gone, 1 moved, 0 changed"),
                                    HasSubstr("\n+ " + added + "  "), HasSubstr("\n- 127.79.0.250  Lost  LOST1\n"),
                                    HasSubstr("\n> 10.9.8.7 -> " + movedTo + "  ")));
    std::vector<std::string> inJson = again;
    inJson.insert(inJson.end(), {"--format", "json"});
    const Json diff = Json::parse(run(inJson).output)["diff"];
    EXPECT_EQ(diff["new"].size(), 1U);
    EXPECT_EQ(diff["gone"][0]["sn"], "LOST1");
    EXPECT_EQ(diff["moved"], (Json::array({{{"from", "10.9.8.7"}, {"to", movedTo}}})));
    EXPECT_EQ(diff["changed"], Json::array());
    EXPECT_EQ(diff["same"], printers.size() - 2);
}

TEST_F(TheProgramAndTheLab, FitTheTableToTheTerminal)
{
    Process::Options options = quiet();
    options.outputTerminal = true;
    options.environment.emplace_back("TERM=xterm");
    const std::vector<std::string> arguments = {"discover", Network, "--port", port,        "-t",
                                                "1",        "-r",    "2",      "--no-names"};
    const std::string coloured = run(arguments, options).output;
    EXPECT_THAT(coloured, HasSubstr("\x1b[1mADDRESS"));
    options.environment.emplace_back("NO_COLOR=1");
    const std::string plain = run(arguments, options).output;
    EXPECT_THAT(plain, AllOf(Not(HasSubstr("\x1b")), HasSubstr("…")));
    std::istringstream lines(plain);
    std::size_t count = 0;
    for (std::string line; std::getline(lines, line); ++count)
        EXPECT_LE(displayWidth(line.substr(0, line.find('\r'))), 60U) << line;
    EXPECT_EQ(count, expectedPrinters().size() + 1);
}

/// The lab with a community that is not the default.
class TheProgramAndAPrivateLab : public TheProgram {
protected:
    static constexpr const char* Network = "127.81.0.0/24";

    Process lab{
        {underTest(LAB_PROGRAM), "--network", Network, "--port", "0", "--until-stdin-closes", "--community", "s3cond"}};
    std::string port = TheProgramAndTheLab::portOf(lab.line());

    void SetUp() override { ASSERT_EQ(lab.line(), "ready"); }

    Ended sweep(std::vector<std::string> more, const Process::Options& options)
    {
        more.insert(more.begin(),
                    {"discover", Network, "--port", port, "-t", "0.5", "-r", "1", "--no-names", "--format", "json"});
        return run(more, options);
    }

    static std::size_t found(const Ended& ended) { return Json::parse(ended.output)["printers"].size(); }
};

TEST_F(TheProgramAndAPrivateLab, TryEveryCredential)
{
    const std::string file = folder.write("credentials", "[first]\ncommunity = f1rst\n[second]\ncommunity = s3cond\n");
    const Ended ended = sweep({"--credentials", file}, quiet());
    EXPECT_EQ(ended.status, 0);
    EXPECT_EQ(ended.errors, "254 addresses to probe, with each of 2 credentials\n"
                            "254 addresses: 14 printers, 4 other devices answered, 236 silent\n");
    const Json result = Json::parse(ended.output);
    EXPECT_EQ(result["step"], 508);
    EXPECT_EQ(result["total"], 508);
    EXPECT_GT(result["printers"].size(), 5U);
    EXPECT_EQ(found(sweep({}, quiet())), 0U);
}

TEST_F(TheProgramAndAPrivateLab, TakeTheCommunityOfCommandLineEnvironmentAndConfigurationInThisOrder)
{
    std::filesystem::create_directories(folder.file("home/.snmp"));
    folder.write("home/.snmp/snmp.conf", "defCommunity s3cond\n");
    Process::Options options = quiet();
    EXPECT_GT(found(sweep({}, options)), 5U);
    options.environment.emplace_back("PRINTER_DISCOVERY_COMMUNITY=wrong");
    EXPECT_EQ(found(sweep({}, options)), 0U);
    EXPECT_GT(found(sweep({"-c", "s3cond"}, options)), 5U);
}

/// The lab with a secret for its community.
class TheProgramAndASecretLab : public TheProgram {
protected:
    static constexpr const char* Network = "127.81.0.0/24";

    Process lab{
        {underTest(LAB_PROGRAM), "--network", Network, "--port", "0", "--until-stdin-closes", "--community", Secret}};
    std::string port = TheProgramAndTheLab::portOf(lab.line());
    std::string settings = folder.file("settings.db");

    void SetUp() override
    {
        ASSERT_EQ(lab.line(), "ready");
        ASSERT_EQ(run({"settings", "set", "host.snmp.retries", "0", "--data-store", settings}).status, 0);
    }

    /// The settings file is there, is kept, and has taken nothing in.
    void TearDown() override
    {
        std::ifstream file(settings, std::ios::binary);
        const std::string kept{std::istreambuf_iterator<char>(file), {}};
        EXPECT_THAT(kept, AllOf(HasSubstr("host.snmp.retries"), KeepsTheSecret()));
    }

    void sweepInEveryForm(const std::vector<std::string>& credentials, const Process::Options& options)
    {
        for (const std::vector<std::string>& form : {std::vector<std::string>{"--format", "table"},
                                                     {"--format", "json"},
                                                     {"--format", "csv"},
                                                     {"--stream"},
                                                     {"--dry-run"},
                                                     {"--dry-run", "--format", "json"}}) {
            std::vector<std::string> arguments = {"discover", "127.81.0.1,15", "--port",       port,    "-t",
                                                  "0.3",      "--no-names",    "--data-store", settings};
            arguments.insert(arguments.end(), credentials.begin(), credentials.end());
            arguments.insert(arguments.end(), form.begin(), form.end());
            const Ended ended = run(arguments, options);
            EXPECT_EQ(ended.status, 0) << ended.errors;
            EXPECT_THAT(ended.output, AllOf(HasSubstr("127.81.0."), KeepsTheSecret()));
            EXPECT_THAT(ended.errors, KeepsTheSecret());
        }
    }
};

TEST_F(TheProgramAndASecretLab, KeepItOutOfEveryFormOfResult)
{
    const std::string secret = Secret;
    sweepInEveryForm({"-c", secret}, quiet());
    sweepInEveryForm({"--community-file", folder.write("community", secret)}, quiet());
    sweepInEveryForm({"--credentials", folder.write("credentials", "[a]\ncommunity = x\n[b]\ncommunity = " + secret)},
                     quiet());
    Process::Options environment = quiet();
    environment.environment.push_back("PRINTER_DISCOVERY_COMMUNITY=" + secret);
    environment.terminal = true;
    sweepInEveryForm({}, environment);
}

} // namespace
} // namespace Host
