/// The built program as a web console, with simulated printers behind it.
#include "tests/unit/host/Process.h"
#include "tests/unit/host/SilentAgent.h"
#include "tests/unit/host/TemporaryFolder.h"
#include "tests/unit/host/console/TestClient.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <chrono>
#include <csignal>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace Host {
namespace {

using namespace std::chrono_literals;
using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;
using Json = nlohmann::json;

constexpr const char* Secret = "0123456789abcdef";

class TheConsole : public testing::Test {
protected:
    TemporaryFolder folder;
    std::unique_ptr<Process> program;
    std::unique_ptr<TestClient> client;

    Process::Options options() const
    {
        Process::Options result;
        result.environment = {"XDG_CONFIG_HOME=" + folder.file("config"), "HOME=" + folder.file("home")};
        return result;
    }

    void serve(const std::vector<std::string>& more = {}, const std::string& address = "127.0.0.1:0")
    {
        serveWith(options(), more, address);
    }

    void serveWith(const Process::Options& processOptions, const std::vector<std::string>& more,
                   const std::string& address)
    {
        std::vector<std::string> command = {underTest(HOST_PROGRAM),   "serve", "--http", address, "--data-store",
                                            folder.file("settings.db")};
        command.insert(command.end(), more.begin(), more.end());
        program = std::make_unique<Process>(command, processOptions);
        program->waitForError("listening on http://");
        program->waitForError("/\n");
        client = std::make_unique<TestClient>(port());
    }

    std::uint16_t port() const
    {
        const std::string& told = program->errors();
        const std::size_t colon = told.rfind(':');
        return static_cast<std::uint16_t>(std::stoi(told.substr(colon + 1)));
    }

    Json get(const std::string& path) { return Json::parse(client->request("GET", path).body); }

    TestResponse post(const std::string& path, const Json& body) { return client->request("POST", path, body.dump()); }

    std::string start(const std::string& targets, const std::string& snmpPort)
    {
        const TestResponse response = post("/api/runs", {{"targets", targets}, {"port", std::stoi(snmpPort)}});
        EXPECT_EQ(response.status, 201) << response.body;
        return Json::parse(response.body).at("id");
    }

    Json ended(const std::string& id)
    {
        for (int i = 0; i < 600; ++i) {
            Json run = get("/api/runs/" + id);
            if (run.at("state") != "running" && run.at("state") != "stopping")
                return run;
            std::this_thread::sleep_for(100ms);
        }
        throw std::runtime_error("the run does not end");
    }

    /// A run of the console's and a blocking one of the procedure calls', whose probes wait.
    void serveWithMuchUnderWay(const SilentAgent& agent)
    {
        serve();
        start("127.83.0.1", agent.port());
        const std::string blocking =
            R"({"jsonrpc":"2.0","id":1,"method":"PrinterDiscovery.startDiscoveryBlocking","params":)"
            R"({"cookie":"c","config":{"usePing":false,"pingTimeout":1,"snmpTimeout":1,)"
            R"("includeRanges":[{"from":"127.83.0.1","to":"127.83.0.1"}],"excludeRanges":[],)"
            R"("snmpProfile":{"snmpVersion":2,"snmpPort":)" +
            agent.port() + R"(,"communityRead":"public","communityWrite":""}}}})";
        client->send("POST /rpc HTTP/1.1\r\nHost: 127.0.0.1:" + std::to_string(port()) +
                     "\r\nContent-Type: application/json\r\nContent-Length: " + std::to_string(blocking.size()) +
                     "\r\n\r\n" + blocking);
        ASSERT_TRUE(agent.waitForRequest());
    }

    /// Ends the program and gives its exit status.
    int end(int signal = SIGINT)
    {
        program->signal(signal);
        return program->wait();
    }

    /// The program's status and words when it does not even begin to serve.
    std::pair<int, std::string> refused(const std::vector<std::string>& arguments)
    {
        std::vector<std::string> command = {underTest(HOST_PROGRAM), "serve"};
        command.insert(command.end(), arguments.begin(), arguments.end());
        Process process(command, options());
        const int status = process.wait();
        return {status, process.errors()};
    }
};

/// A printer, a server, and addresses that do not answer.
class TheConsoleAndTheLab : public TheConsole {
protected:
    Process lab{{underTest(LAB_PROGRAM), "--port", "0", "--until-stdin-closes", "--plan",
                 folder.write("plan", "127.82.0.7 laser-mono\n127.82.0.8 server\n")}};
    std::string snmpPort;

