#include "host/JsonRpc.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace Host {
namespace {

using testing::HasSubstr;
using testing::Not;

struct Refusal {
    int code;
    std::string id;
    std::string message;
};

Refusal refusal(const std::string& text)
{
    try {
        parseRequest(text);
    } catch (const RpcError& error) {
        return {static_cast<int>(error.code()), error.id(), error.what()};
    }
    return {0, "", "accepted"};
}

TEST(JsonRpcRequests, HaveMethodParamsAndId)
{
    const RpcRequest request = parseRequest(
        R"({"jsonrpc":"2.0","method":"PrinterDiscovery.getStatus","params":{"firstIdx":0,"cookie":"c"},"id":7})");
    EXPECT_EQ(request.id, "7");
    EXPECT_EQ(request.method, "PrinterDiscovery.getStatus");
    EXPECT_EQ(request.params, R"({"firstIdx":0,"cookie":"c"})");
}

TEST(JsonRpcRequests, KeepTheKindOfTheirId)
{
    EXPECT_EQ(parseRequest(R"({"jsonrpc":"2.0","method":"m","id":"7"})").id, "\"7\"");
    EXPECT_EQ(parseRequest(R"({"jsonrpc":"2.0","method":"m","id":null})").id, "null");
    EXPECT_EQ(parseRequest(R"({"jsonrpc":"2.0","method":"m","id":-3})").id, "-3");
    EXPECT_EQ(parseRequest(R"({"jsonrpc":"2.0","method":"m"})").id, "");
}

TEST(JsonRpcRequests, WithoutParamsMeanAnEmptyDocument)
{
    EXPECT_EQ(parseRequest(R"({"jsonrpc":"2.0","method":"m","id":1})").params, "{}");
}

TEST(JsonRpcRequests, ThatAreNotJsonAreNeverQuoted)
{
    for (const char* text : {"s3cret", R"({"password":"s3cret)", R"({"a":1} s3cret)", "{\"a\":\"s3cret\xff\"}"}) {
        const Refusal refused = refusal(text);
        EXPECT_EQ(refused.code, -32700) << text;
        EXPECT_EQ(refused.id, "null");
        EXPECT_THAT(refused.message, Not(HasSubstr("s3c")));
    }
}

TEST(JsonRpcRequests, WithNumbersOutOfRangeAreRefused)
{
    EXPECT_EQ(refusal(R"({"jsonrpc":"2.0","method":"m","id":1e400})").code, -32700);
}

TEST(JsonRpcRequests, NestedTooDeeplyAreRefused)
{
    const auto nested = [](std::size_t depth) {
        return R"({"jsonrpc":"2.0","method":"m","params":{"a":)" + std::string(depth, '[') + std::string(depth, ']') +
               "}}";
    };
    EXPECT_EQ(refusal(nested(50)).message, "accepted");
    EXPECT_EQ(refusal(nested(100)).code, -32700);
    EXPECT_EQ(refusal(nested(1000000)).code, -32700);
    EXPECT_EQ(refusal(std::string(1000000, '[')).code, -32700);
}

TEST(JsonRpcRequests, ThatAreNoRequestsAreRefused)
{
    for (const char* text :
         {"1", "\"x\"", "null", "{}", R"({"method":"m","id":1})", R"({"jsonrpc":"1.0","method":"m"})",
          R"({"jsonrpc":2.0,"method":"m"})", R"({"jsonrpc":"2.0"})", R"({"jsonrpc":"2.0","method":1})",
          R"({"jsonrpc":"2.0","method":"m","id":{}})", R"({"jsonrpc":"2.0","method":"m","id":true})"})
        EXPECT_EQ(refusal(text).code, -32600) << text;
    EXPECT_EQ(refusal(R"({"method":"m","id":1})").id, "1");
    EXPECT_EQ(refusal(R"({"jsonrpc":"2.0","id":"x"})").id, "\"x\"");
    EXPECT_EQ(refusal(R"({"jsonrpc":"2.0"})").id, "null");
}

TEST(JsonRpcRequests, ParamsAreAnObject)
{
    for (const char* params : {"[]", "1", "null", "\"x\""})
        EXPECT_EQ(refusal(R"({"jsonrpc":"2.0","method":"m","id":1,"params":)" + std::string(params) + "}").code, -32602)
            << params;
}

TEST(JsonRpcRequests, BatchesAreRefused)
{
    const Refusal refused = refusal(R"([{"jsonrpc":"2.0","method":"m","id":1}])");
    EXPECT_EQ(refused.code, -32600);
    EXPECT_THAT(refused.message, HasSubstr("batches"));
    EXPECT_EQ(refusal("[]").code, -32600);
}

TEST(JsonRpcAnswers, CarryTheResultAsItStands)
{
    EXPECT_EQ(resultAnswer("7", R"({"z":1,"a":[]})"), R"({"jsonrpc":"2.0","result":{"z":1,"a":[]},"id":7})");
}

TEST(JsonRpcAnswers, AreOneLine)
{
    EXPECT_EQ(resultAnswer("7", "{\n  \"a\":\r\n1}"), R"({"jsonrpc":"2.0","result":{   "a":  1},"id":7})");
    EXPECT_EQ(errorAnswer("7", RpcCode::CallFailed, "a\nb", "{\n}"),
              R"({"jsonrpc":"2.0","error":{"code":-32000,"message":"a\nb","data":{ }},"id":7})");
}

TEST(JsonRpcAnswers, ErrorsHaveDataOnlyIfThereIsSome)
{
    EXPECT_EQ(errorAnswer("null", RpcCode::ParseError, "say \"x\""),
              R"({"jsonrpc":"2.0","error":{"code":-32700,"message":"say \"x\""},"id":null})");
}

} // namespace
} // namespace Host
