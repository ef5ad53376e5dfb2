#include "host/console/Console.h"

#include "host/console/HttpServer.h"
#include "tests/unit/host/FakePlugin.h"
#include "tests/unit/host/TemporaryFolder.h"
#include "tests/unit/host/console/TestClient.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <chrono>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <thread>

namespace Host {
namespace {

using namespace std::chrono_literals;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Key;
using testing::Not;
using testing::Pair;
using testing::SizeIs;
using Json = nlohmann::json;

constexpr const char* Nobody = R"({"step":3,"total":3,"state":1,"cookie":"","printers":[]})";
constexpr const char* Secret = "0123456789abcdef";

std::string printer(const std::string& ip, const std::string& name = "Laser", const std::string& sn = "A1")
{
    return R"({"hostname":"","ip":")" + ip + R"(","mac":[],"name":")" + name + R"(","sn":")" + sn + "\"}";
}

std::string status(int step, int state, const std::string& printers)
{
    return R"({"step":)" + std::to_string(step) + R"(,"total":3,"state":)" + std::to_string(state) +
           R"(,"cookie":"","printers":[)" + printers + "]}";
}

/// A console over sockets, with a plug-in that plays back what the test scripts.
class Consoles : public testing::Test {
protected:
    void serve(std::optional<std::string> token = {}, double requestsAtOnce = 10000, double requestsPerSecond = 100)
    {
        server = std::make_unique<HttpServer>("127.0.0.1", 0);
        RequestGuard::Options guard{.address = "127.0.0.1", .port = server->port(), .names = {}, .token = {}};
        if (token)
            guard.token.emplace(*token, "test");
        console = std::make_unique<Console>(plugin, Console::Options{.guard = guard,
                                                                     .dataStore = folder.file("settings.db"),
                                                                     .keptRuns = keptRuns,
                                                                     .requestsPerSecond = requestsPerSecond,
                                                                     .requestsAtOnce = requestsAtOnce});
        server->start([this](const HttpRequest& head) { return console->turnAway(head); },
                      [this](const HttpRequest& request) { return console->answer(request); },
                      [this](int code) { return console->refuse(code); });
        client = std::make_unique<TestClient>(server->port());
    }

    ~Consoles() override
    {
        if (console)
            console->end(30s);
        if (server)
            server->stop(30s);
        server.reset();
    }

    TestResponse get(const std::string& path, const std::map<std::string, std::string>& fields = {})
    {
        return client->request("GET", path, "", fields);
    }

    TestResponse post(const std::string& path, const std::string& body) { return client->request("POST", path, body); }

    Json document(const std::string& path) { return Json::parse(get(path).body); }

    /// Starts a run and gives its id.
    std::string start(const std::string& body = R"({"targets":"10.0.0.1-10.0.0.3"})")
    {
        const TestResponse response = post("/api/runs", body);
        EXPECT_EQ(response.status, 201) << response.body;
        return Json::parse(response.body).at("id");
    }

    /// Waits until the run is over.
    Json ended(const std::string& id)
    {
        for (int i = 0; i < 3000; ++i) {
            Json run = document("/api/runs/" + id);
            if (run.at("state") != "running" && run.at("state") != "stopping")
                return run;
            std::this_thread::sleep_for(10ms);
        }
        throw std::runtime_error("the run does not end");
    }

    /// A run that finds the given printers and ends.
    std::string finishedRun(const std::string& printers, const std::string& body = R"({"targets":"10.0.0.1-10.0.0.3"})")
    {
        plugin.replyOnly("getStatus", status(3, 1, printers));
        const std::string id = start(body);
        EXPECT_EQ(ended(id).at("state"), "finished");
        return id;
    }

    /// A run that has begun and goes on until it is stopped.
    std::string endlessRun()
    {
        plugin.replyOnly("getStatus", status(1, 2, ""));
        std::string id = start();
        for (int i = 0; i < 3000; ++i) {
            if (document("/api/runs/" + id).at("step") == 1)
                return id;
            std::this_thread::sleep_for(10ms);
        }
        throw std::runtime_error("the run does not begin");
    }

    static std::string errorCode(const TestResponse& response)
    {
        return Json::parse(response.body).at("error").at("code");
    }

