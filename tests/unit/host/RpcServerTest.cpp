#include "host/RpcServer.h"

#include "host/Errors.h"
#include "tests/unit/host/FakePlugin.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <condition_variable>
#include <mutex>
#include <set>
#include <string>
#include <vector>

namespace Host {
namespace {

using namespace std::chrono_literals;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

/// Blocking starts stay inside until their work is withdrawn.
class BlockingPlugin : public FakePlugin {
public:
    std::string call(const PluginCall& call, const Entering& entering) override
    {
        Kep::Host::CallId entered = 0;
        std::string reply = FakePlugin::call(call, [&](Kep::Host::CallId work) {
            entered = work;
            entering(work);
        });
        if (call.operation == "startDiscoveryBlocking") {
            std::unique_lock lock(mutex_);
            ++inside_;
            changed_.notify_all();
            changed_.wait(lock, [&] { return withdrawn_.contains(entered); });
            --inside_;
        }
        if (call.operation == "throw")
            throw Failure("no reply");
        return reply;
    }

    void withdraw(Kep::Host::CallId work) override
    {
        FakePlugin::withdraw(work);
        const std::lock_guard lock(mutex_);
        withdrawn_.insert(work);
        changed_.notify_all();
    }

    void waitForBlocked(std::size_t count)
    {
        std::unique_lock lock(mutex_);
        ASSERT_TRUE(changed_.wait_for(lock, 30s, [&] { return inside_ == count; }));
    }

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    std::set<Kep::Host::CallId> withdrawn_;
    std::size_t inside_ = 0;
};

class RpcServers : public testing::Test {
protected:
    BlockingPlugin plugin;
    RpcServer server{plugin, [this](const std::string& answer) { keep(answer); }};

    ~RpcServers() override { server.finish(30s); }

    void say(const std::string& method, const std::string& id = "1", const std::string& params = "")
    {
        server.handle(R"({"jsonrpc":"2.0","method":")" + method + '"' + (id.empty() ? "" : ",\"id\":" + id) +
                      (params.empty() ? "" : ",\"params\":" + params) + "}");
    }

    /// The next answers, in any order.
    std::vector<std::string> answers(std::size_t count)
    {
        std::unique_lock lock(mutex_);
        arrived_.wait_for(lock, 30s, [&] { return answers_.size() >= count; });
        return std::exchange(answers_, {});
    }

    std::string answer() { return answers(1).at(0); }

private:
    void keep(const std::string& answer)
    {
        const std::lock_guard lock(mutex_);
        answers_.push_back(answer);
        arrived_.notify_all();
    }

    std::mutex mutex_;
    std::condition_variable arrived_;
    std::vector<std::string> answers_;
};

TEST_F(RpcServers, PassTheDocumentOnAndTheReplyBack)
{
    plugin.reply("getStatus", R"({"step":0,"total":0,"state":1,"cookie":"c","printers":[]})");
    say("PrinterDiscovery.getStatus", "5", R"({"firstIdx":0,"cookie":"c"})");
    EXPECT_EQ(answer(),
              R"({"jsonrpc":"2.0","result":{"step":0,"total":0,"state":1,"cookie":"c","printers":[]},"id":5})");
    ASSERT_EQ(plugin.calls().size(), 1U);
    EXPECT_EQ(plugin.calls()[0].service, "PrinterDiscovery");
    EXPECT_EQ(plugin.calls()[0].operation, "getStatus");
    EXPECT_EQ(plugin.calls()[0].params, R"({"firstIdx":0,"cookie":"c"})");
}

TEST_F(RpcServers, AbsentParamsAreAnEmptyDocument)
{
    say("PrinterDiscovery.getServiceConfig");
    answer();
    EXPECT_EQ(plugin.calls().at(0).params, "{}");
}

TEST_F(RpcServers, AFailedCallCarriesTheErrorDocumentUntouched)
{
    const std::string error =
        R"({"code":"internalServerError","message":"bad \"x\"","data":null,"operation":{"service":"","operation":"","params":null}})";
    plugin.reply("getStatus", error);
    say("PrinterDiscovery.getStatus", "\"a\"");
    EXPECT_EQ(answer(),
              R"({"jsonrpc":"2.0","error":{"code":-32000,"message":"bad \"x\"","data":)" + error + R"(},"id":"a"})");
}

TEST_F(RpcServers, AnUnknownOperationIsAnUnknownMethod)
{
    plugin.reply("frob", R"({"code":"notFound","message":"no frob","data":null,"operation":{}})");
    say("PrinterDiscovery.frob");
    EXPECT_THAT(answer(), AllOf(HasSubstr("\"code\":-32601"), HasSubstr("\"data\":{\"code\":\"notFound\"")));
}

