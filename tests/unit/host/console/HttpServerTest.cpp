#include "host/console/HttpServer.h"

#include "host/Errors.h"
#include "tests/unit/host/console/TestClient.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace Host {
namespace {

using namespace std::chrono_literals;
using testing::Contains;
using testing::HasSubstr;
using testing::Key;
using testing::Pair;

constexpr std::size_t LargeBody = 16UL * 1024 * 1024; // more than the system takes off while a deaf client does not
constexpr const char* Get = "GET / HTTP/1.1\r\nHost: here\r\n\r\n";

/// A server that tells what it was asked, and whose answers to /wait can be held back.
class HttpServers : public testing::Test {
protected:
    void serve(const HttpLimits& limits = {})
    {
        server = std::make_unique<HttpServer>("127.0.0.1", 0, limits);
        server->start([](const HttpRequest& head) { return admit(head); },
                      [this](const HttpRequest& request) { return answer(request); },
                      [](int status) { return HttpResponse{.status = status, .body = "refused"}; });
    }

    TestClient client() const { return TestClient(server->port()); }

    /// A client for which the system holds little.
    TestClient deafClient() const { return TestClient(server->port(), 4096); }

    ~HttpServers() override
    {
        letGo();
        server.reset();
    }

    void letGo()
    {
        const std::lock_guard lock(mutex_);
        held_ = false;
        changed_.notify_all();
    }

    void waitForHeld()
    {
        std::unique_lock lock(mutex_);
        ASSERT_TRUE(changed_.wait_for(lock, 30s, [&] { return waiting_ > 0; }));
    }

    std::unique_ptr<HttpServer> server;

private:
    static std::optional<HttpResponse> admit(const HttpRequest& head)
    {
        if (head.path != "/out")
            return std::nullopt;
        return HttpResponse{.status = 403, .contentType = "text/plain", .body = "out" + head.body};
    }

    HttpResponse answer(const HttpRequest& request)
    {
        if (request.path == "/throw")
            throw std::runtime_error("secret");
        if (request.path == "/wait") {
            std::unique_lock lock(mutex_);
            ++waiting_;
            changed_.notify_all();
            changed_.wait(lock, [&] { return !held_; });
        }
        if (request.path == "/large")
            return {.contentType = "text/plain", .body = std::string(LargeBody, 'x')};
        if (request.path == "/none")
            return {.status = 204};
        return {.contentType = "text/plain",
                .body = request.method + '|' + request.path + '|' + request.query + '|' + request.host + '|' +
                        request.origin + '|' + request.authorization + '|' + request.contentType + '|' + request.body +
                        '|' + request.client};
    }