    /// Ends the console and serves a new one.
    void restart()
    {
        console->end(30s);
        server.reset();
        console.reset();
        serve();
    }

    TemporaryFolder folder;
    std::size_t keptRuns = 0;
    FakePlugin plugin;
    std::unique_ptr<HttpServer> server;
    std::unique_ptr<Console> console;
    std::unique_ptr<TestClient> client;
};

TEST_F(Consoles, ShowThePageUnderStrictRules)
{
    serve();
    const TestResponse page = get("/");
    EXPECT_EQ(page.status, 200);
    EXPECT_THAT(page.body, HasSubstr("<html"));
    EXPECT_EQ(page.fields.at("content-type"), "text/html; charset=utf-8");
    EXPECT_EQ(page.fields.at("content-security-policy"),
              "default-src 'none'; script-src 'self'; style-src 'self'; connect-src 'self'; img-src 'self'; "
              "base-uri 'none'; form-action 'none'; frame-ancestors 'none'");
    EXPECT_EQ(page.fields.at("x-content-type-options"), "nosniff");
    EXPECT_EQ(page.fields.at("referrer-policy"), "no-referrer");
    EXPECT_EQ(get("/index.html").body, page.body);
}

TEST_F(Consoles, KeepNothingOfTheirAnswersInBrowsers)
{
    serve();
    for (const char* path : {"/api/session", "/api/runs", "/api/no", "/healthz"})
        EXPECT_EQ(get(path).fields.at("cache-control"), "no-store") << path;
}

TEST_F(Consoles, TellOfTheirSession)
{
    serve();
    const Json session = document("/api/session");
    EXPECT_EQ(session.at("token"), false);
    EXPECT_EQ(session.at("confirmFrom"), 65536);
    EXPECT_EQ(session.at("history").at("kept"), 0);
    EXPECT_EQ(session.at("instance"), document("/api/runs").at("instance"));
    const std::string before = session.at("instance");
    server.reset();
    serve();
    EXPECT_NE(document("/api/session").at("instance"), before);
}

TEST_F(Consoles, AreAlive)
{
    serve();
    EXPECT_EQ(document("/healthz"), Json({{"status", "ok"}}));
}

TEST_F(Consoles, CountTargets)
{
    serve();
    EXPECT_EQ(Json::parse(post("/api/targets", R"({"targets":"10.0.0.0/23","exclude":"10.0.1.0/24"})").body),
              Json::parse(R"({"addresses":254,"ranges":[{"from":"10.0.0.0","to":"10.0.0.255"}]})"));
    std::string many;
    for (int i = 1; i < 201; i += 2)
        many += "10.0.0." + std::to_string(i) + " 10.0.1." + std::to_string(i) + ' ';
    const Json answer = Json::parse(post("/api/targets", Json({{"targets", many}}).dump()).body);
    EXPECT_EQ(answer.at("addresses"), 200);
    EXPECT_THAT(answer.at("ranges"), SizeIs(100));
}

TEST_F(Consoles, RefuseTargetsInWords)
{
    serve();
    const TestResponse response = post("/api/targets", R"({"targets":"10.0.0.9-10.0.0.1"})");
    EXPECT_EQ(response.status, 400);
    const Json error = Json::parse(response.body).at("error");
    EXPECT_EQ(error.at("code"), "badInput");
    EXPECT_EQ(error.at("field"), "targets");
    EXPECT_THAT(error.at("message").get<std::string>(), HasSubstr("10.0.0.9-10.0.0.1"));
    EXPECT_EQ(post("/api/runs", R"({"targets":"10.0.0.9-10.0.0.1"})").status, 400);
    EXPECT_THAT(plugin.calls(), IsEmpty());
}

TEST_F(Consoles, StartARunAndFollowItToItsEnd)
{
    plugin.reply("getStatus", status(1, 2, printer("10.0.0.2")));
    plugin.reply("getStatus", status(3, 1, printer("10.0.0.1", "Ink \\\"x\\\"")));
    serve();
    const std::string id = start(R"({"name":"floor","targets":"10.0.0.1-10.0.0.3","port":1161})");
    const Json run = ended(id);
    EXPECT_EQ(run.at("name"), "floor");
    EXPECT_EQ(run.at("targets"), "10.0.0.1-10.0.0.3");
    EXPECT_EQ(run.at("port"), 1161);
    EXPECT_EQ(run.at("credentials"), Json::parse(R"(["v2c"])"));
    EXPECT_EQ(run.at("state"), "finished");
    EXPECT_EQ(run.at("message"), "");
    EXPECT_EQ(run.at("step"), 3);
    EXPECT_EQ(run.at("total"), 3);
    EXPECT_EQ(run.at("found"), 2);
    EXPECT_EQ(run.at("outcomes").at("printer"), 2);
    EXPECT_EQ(run.at("outcomes").at("notProbed"), 1);
    EXPECT_TRUE(std::regex_match(run.at("started").get<std::string>(), std::regex("20..-..-..T..:..:..Z")));
    EXPECT_LE(run.at("started"), run.at("finished"));
    EXPECT_EQ(run.at("printers"),
              Json::parse('[' + printer("10.0.0.2") + ',' + printer("10.0.0.1", "Ink \\\"x\\\"") + ']'));
    EXPECT_EQ(run.at("next"), 2);
    EXPECT_EQ(document("/api/runs/" + id + "?from=1").at("printers"),
              Json::parse('[' + printer("10.0.0.1", "Ink \\\"x\\\"") + ']'));
    EXPECT_THAT(document("/api/runs/" + id + "?from=9").at("printers"), IsEmpty());
}

TEST_F(Consoles, ListRunsTheNewestFirst)
{
    serve();
    const std::string first = finishedRun("");
    const std::string second = finishedRun("");
    const Json runs = document("/api/runs").at("runs");
    ASSERT_EQ(runs.size(), 2U);
    EXPECT_EQ(runs[0].at("id"), second);
    EXPECT_EQ(runs[1].at("id"), first);
    EXPECT_FALSE(runs[0].contains("printers"));
}

TEST_F(Consoles, AdviseWhenNothingWasFound)
{
    serve();
    const std::string id = finishedRun("");
    EXPECT_EQ(document("/api/runs/" + id).at("found"), 0);
}

TEST_F(Consoles, ASecondCredentialThatTellsMoreReplacesThePrinter)
{
    plugin.reply("getStatus", status(3, 1, printer("10.0.0.2", "", "")));
    plugin.reply("getStatus", status(3, 1, printer("10.0.0.2", "Laser", "A1")));
    serve();
    const Json run =
        ended(start(R"({"targets":"10.0.0.1-10.0.0.3","credentials":[{"version":"1"},{"version":"2c"}]})"));
    EXPECT_EQ(run.at("credentials"), Json::parse(R"(["v1","v2c"])"));
    EXPECT_EQ(run.at("total"), 6);
    EXPECT_EQ(run.at("step"), 6);
    EXPECT_EQ(run.at("found"), 1);
    EXPECT_EQ(run.at("next"), 2) << "a message for each time something became known";
    EXPECT_EQ(run.at("printers").back(), Json::parse(printer("10.0.0.2")));
}

TEST_F(Consoles, NeverGiveSecretsBack)
{
    serve();
    const std::string body = R"({"targets":"10.0.0.1-10.0.0.3","credentials":[{"community":"hidden-community"},
        {"version":"3","user":"admin","level":"authPriv","authProtocol":"SHA","authPassword":"hidden-first",
         "privProtocol":"AES","privPassword":"hidden-second"}]})";
    const std::string id = finishedRun(printer("10.0.0.1"), body);
    for (const char* path : {"/api/runs", "/metrics", "/api/session"})
        EXPECT_THAT(get(path).body, Not(HasSubstr("hidden"))) << path;
    for (const char* what : {"", "/printers.json", "/outcomes", "/comparison"})
        EXPECT_THAT(get("/api/runs/" + id + what).body, Not(HasSubstr("hidden"))) << what;
    EXPECT_THAT(plugin.calls().at(0).params, HasSubstr("hidden-community")) << "the plug-in does get them";
}