TEST_F(RpcServers, ReplyMembersOfAnErrorAloneMakeNoError)
{
    plugin.reply("getStatus", R"({"code":"x","message":"y","data":null})");
    say("PrinterDiscovery.getStatus");
    EXPECT_THAT(answer(), HasSubstr("\"result\":"));
}

TEST_F(RpcServers, OtherServicesAreUnknownMethods)
{
    for (const char* method : {"getStatus", "Other.getStatus", "PrinterDiscovery", "printerdiscovery.getStatus", ""}) {
        say(method);
        EXPECT_THAT(answer(), HasSubstr("\"code\":-32601")) << method;
    }
    EXPECT_THAT(plugin.calls(), IsEmpty());
}

TEST_F(RpcServers, WrongMessagesAreAnswered)
{
    server.handle("nonsense");
    EXPECT_THAT(answer(), AllOf(HasSubstr("-32700"), HasSubstr("\"id\":null")));
    server.handle("[]");
    EXPECT_THAT(answer(), HasSubstr("-32600"));
    server.refuseLongMessage(17);
    EXPECT_THAT(answer(), AllOf(HasSubstr("-32600"), HasSubstr("longer than 17 bytes")));
}

TEST_F(RpcServers, BlankLinesArePassedOver)
{
    server.handle("");
    server.handle(" \t\r");
    say("PrinterDiscovery.x", "9");
    EXPECT_THAT(answer(), HasSubstr("\"id\":9"));
}

TEST_F(RpcServers, NotificationsAreCarriedOutAndNotAnswered)
{
    say("PrinterDiscovery.one", "");
    say("PrinterDiscovery.throw", "");
    say("Other.x", "");
    say("PrinterDiscovery.two", "", "[]");
    EXPECT_TRUE(server.finish(30s));
    EXPECT_EQ(plugin.calls().size(), 2U);
    say("PrinterDiscovery.last", "1");
    EXPECT_THAT(answers(1), ElementsAre(HasSubstr("\"id\":1")));
}

TEST_F(RpcServers, CallsWithoutAReplyAreInternalErrors)
{
    say("PrinterDiscovery.throw");
    EXPECT_THAT(answer(), HasSubstr("\"code\":-32603"));
    plugin.reply("odd", "no JSON");
    say("PrinterDiscovery.odd");
    EXPECT_THAT(answer(), HasSubstr("\"code\":-32603"));
}

TEST_F(RpcServers, ABlockingStartHoldsUpNoOtherCall)
{
    say("PrinterDiscovery.startDiscoveryBlocking", "1");
    plugin.waitForBlocked(1);
    for (int i = 2; i < 50; ++i) {
        say("PrinterDiscovery.getStatus", std::to_string(i));
        EXPECT_THAT(answer(), HasSubstr("\"id\":" + std::to_string(i)));
    }
}

TEST_F(RpcServers, BlockingStartsAreBounded)
{
    for (std::size_t i = 0; i < RpcServer::MostBlockingStarts; ++i)
        say("PrinterDiscovery.startDiscoveryBlocking", std::to_string(i));
    plugin.waitForBlocked(RpcServer::MostBlockingStarts);
    say("PrinterDiscovery.startDiscoveryBlocking", "1000");
    EXPECT_THAT(answer(), AllOf(HasSubstr("-32001"), HasSubstr("\"id\":1000")));
    say("PrinterDiscovery.getStatus", "1001");
    EXPECT_THAT(answer(), HasSubstr("\"id\":1001"));
}

TEST_F(RpcServers, AtTheEndBlockingStartsAreWithdrawnAndAnswered)
{
    say("PrinterDiscovery.startDiscoveryBlocking", "1");
    say("PrinterDiscovery.startDiscoveryBlocking", "2");
    plugin.waitForBlocked(2);
    EXPECT_TRUE(server.finish(30s));
    EXPECT_EQ(plugin.withdrawn().size(), 2U);
    EXPECT_THAT(answers(2), UnorderedElementsAre(HasSubstr("\"id\":1"), HasSubstr("\"id\":2")));
}

TEST_F(RpcServers, WorkThatBeginsAfterTheEndIsWithdrawnToo)
{
    server.finish(30s);
    say("PrinterDiscovery.startDiscoveryBlocking", "1");
    EXPECT_THAT(answer(), HasSubstr("\"id\":1"));
}

} // namespace
} // namespace Host