    std::mutex mutex_;
    std::condition_variable changed_;
    bool held_ = true;
    int waiting_ = 0;
};

TEST_F(HttpServers, HandRequestsOnWithTheirParts)
{
    serve();
    TestClient one = client();
    one.send("POST /a/b?c=d&e HTTP/1.1\r\nHost: Here:1\r\nOrigin: http://x\r\nAuthorization: Bearer t\r\n"
             "Content-Type: application/json\r\nContent-Length: 2\r\n\r\n{}");
    const TestResponse response = one.receive();
    EXPECT_EQ(response.status, 200);
    EXPECT_EQ(response.body, "POST|/a/b|c=d&e|Here:1|http://x|Bearer t|application/json|{}|127.0.0.1");
    EXPECT_THAT(response.fields, Contains(Pair("content-type", "text/plain")));
    EXPECT_THAT(response.fields, Contains(Key("date")));
}

TEST_F(HttpServers, JoinFieldsThatComeTwice)
{
    serve();
    TestClient one = client();
    one.send("GET / HTTP/1.1\r\nHost: a\r\nhost: b\r\n\r\n");
    EXPECT_THAT(one.receive().body, HasSubstr("|a, b|"));
}

TEST_F(HttpServers, AnswerSeveralRequestsOfAConnection)
{
    serve();
    TestClient one = client();
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(one.request("GET", "/" + std::to_string(i)).body.substr(0, 8), "GET|/" + std::to_string(i) + "||");
}

TEST_F(HttpServers, AnswerRequestsThatComeAtOnceInTheirOrder)
{
    serve();
    TestClient one = client();
    one.send("GET /1 HTTP/1.1\r\nHost: a\r\n\r\nGET /2 HTTP/1.1\r\nHost: a\r\n\r\n");
    EXPECT_THAT(one.receive().body, HasSubstr("/1"));
    EXPECT_THAT(one.receive().body, HasSubstr("/2"));
}

TEST_F(HttpServers, CloseWhenTheClientWantsThat)
{
    serve();
    TestClient one = client();
    one.send("GET / HTTP/1.1\r\nHost: a\r\nConnection: close\r\n\r\n");
    EXPECT_THAT(one.receive().fields, Contains(Pair("connection", "close")));
    EXPECT_TRUE(one.closed());
}

TEST_F(HttpServers, CloseAfterSoManyRequests)
{
    serve({.requestsOfConnection = 2});
    TestClient one = client();
    EXPECT_EQ(one.request("GET", "/").fields.count("connection"), 0U);
    EXPECT_THAT(one.request("GET", "/").fields, Contains(Pair("connection", "close")));
    EXPECT_TRUE(one.closed());
}

TEST_F(HttpServers, SendTheHeadAlone)
{
    serve();
    TestClient one = client();
    const TestResponse head = one.request("HEAD", "/large");
    EXPECT_THAT(head.fields, Contains(Pair("content-length", std::to_string(LargeBody))));
    EXPECT_EQ(one.request("GET", "/next").status, 200);
}

TEST_F(HttpServers, AnswerWithoutABody)
{
    serve();
    TestClient one = client();
    const TestResponse response = one.request("DELETE", "/none");
    EXPECT_EQ(response.status, 204);
    EXPECT_EQ(response.fields.count("content-type"), 0U);
    EXPECT_EQ(one.request("GET", "/next").status, 200);
}

TEST_F(HttpServers, AskForABodyThatAwaitsIt)
{
    serve();
    TestClient one = client();
    one.send("POST / HTTP/1.1\r\nHost: a\r\nContent-Length: 4\r\nExpect: 100-continue\r\n\r\n");
    EXPECT_EQ(one.receive("HEAD").status, 100);
    one.send("text");
    EXPECT_THAT(one.receive().body, HasSubstr("|text|"));
}

TEST_F(HttpServers, TurnRequestsAwayWithoutReadingTheirBody)
{
    serve();
    TestClient one = client();
    one.send("POST /out HTTP/1.1\r\nHost: a\r\nContent-Length: 1000000\r\n\r\n");
    const TestResponse response = one.receive();
    EXPECT_EQ(response.status, 403);
    EXPECT_EQ(response.body, "out");
    EXPECT_TRUE(one.closed());
}

TEST_F(HttpServers, ARequestTurnedAwayThatHasNoBodyLeavesTheConnectionOpen)
{
    serve();
    TestClient one = client();
    EXPECT_EQ(one.request("GET", "/out").status, 403);
    EXPECT_EQ(one.request("GET", "/").status, 200);
}

TEST_F(HttpServers, WhatAnAnswerThrowsIsNotTold)
{
    serve();
    const TestResponse response = client().request("GET", "/throw");
    EXPECT_EQ(response.status, 500);
    EXPECT_EQ(response.body, "refused");
}

TEST_F(HttpServers, RefuseWhatIsNoHttp)
{
    serve();
    for (const char* nonsense :
         {"nonsense\r\n\r\n", "GET / HTTP/9.9\r\n\r\n", "GET / HTTP/1.1\r\nno colon\r\n\r\n",
          "\x16\x03\x01\x02\r\n\r\n", "GET / HTTP/1.1\r\nHost: a\r\nContent-Length: -1\r\n\r\n",
          "GET / HTTP/1.1\r\nHost: a\r\nContent-Length: 1\r\nContent-Length: 2\r\n\r\nxx",
          "POST / HTTP/1.1\r\nHost: a\r\nTransfer-Encoding: chunked\r\nContent-Length: 3\r\n\r\nabc",
          "POST / HTTP/1.1\r\nHost: a\r\nTransfer-Encoding: chunked\r\n\r\nzz\r\n", "GET http://a/ HTTP/1.1\r\n\r\n",
          "CONNECT a:1 HTTP/1.1\r\n\r\n", "OPTIONS * HTTP/1.1\r\n\r\n"}) {
        TestClient one = client();
        one.send(nonsense);
        EXPECT_EQ(one.receive().status, 400) << nonsense;
        EXPECT_TRUE(one.closed());
    }
}

TEST_F(HttpServers, RefuseWhatFollowsAProperRequestAndIsNone)
{
    serve();
    TestClient one = client();
    one.send(std::string(Get) + "\x01\x02garbage\r\n\r\n");
    EXPECT_EQ(one.receive().status, 200);
    EXPECT_EQ(one.receive().status, 400);
    EXPECT_TRUE(one.closed());
}

TEST_F(HttpServers, RefuseAHeadThatIsTooLong)
{
    serve();
    TestClient one = client();
    one.send("GET / HTTP/1.1\r\nX: " + std::string(20000, 'x') + "\r\n\r\n");
    EXPECT_EQ(one.receive().status, 431);
    TestClient two = client();
    std::string fields;
    for (int i = 0; i < 10000; ++i)
        fields += "X" + std::to_string(i) + ": x\r\n";
    two.send("GET / HTTP/1.1\r\n" + fields);
    EXPECT_EQ(two.receive().status, 431);
}

TEST_F(HttpServers, RefuseABodyThatIsTooLongBeforeItCame)
{
    serve();
    TestClient one = client();
    one.send("POST / HTTP/1.1\r\nHost: a\r\nContent-Length: 1048577\r\n\r\n");
    EXPECT_EQ(one.receive().status, 413);
    TestClient fitting = client();
    EXPECT_EQ(fitting.request("POST", "/", std::string(1048576, ' ')).status, 200);
}

TEST_F(HttpServers, AClientThatSentTooMuchStillGetsTheAnswer)
{
    serve();
    TestClient one = client();
    one.send("POST / HTTP/1.1\r\nHost: a\r\nContent-Length: 3000000\r\n\r\n" + std::string(3000000, 'x'));
    EXPECT_EQ(one.receive().status, 413);
}

TEST_F(HttpServers, RefuseABodyOfChunksWithoutAnEnd)
{
    serve();
    TestClient one = client();
    one.send("POST / HTTP/1.1\r\nHost: a\r\nTransfer-Encoding: chunked\r\n\r\n");
    const std::string chunk = "10000\r\n" + std::string(65536, 'x') + "\r\n";
    for (int i = 0; i < 17; ++i)
        one.send(chunk);
    EXPECT_EQ(one.receive().status, 413);
}

TEST_F(HttpServers, CloseConnectionsWhoseRequestDoesNotCome)
{
    serve({.idle = 300ms, .request = 300ms});
    TestClient silent = client();
    TestClient unfinished = client();
    unfinished.send("GET / HTTP/1.1\r\nHo");
    TestClient withoutBody = client();
    withoutBody.send("POST / HTTP/1.1\r\nContent-Length: 10\r\n\r\nabc");
    EXPECT_TRUE(silent.closed());
    EXPECT_TRUE(unfinished.closed());
    EXPECT_TRUE(withoutBody.closed());
}

TEST_F(HttpServers, ARequestHasItsTimeAsAWholeHoweverOftenAByteComes)
{
    serve({.request = 500ms});
    TestClient dripping = client();
    const auto begin = std::chrono::steady_clock::now();
    bool open = true;
    for (int i = 0; open && std::chrono::steady_clock::now() - begin < 20s; ++i) {
        open = dripping.send(i == 0 ? "GET / HTTP/1.1\r\nX: " : "x");
        std::this_thread::sleep_for(20ms);
    }
    EXPECT_FALSE(open);
}

TEST_F(HttpServers, CloseConnectionsThatDoNotTakeTheirResponse)
{
    serve({.slowestRate = 1UL << 30U, .response = 300ms});
    TestClient deaf = deafClient();
    deaf.send("GET /large HTTP/1.1\r\nHost: a\r\n\r\n");
    std::this_thread::sleep_for(1s);
    EXPECT_THROW(deaf.receive(), std::runtime_error);
}

TEST_F(HttpServers, HalfOpenConnectionsGetTheirAnswer)
{
    serve();
    TestClient one = client();
    one.send(Get);
    one.endSending();
    EXPECT_EQ(one.receive().status, 200);
    EXPECT_TRUE(one.closed());
}

TEST_F(HttpServers, ClientsThatGoAwayLeaveNothingBehind)
{
    serve();
    for (int i = 0; i < 50; ++i) {
        client().send("GET /wait HTTP/1.1\r\nHost: a\r\n\r\n");
        client().send("GET /large HTTP/1.1\r\nHost: a\r\n\r\n");
        client().send("POST / HTTP/1.1\r\nContent-Le");
    }
    letGo();
    EXPECT_EQ(client().request("GET", "/").status, 200);
    EXPECT_TRUE(server->stop(30s));
}

TEST_F(HttpServers, TwoHundredSlowClientsHoldUpNobody)
{
    serve();
    std::vector<std::unique_ptr<TestClient>> slow;
    for (int i = 0; i < 200; ++i) {
        slow.push_back(std::make_unique<TestClient>(server->port()));
        slow.back()->send("POST / HTTP/1.1\r\nHost: a\r\nContent-Length: 1000000\r\n\r\n");
    }
    for (int second = 0; second < 3; ++second) {
        for (const auto& each : slow)
            ASSERT_TRUE(each->send("x"));
        for (int i = 0; i < 10; ++i)
            ASSERT_EQ(client().request("GET", "/").status, 200); // gives up after half a minute
        std::this_thread::sleep_for(100ms);
    }
}

TEST_F(HttpServers, OfTooManyConnectionsOfAClientTheLongestWaitingGoes)
{
    serve({.connectionsOfClient = 3});
    TestClient first = client();
    TestClient second = client();
    first.request("GET", "/"); // has waited less than the second from now on
    TestClient third = client();
    TestClient fourth = client();
    EXPECT_EQ(fourth.request("GET", "/").status, 200);
    EXPECT_TRUE(second.closed());
    EXPECT_EQ(first.request("GET", "/").status, 200);
    EXPECT_EQ(third.request("GET", "/").status, 200);
}

TEST_F(HttpServers, OfTooManyConnectionsInAllTheLongestWaitingGoes)
{
    serve({.connections = 2});
    TestClient first = client();
    TestClient second = client();
    TestClient third = client();
    EXPECT_EQ(third.request("GET", "/").status, 200);
    EXPECT_TRUE(first.closed());
    EXPECT_EQ(second.request("GET", "/").status, 200);
}

TEST_F(HttpServers, ConnectionsThatAreAnsweredAreNotGivenUp)
{
    serve({.connectionsOfClient = 1});
    TestClient one = client();
    one.send("GET /wait HTTP/1.1\r\nHost: a\r\n\r\n");
    waitForHeld();
    EXPECT_TRUE(client().closed());
    letGo();
    EXPECT_EQ(one.receive().status, 200);
}

TEST_F(HttpServers, BodiesThatNobodyTakesAreBounded)
{
    serve({.responseBytes = LargeBody + LargeBody / 2});
    TestClient deaf = deafClient();
    deaf.send("GET /large HTTP/1.1\r\nHost: a\r\n\r\n");
    ASSERT_TRUE(deaf.awaitResponse());
    TestClient one = client();
    EXPECT_EQ(one.request("GET", "/large").status, 503);
    EXPECT_EQ(deaf.receive().status, 200);
    EXPECT_EQ(one.request("GET", "/large").status, 200);
}

TEST_F(HttpServers, AtTheEndWhatIsAnsweredIsAnsweredAndTheRestClosed)
{
    serve();
    TestClient idle = client();
    idle.request("GET", "/");
    TestClient one = client();
    one.send("GET /wait HTTP/1.1\r\nHost: a\r\n\r\n");
    waitForHeld();
    std::thread ending([&] { EXPECT_TRUE(server->stop(30s)); });
    EXPECT_TRUE(idle.closed());
    letGo();
    EXPECT_THAT(one.receive().fields, Contains(Pair("connection", "close")));
    one.endSending();
    ending.join();
    EXPECT_THROW(client(), std::exception);
}

TEST_F(HttpServers, TheEndDoesNotWaitLongerThanItIsTold)
{
    serve();
    TestClient one = client();
    one.send("GET /wait HTTP/1.1\r\nHost: a\r\n\r\n");
    waitForHeld();
    EXPECT_FALSE(server->stop(50ms));
}

TEST_F(HttpServers, TellWhyTheyCannotListen)
{
    serve();
    const std::string place = "127.0.0.1:" + std::to_string(server->port());
    try {
        const HttpServer second("127.0.0.1", server->port());
        FAIL() << "two servers at one address";
    } catch (const Failure& error) {
        EXPECT_THAT(error.what(), HasSubstr("cannot listen at " + place));
    }
}

TEST_F(HttpServers, ARestartFindsItsPortFree)
{
    serve();
    const std::uint16_t port = server->port();
    TestClient one = client();
    one.request("GET", "/");
    server->stop(30s); // closes first, so that the system remembers the connection for a while
    server.reset();
    server = std::make_unique<HttpServer>("127.0.0.1", port);
    EXPECT_EQ(server->port(), port);
}

} // namespace
} // namespace Host