TEST_F(Consoles, HaveCookiesThatNobodyElseHas)
{
    serve();
    finishedRun("");
    finishedRun("");
    std::set<std::string> cookies;
    for (const PluginCall& call : plugin.calls())
        if (call.operation == "startDiscovery")
            cookies.insert(Json::parse(call.params).at("cookie"));
    EXPECT_THAT(cookies, SizeIs(2));
    for (const std::string& cookie : cookies)
        EXPECT_TRUE(std::regex_match(cookie, std::regex("console-[0-9a-f]{16}-1"))) << cookie;
}

TEST_F(Consoles, TellThePluginOfTheEndOfARun)
{
    serve();
    finishedRun("");
    EXPECT_EQ(plugin.calls().back().operation, "stopDiscovery");
}

TEST_F(Consoles, TellWhyARunFailed)
{
    plugin.reply("startDiscovery",
                 R"({"code":"internalServerError","message":"no threads","data":null,"operation":{}})");
    serve();
    const Json run = ended(start());
    EXPECT_EQ(run.at("state"), "failed");
    EXPECT_THAT(run.at("message").get<std::string>(), HasSubstr("no threads"));
}

TEST_F(Consoles, StopARunAndAnswerWhenItHasStopped)
{
    serve();
    const std::string id = endlessRun();
    const TestResponse response = post("/api/runs/" + id + "/stop", "{}");
    EXPECT_EQ(response.status, 200);
    EXPECT_EQ(Json::parse(response.body).at("state"), "stopped");
    EXPECT_THAT(plugin.withdrawn(), ElementsAre(plugin.startWork()));
    EXPECT_EQ(Json::parse(post("/api/runs/" + id + "/stop", "{}").body).at("state"), "stopped");
    const std::string finished = finishedRun("");
    EXPECT_EQ(Json::parse(post("/api/runs/" + finished + "/stop", "{}").body).at("state"), "finished");
}