    void SetUp() override
    {
        const std::string before = "UDP port ";
        const std::string announcement = lab.line();
        const auto begin = announcement.find(before) + before.size();
        snmpPort = announcement.substr(begin, announcement.find(',', begin) - begin);
        ASSERT_EQ(lab.line(), "ready");
    }
};

TEST_F(TheConsoleAndTheLab, FollowsARunToItsEndAndGivesItsFiles)
{
    serve();
    EXPECT_EQ(client->request("GET", "/").status, 200);
    const std::string id = start("127.82.0.7-9", snmpPort);
    const Json run = ended(id);
    EXPECT_EQ(run.at("state"), "finished");
    EXPECT_EQ(run.at("step"), 3);
    EXPECT_EQ(run.at("found"), 1);
    EXPECT_EQ(run.at("printers")[0].at("ip"), "127.82.0.7");
    EXPECT_EQ(run.at("outcomes").at("printer"), 1);
    EXPECT_EQ(run.at("outcomes").at("notPrinter"), 1);
    EXPECT_EQ(run.at("outcomes").at("silent"), 1);
    EXPECT_THAT(client->request("GET", "/api/runs/" + id + "/printers.csv").body, HasSubstr("\r\n127.82.0.7,"));
    EXPECT_THAT(client->request("GET", "/api/runs/" + id + "/outcomes.csv").body,
                AllOf(HasSubstr("127.82.0.8,notPrinter"), HasSubstr("127.82.0.9,silent")));
    EXPECT_THAT(client->request("GET", "/metrics").body, HasSubstr("\nprinter_discovery_addresses_probed_total 3\n"));
    EXPECT_EQ(end(), 0);
}

TEST_F(TheConsoleAndTheLab, FindsItsPortAgainAfterARestart)
{
    serve();
    const std::string instance = get("/api/session").at("instance");
    const std::uint16_t before = port();
    EXPECT_EQ(end(), 0);
    serve({}, "127.0.0.1:" + std::to_string(before));
    EXPECT_EQ(port(), before);
    EXPECT_NE(get("/api/session").at("instance"), instance);
    EXPECT_THAT(get("/api/runs").at("runs"), IsEmpty());
    EXPECT_EQ(ended(start("127.82.0.7", snmpPort)).at("found"), 1);
}

TEST_F(TheConsole, StopsARunThatWouldTakeMinutes)
{
    const SilentAgent agent({"127.83.0.1"});
    serve();
    const std::string id = start("127.83.0.1", agent.port());
    ASSERT_TRUE(agent.waitForRequest());
    const Json stopped = Json::parse(post("/api/runs/" + id + "/stop", Json::object()).body);
    EXPECT_EQ(stopped.at("state"), "stopped");
    EXPECT_EQ(stopped.at("outcomes").at("notProbed").get<int>() + stopped.at("outcomes").at("silent").get<int>(), 1);
    EXPECT_EQ(client->request("DELETE", "/api/runs/" + id).status, 204);
}

TEST_F(TheConsole, EndsWithinSecondsWhateverIsUnderWay)
{
    const SilentAgent agent({"127.83.0.1"});
    serveWithMuchUnderWay(agent);
    EXPECT_EQ(end(SIGINT), 0);
}

TEST_F(TheConsole, IsTerminatedAsItIsInterrupted)
{
    const SilentAgent agent({"127.83.0.1"});
    serveWithMuchUnderWay(agent);
    EXPECT_EQ(end(SIGTERM), 0);
}

TEST_F(TheConsole, KeepsItsTokenToItself)
{
    const std::string file = folder.write("token", std::string(Secret) + '\n');
    serve({"--token-file", file, "--host-name", "print.example.com"});
    EXPECT_EQ(client->request("GET", "/api/session").status, 401);
    const TestResponse allowed =
        client->request("GET", "/api/session", "",
                        {{"Authorization", std::string("Bearer ") + Secret}, {"Host", "print.example.com:8443"}});
    EXPECT_EQ(allowed.status, 200);
    EXPECT_THAT(program->shownCommandLine(), Not(HasSubstr(Secret)));
    EXPECT_EQ(end(), 0);
    EXPECT_THAT(program->errors(), Not(HasSubstr(Secret)));
}

TEST_F(TheConsole, TakesTheTokenThatAServiceManagerHandsOver)
{
    const std::string file = folder.write("token", std::string(Secret) + '\n', std::filesystem::perms(0440));
    Process::Options service = options();
    service.environment.push_back("CREDENTIALS_DIRECTORY=" + std::filesystem::path(file).parent_path().string());
    serveWith(service, {"--token-file", file}, "127.0.0.1:0");
    EXPECT_EQ(client->request("GET", "/api/session", "", {{"Authorization", std::string("Bearer ") + Secret}}).status,
              200);
}

TEST_F(TheConsole, IsNotForOtherMachinesWithoutAToken)
{
    for (const char* address : {"0.0.0.0:0", "192.0.2.7:8631"}) {
        const auto [status, words] = refused({"--http", address});
        EXPECT_EQ(status, 2);
        EXPECT_THAT(words, AllOf(HasSubstr(address), HasSubstr("--token-file FILE")));
    }
    serve({"--token-file", folder.write("token", Secret)}, "0.0.0.0:0");
    EXPECT_EQ(client->request("GET", "/api/session", "", {{"Authorization", std::string("Bearer ") + Secret}}).status,
              200);
}

TEST_F(TheConsole, IsRefusedInWords)
{
    for (const char* address : {"", "127.0.0.1", "127.0.0.1:", "127.0.0.1:65536", "127.0.0.1:-1", "localhost:8631",
                                "[::1]:8631", "127.0.0.1:80x", ":8631"}) {
        const auto [status, words] = refused({"--http", address});
        EXPECT_EQ(status, 2) << address;
        EXPECT_THAT(words, HasSubstr("ADDRESS:PORT")) << address;
    }
    EXPECT_EQ(refused({"--http", "127.0.0.1:0", "--stdio"}).first, 2);
    EXPECT_EQ(refused({"--stdio", "--host-name", "x"}).first, 2);
    EXPECT_THAT(refused({"--http", "127.0.0.1:0", "--host-name", "http://x"}).second, HasSubstr("--host-name"));
}

TEST_F(TheConsole, RefusesATokenThatOthersCanRead)
{
    const std::string shared = folder.write("shared", Secret, std::filesystem::perms(0644));
    EXPECT_THAT(refused({"--http", "127.0.0.1:0", "--token-file", shared}).second,
                AllOf(HasSubstr("--token-file"), HasSubstr("chmod 600")));
}

TEST_F(TheConsole, SaysThatItsPortIsTaken)
{
    serve();
    const auto [status, words] = refused({"--http", "127.0.0.1:" + std::to_string(port())});
    EXPECT_EQ(status, 1);
    EXPECT_THAT(words, HasSubstr("cannot listen at 127.0.0.1:" + std::to_string(port())));
}

} // namespace
} // namespace Host
