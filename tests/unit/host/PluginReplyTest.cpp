#include "host/PluginReply.h"

#include "host/Errors.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace Host {
namespace {

using testing::HasSubstr;

std::string startFailure(const std::string& reply)
{
    try {
        requireStarted(reply);
    } catch (const Failure& error) {
        return error.what();
    }
    return "none";
}

TEST(PluginReplies, OnlyAllFourMembersMakeAnError)
{
    const std::string text = R"({"code":"notFound","message":"m","data":null,"operation":{}})";
    const auto error = errorOf(parseReply(text));
    ASSERT_TRUE(error);
    EXPECT_EQ(error->code, "notFound");
    EXPECT_EQ(error->message, "m");
    for (const char* key : {"code", "message", "data", "operation"}) {
        JsonValue reply = parseReply(text);
        reply.erase(key);
        EXPECT_FALSE(errorOf(reply)) << key;
    }
    for (const char* other : {"[]", "null", "\"code\"", "{}"})
        EXPECT_FALSE(errorOf(parseReply(other)));
}

TEST(PluginReplies, ThatAreNotJsonFail)
{
    EXPECT_THROW(parseReply("x"), Failure);
    EXPECT_THROW(parseReply(""), Failure);
}

TEST(PluginStart, SucceedsWhenEveryServiceHasStarted)
{
    EXPECT_EQ(startFailure(R"({"name":"n","description":"d","error":null,"services":)"
                           R"([{"reference":"PrinterDiscovery","state":"started","error":null}]})"),
              "none");
}

TEST(PluginStart, FailsInThePluginsWords)
{
    EXPECT_THAT(startFailure(R"({"error":"member \"dataStore\": expected text","services":[]})"),
                HasSubstr("member \"dataStore\": expected text"));
    EXPECT_THAT(startFailure(R"({"error":null,"services":[{"reference":"S","state":"failed","error":"why"}]})"),
                HasSubstr("S did not start: why"));
    EXPECT_THAT(startFailure("[]"), HasSubstr("not an object"));
    EXPECT_THAT(startFailure("x"), HasSubstr("not JSON"));
}

} // namespace
} // namespace Host