TEST_F(Consoles, AskForConfirmationOfLargeRuns)
{
    serve();
    plugin.reply("getStatus", Nobody);
    const TestResponse response = post("/api/runs", R"({"targets":"10.0.0.0/15"})");
    EXPECT_EQ(response.status, 409);
    EXPECT_EQ(errorCode(response), "confirm");
    EXPECT_EQ(Json::parse(response.body).at("error").at("addresses"), 130048);
    EXPECT_THAT(plugin.calls(), IsEmpty());
    ended(start(R"({"targets":"10.0.0.0/15","confirmed":true})"));
    ended(start(R"({"targets":"10.0.0.0/16"})")); // fewer, since .0 and .255 are not probed
}

TEST_F(Consoles, RunSoManyAtOnce)
{
    serve();
    for (std::size_t i = 0; i < ConsoleRuns::MostRunning; ++i)
        endlessRun();
    const TestResponse response = post("/api/runs", R"({"targets":"10.0.0.1"})");
    EXPECT_EQ(response.status, 429);
    EXPECT_EQ(errorCode(response), "tooManyRuns");
    plugin.replyOnly("getStatus", status(1, 1, ""));
    EXPECT_TRUE(console->end(30s));
}

TEST_F(Consoles, KeepSoManyRuns)
{
    serve();
    const std::string oldest = finishedRun("");
    for (std::size_t i = 0; i < ConsoleRuns::MostEnded; ++i)
        finishedRun("");
    EXPECT_EQ(get("/api/runs/" + oldest).status, 404);
    EXPECT_THAT(document("/api/runs").at("runs"), SizeIs(ConsoleRuns::MostEnded));
}

TEST_F(Consoles, ForgetRunsThatAreOver)
{
    serve();
    const std::string id = finishedRun("");
    EXPECT_EQ(client->request("DELETE", "/api/runs/" + id).status, 204);
    EXPECT_EQ(client->request("DELETE", "/api/runs/" + id).status, 404);
    const std::string running = endlessRun();
    EXPECT_EQ(client->request("DELETE", "/api/runs/" + running).status, 409);
    plugin.replyOnly("getStatus", status(1, 1, ""));
}

TEST_F(Consoles, GivePrintersAsFiles)
{
    serve();
    const std::string id = finishedRun(printer("10.0.0.2", "B, \\\"quoted\\\"") + ',' + printer("10.0.0.1", "=A"));
    const TestResponse csv = get("/api/runs/" + id + "/printers.csv");
    EXPECT_EQ(csv.body, "ip,name,sn,mac,hostname\r\n10.0.0.1,'=A,A1,,\r\n10.0.0.2,\"B, \"\"quoted\"\"\",A1,,\r\n");
    EXPECT_EQ(csv.fields.at("content-type"), "text/csv; charset=utf-8");
    EXPECT_EQ(csv.fields.at("content-disposition"), "attachment; filename=\"printers.csv\"");
    const Json json = document("/api/runs/" + id + "/printers.json");
    EXPECT_EQ(json.at("state"), 1);
    EXPECT_EQ(json.at("printers")[0].at("ip"), "10.0.0.1");
}

TEST_F(Consoles, GiveOutcomesAsFiles)
{
    serve();
    const std::string id = finishedRun(printer("10.0.0.2"));
    const TestResponse csv = get("/api/runs/" + id + "/outcomes.csv");
    EXPECT_EQ(csv.fields.at("transfer-encoding"), "chunked");
    EXPECT_THAT(csv.body, HasSubstr("10.0.0.2,printer"));
    const TestResponse lines = get("/api/runs/" + id + "/outcomes.jsonl");
    EXPECT_EQ(Json::parse(lines.body).at("ip"), "10.0.0.2");
    EXPECT_EQ(Json::parse(lines.body).at("outcome"), "printer");
    client->send("GET /api/runs/" + id + "/outcomes.csv HTTP/1.0\r\nHost: 127.0.0.1:" + std::to_string(server->port()) +
                 "\r\n\r\n");
    EXPECT_EQ(client->receive().status, 505);
}

TEST_F(Consoles, GiveOutcomesBitByBit)
{
    serve();
    const std::string id = finishedRun(printer("10.0.0.2"));
    const Json first = document("/api/runs/" + id + "/outcomes");
    EXPECT_EQ(first.at("outcomes"), Json::parse(R"([{"ip":"10.0.0.2","outcome":"printer","problem":""}])"));
    const Json second = document("/api/runs/" + id + "/outcomes?from=" + first.at("next").dump());
    EXPECT_THAT(second.at("outcomes"), IsEmpty());
    EXPECT_EQ(second.at("next"), first.at("next"));
}

TEST_F(Consoles, CompareWithTheRunBeforeOverTheSameAddresses)
{
    serve();
    const std::string first = finishedRun(printer("10.0.0.1", "A", "1") + ',' + printer("10.0.0.2", "B", "2"));
    finishedRun("", R"({"targets":"10.0.0.1"})");
    const std::string second = finishedRun(printer("10.0.0.2", "Bee", "2") + ',' + printer("10.0.0.3", "C", "3"));
    const Json comparison = document("/api/runs/" + second + "/comparison");
    EXPECT_EQ(comparison.at("with").at("id"), first);
    EXPECT_EQ(comparison.at("new")[0].at("ip"), "10.0.0.3");
    EXPECT_EQ(comparison.at("gone")[0].at("ip"), "10.0.0.1");
    EXPECT_EQ(comparison.at("changed")[0].at("name"), Json::parse(R"({"from":"B","to":"Bee"})"));
    EXPECT_TRUE(document("/api/runs/" + first + "/comparison").at("with").is_null());
    EXPECT_THAT(document("/api/runs/" + first + "/comparison").at("new"), IsEmpty());
    EXPECT_EQ(document("/api/runs/" + first + "/comparison?with=" + second).at("with").at("id"), second);
    EXPECT_EQ(get("/api/runs/" + first + "/comparison?with=none").status, 404);
}

TEST_F(Consoles, KeepRunsOverARestart)
{
    keptRuns = 5;
    serve();
    EXPECT_EQ(document("/api/session").at("history").at("kept"), 5);
    const std::string first = finishedRun(printer("10.0.0.1", "A", "1") + ',' + printer("10.0.0.2", "B", "2"));
    const std::string other = finishedRun("", R"({"targets":"10.0.0.9"})");
    const Json before = document("/api/runs/" + first);
    EXPECT_EQ(before.at("kept"), true);
    restart();
    EXPECT_EQ(document("/api/runs/" + first), before);
    const std::string second = finishedRun(printer("10.0.0.2", "Bee", "2"));
    const Json runs = document("/api/runs").at("runs");
    ASSERT_EQ(runs.size(), 3U);
    EXPECT_EQ(runs[0].at("id"), second);
    EXPECT_EQ(runs[1].at("id"), other);
    EXPECT_EQ(runs[2].at("id"), first);
    EXPECT_FALSE(runs[2].contains("swept"));
    const Json comparison = document("/api/runs/" + second + "/comparison");
    EXPECT_EQ(comparison.at("with").at("id"), first);
    EXPECT_EQ(comparison.at("gone")[0].at("ip"), "10.0.0.1");
    restart();
    EXPECT_EQ(document("/api/runs/" + second + "/comparison"), comparison);
    EXPECT_TRUE(document("/api/runs/" + first + "/comparison").at("with").is_null());
    EXPECT_THAT(get("/api/runs/" + first + "/printers.csv").body, HasSubstr("\r\n10.0.0.1,A,1"));
    EXPECT_EQ(document("/api/runs/" + first + "/outcomes").at("outcomes").size(), 2U);
    EXPECT_EQ(Json::parse(post("/api/runs/" + first + "/stop", "{}").body).at("state"), "finished");
}

TEST_F(Consoles, ForgetKeptRunsForGood)
{
    keptRuns = 5;
    serve();
    const std::string own = finishedRun("");
    EXPECT_EQ(client->request("DELETE", "/api/runs/" + own).status, 204);
    const std::string kept = finishedRun("");
    restart();
    EXPECT_THAT(document("/api/runs").at("runs"), SizeIs(1));
    EXPECT_EQ(client->request("DELETE", "/api/runs/" + kept).status, 204);
    EXPECT_EQ(client->request("DELETE", "/api/runs/" + kept).status, 404);
    restart();
    EXPECT_THAT(document("/api/runs").at("runs"), IsEmpty());
}

TEST_F(Consoles, KeepNoSecretsWithRuns)
{
    keptRuns = 5;
    serve();
    finishedRun("", R"({"targets":"10.0.0.1","credentials":[{"community":"hidden-community"}]})");
    console->end(30s);
    std::ifstream file(folder.file("settings.db"), std::ios::binary);
    const std::string content{std::istreambuf_iterator<char>(file), {}};
    EXPECT_THAT(content, HasSubstr("10.0.0.1"));
    EXPECT_THAT(content, Not(HasSubstr("hidden")));
}

TEST_F(Consoles, RepeatRunsOnlyWhereTheyAreKept)
{
    serve();
    EXPECT_THAT(document("/api/schedules").at("schedules"), IsEmpty());
    const TestResponse response = post("/api/schedules", R"({"targets":"10.0.0.1","everyMinutes":60})");
    EXPECT_EQ(response.status, 409);
    EXPECT_EQ(errorCode(response), "historyOff");
}

TEST_F(Consoles, TakeSchedulesAndKeepThem)
{
    keptRuns = 5;
    serve();
    const TestResponse response = post("/api/schedules", R"({"name":"nightly","targets":"10.0.0.1","port":1161,
        "credentials":[{"version":"1","community":"hidden-community"}],"everyMinutes":60})");
    EXPECT_EQ(response.status, 201) << response.body;
    const Json schedule = Json::parse(response.body);
    EXPECT_EQ(schedule.at("name"), "nightly");
    EXPECT_EQ(schedule.at("targets"), "10.0.0.1");
    EXPECT_EQ(schedule.at("exclude"), "");
    EXPECT_EQ(schedule.at("port"), 1161);
    EXPECT_EQ(schedule.at("credentials"), Json::parse(R"(["v1"])"));
    EXPECT_EQ(schedule.at("everyMinutes"), 60);
    EXPECT_TRUE(schedule.at("last").is_null());
    EXPECT_THAT(response.body, Not(HasSubstr("hidden")));
    restart();
    EXPECT_EQ(document("/api/schedules").at("schedules"), Json::array({schedule}));
    const std::string id = schedule.at("id");
    EXPECT_EQ(client->request("DELETE", "/api/schedules/" + id).status, 204);
    EXPECT_EQ(client->request("DELETE", "/api/schedules/" + id).status, 404);
}

TEST_F(Consoles, RefuseSchedulesInWords)
{
    keptRuns = 5;
    serve();
    const auto fieldOf = [&](const std::string& body) {
        const TestResponse response = post("/api/schedules", body);
        EXPECT_EQ(response.status, 400) << body;
        return Json::parse(response.body).at("error").value("field", "");
    };
    for (const char* minutes : {"4", "44641", "\"60\"", "60.5", "null"})
        EXPECT_EQ(fieldOf(R"({"targets":"10.0.0.1","everyMinutes":)" + std::string(minutes) + "}"), "everyMinutes");
    EXPECT_EQ(fieldOf(R"({"targets":"10.0.0.9-1","everyMinutes":60})"), "targets");
    EXPECT_EQ(post("/api/schedules", R"({"targets":"10.0.0.0/15","everyMinutes":60})").status, 409);
}

TEST_F(Consoles, StartTheRunsOfTheirSchedules)
{
    keptRuns = 5;
    Schedules schedules(folder.file("settings.db"));
    const JsonValue request = {{"body", {{"targets", "10.0.0.1"}, {"name", "nightly"}}},
                               {"credentials", JsonValue::array({"v2c"})}};
    const Schedule due = schedules.add("due", request, std::chrono::minutes(60),
                                       std::chrono::system_clock::now() - std::chrono::minutes(61));
    plugin.reply("getStatus", Nobody);
    serve();
    Json runs;
    for (int i = 0; i < 3000 && runs.empty(); ++i) {
        std::this_thread::sleep_for(10ms);
        runs = document("/api/runs").at("runs");
    }
    ASSERT_THAT(runs, SizeIs(1));
    EXPECT_EQ(runs[0].at("name"), "nightly");
    EXPECT_EQ(runs[0].at("schedule"), "due");
    Json last;
    for (int i = 0; i < 3000 && last.is_null(); ++i) {
        std::this_thread::sleep_for(10ms);
        last = document("/api/schedules").at("schedules")[0].at("last");
    }
    EXPECT_EQ(last, runs[0].at("id"));
}

TEST_F(Consoles, AskForTheirToken)
{
    serve(Secret);
    const TestResponse response = get("/api/session");
    EXPECT_EQ(response.status, 401);
    EXPECT_EQ(response.fields.at("www-authenticate"), "Bearer");
    EXPECT_EQ(errorCode(response), "token");
    EXPECT_EQ(get("/").status, 200);
    EXPECT_EQ(get("/metrics").status, 401);
    const TestResponse allowed = get("/api/session", {{"Authorization", std::string("Bearer ") + Secret}});
    EXPECT_EQ(allowed.status, 200);
    EXPECT_THAT(allowed.body, AllOf(HasSubstr("\"token\":true"), Not(HasSubstr(Secret))));
}

TEST_F(Consoles, KeepOtherPlacesOut)
{
    serve();
    EXPECT_EQ(get("/", {{"Host", "evil.example"}}).status, 421);
    EXPECT_EQ(get("/api/runs", {{"Origin", "http://evil.example"}}).status, 403);
    EXPECT_EQ(
        client
            ->request("POST", "/api/runs", "targets=10.0.0.1", {{"Content-Type", "application/x-www-form-urlencoded"}})
            .status,
        415);
    EXPECT_THAT(plugin.calls(), IsEmpty());
}

TEST_F(Consoles, BoundTheRequestsOfAClient)
{
    serve({}, 3, 0.001);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(get("/healthz").status, 200);
    const TestResponse refused = get("/healthz");
    EXPECT_EQ(refused.status, 429);
    EXPECT_EQ(refused.fields.count("retry-after"), 1U);
}

TEST_F(Consoles, TellOfWhatIsNotThere)
{
    serve();
    for (const char* path : {"/nothing", "/api", "/api/runs/none", "/../etc/passwd", "/index.html/"}) {
        const TestResponse response = get(path);
        EXPECT_EQ(response.status, 404) << path;
        EXPECT_EQ(errorCode(response), "notFound");
    }
    EXPECT_EQ(client->request("PUT", "/api/runs", "", {}).fields.at("allow"), "GET, POST");
}

TEST_F(Consoles, CarryTheOperationsOut)
{
    plugin.reply("getStatus", Nobody);
    serve();
    const TestResponse response =
        post("/rpc", R"({"jsonrpc":"2.0","method":"PrinterDiscovery.getStatus","params":{"cookie":"c"},"id":7})");
    EXPECT_EQ(response.status, 200);
    EXPECT_EQ(Json::parse(response.body), Json({{"jsonrpc", "2.0"}, {"result", Json::parse(Nobody)}, {"id", 7}}));
    EXPECT_EQ(plugin.calls().at(0).params, R"({"cookie":"c"})");
    EXPECT_EQ(post("/rpc", R"({"jsonrpc":"2.0","method":"PrinterDiscovery.getStatus"})").status, 204);
    EXPECT_THAT(post("/rpc", "{").body, HasSubstr("-32700"));
}

TEST_F(Consoles, DoNotStartOrStopTheService)
{
    serve();
    for (const char* operation : {"startService", "stopService"}) {
        const TestResponse response =
            post("/rpc", std::string(R"({"jsonrpc":"2.0","method":"PrinterDiscovery.)") + operation + R"(","id":1})");
        EXPECT_THAT(response.body, HasSubstr("-32601"));
    }
    EXPECT_THAT(plugin.calls(), IsEmpty());
}

/// The metrics by name and labels; fails where the text is none of the exposition format.
std::map<std::string, double> parsedMetrics(const std::string& text)
{
    static const std::regex comment("# (HELP [a-z_]+ .+|TYPE [a-z_]+ (counter|gauge))");
    static const std::regex sample(R"re(([a-z_]+)(\{[a-z_]+="[^"\\]*"(,[a-z_]+="[^"\\]*")*\})? ([0-9.]+))re");
    std::map<std::string, double> values;
    std::set<std::string> typed;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        std::smatch parts;
        if (line.starts_with("# TYPE ")) {
            EXPECT_TRUE(typed.insert(line.substr(7, line.find(' ', 7) - 7)).second) << line;
        }
        if (std::regex_match(line, comment))
            continue;
        if (!std::regex_match(line, parts, sample)) {
            ADD_FAILURE() << line;
            continue;
        }
        EXPECT_TRUE(typed.contains(parts[1])) << line;
        EXPECT_TRUE(values.emplace(parts[1].str() + parts[2].str(), std::stod(parts[4])).second) << line;
    }
    EXPECT_TRUE(text.ends_with('\n'));
    return values;
}

TEST_F(Consoles, CountWhatTheyDo)
{
    serve();
    finishedRun(printer("10.0.0.1") + ',' + printer("10.0.0.2"));
    const std::string running = endlessRun();
    while (document("/api/runs/" + running).at("step") != 1)
        std::this_thread::sleep_for(10ms);
    get("/nothing");
    const TestResponse response = get("/metrics");
    EXPECT_EQ(response.fields.at("content-type"), "text/plain; version=0.0.4; charset=utf-8");
    auto metrics = parsedMetrics(response.body);
    EXPECT_EQ(metrics[R"(printer_discovery_runs{state="running"})"], 1);
    EXPECT_EQ(metrics[R"(printer_discovery_runs_ended_total{state="finished"})"], 1);
    EXPECT_EQ(metrics["printer_discovery_addresses_probed_total"], 4);
    EXPECT_EQ(metrics["printer_discovery_printers_found_total"], 2);
    EXPECT_EQ(metrics[R"(printer_discovery_outcomes_total{outcome="printer"})"], 2);
    EXPECT_EQ(metrics[R"(printer_discovery_http_responses_total{class="4xx"})"], 1);
    EXPECT_GT(metrics[R"(printer_discovery_http_responses_total{class="2xx"})"], 2);
    EXPECT_GT(metrics["printer_discovery_start_time_seconds"], 1.7e9);
    EXPECT_EQ(metrics.count(R"(printer_discovery_tasks{state="queued"})"), 1U);
    plugin.replyOnly("getStatus", status(1, 1, ""));
}

TEST_F(Consoles, EndEvenWithRunsUnderWay)
{
    serve();
    for (int i = 0; i < 3; ++i)
        endlessRun();
    EXPECT_FALSE(console->end(0ms));
    plugin.replyOnly("getStatus", status(1, 1, ""));
    EXPECT_TRUE(console->end(30s));
    EXPECT_EQ(post("/api/runs", R"({"targets":"10.0.0.1"})").status, 429);
}

} // namespace
} // namespace Host
