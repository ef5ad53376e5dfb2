#include "host/console/RequestGuard.h"

#include "host/Errors.h"
#include "host/console/HttpReplies.h"
#include "tests/unit/host/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Host {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

constexpr const char* GuardToken = "0123456789abcdef";

/// The status with which a request is kept out; 0 when it is let in.
int statusOf(const RequestGuard& guard, const HttpRequest& request)
{
    try {
        guard.check(request);
        return 0;
    } catch (const HttpError& error) {
        return error.status();
    }
}

HttpRequest get(const std::string& path, const std::string& host)
{
    HttpRequest request;
    request.method = "GET";
    request.path = path;
    request.host = host;
    return request;
}

HttpRequest from(const std::string& host, const std::string& origin)
{
    HttpRequest request = get("/", host);
    request.origin = origin;
    return request;
}

HttpRequest post(const std::string& contentType)
{
    HttpRequest request = get("/api/runs", "127.0.0.1:8631");
    request.method = "POST";
    request.contentType = contentType;
    return request;
}

HttpRequest with(const std::string& path, const std::string& authorization)
{
    HttpRequest request = get(path, "127.0.0.1:8631");
    request.authorization = authorization;
    return request;
}

TEST(RequestGuards, LetInWhatNamesTheirAddress)
{
    const RequestGuard guard({.address = "127.0.0.1", .port = 8631});
    for (const char* host : {"127.0.0.1:8631", "localhost:8631", "LocalHost:8631"})
        EXPECT_EQ(statusOf(guard, get("/", host)), 0) << host;
}

TEST(RequestGuards, KeepOutWhatNamesAnotherPlace)
{
    const RequestGuard guard({.address = "127.0.0.1", .port = 8631});
    for (const char* host :
         {"", "evil.example", "evil.example:8631", "127.0.0.1", "localhost", "127.0.0.1:80", "127.0.0.2:8631",
          "127.0.0.1:8631, evil.example", "127.0.0.1:8631.evil.example", "evil.example:8631@127.0.0.1:8631", ":8631"})
        EXPECT_EQ(statusOf(guard, get("/healthz", host)), 421) << host;
}

TEST(RequestGuards, LocalhostIsNoNameOfAnOuterAddress)
{
    const RequestGuard guard({.address = "192.0.2.7", .port = 8631});
    EXPECT_EQ(statusOf(guard, get("/", "192.0.2.7:8631")), 0);
    EXPECT_EQ(statusOf(guard, get("/", "localhost:8631")), 421);
}

TEST(RequestGuards, AtTheUsualPortThePortMayBeLeftOut)
{
    const RequestGuard guard({.address = "127.0.0.1", .port = 80});
    EXPECT_EQ(statusOf(guard, get("/", "127.0.0.1")), 0);
    EXPECT_EQ(statusOf(guard, get("/", "127.0.0.1:80")), 0);
}

TEST(RequestGuards, FurtherNamesCountWithAnyPortUnlessTheyHaveOne)
{
    const RequestGuard guard({.address = "127.0.0.1", .port = 8631, .names = {"Print.Example.com", "b.example:443"}});
    for (const char* host : {"print.example.com", "PRINT.example.com:8443", "b.example:443"})
        EXPECT_EQ(statusOf(guard, get("/", host)), 0) << host;
    for (const char* host : {"b.example", "b.example:80", "x.print.example.com"})
        EXPECT_EQ(statusOf(guard, get("/", host)), 421) << host;
}

TEST(RequestGuards, AtAllAddressesEachAddressIsMeantAndNoName)
{
    const RequestGuard guard({.address = "0.0.0.0", .port = 8631});
    EXPECT_EQ(statusOf(guard, get("/", "192.0.2.7:8631")), 0);
    for (const char* host : {"192.0.2.7", "192.0.2.7:80", "evil.example:8631", "localhost:8631"})
        EXPECT_EQ(statusOf(guard, get("/", host)), 421) << host;
}

TEST(RequestGuards, KeepOutPagesOfOtherPlaces)
{
    const RequestGuard guard({.address = "127.0.0.1", .port = 8631, .names = {"print.example.com"}});
    for (const char* origin : {"http://127.0.0.1:8631", "HTTP://127.0.0.1:8631", "https://127.0.0.1:8631", ""})
        EXPECT_EQ(statusOf(guard, from("127.0.0.1:8631", origin)), 0) << origin;
    for (const char* origin : {"null", "http://evil.example", "http://localhost:8631", "http://127.0.0.1",
                               "http://127.0.0.1:8631.evil.example", "file://", "127.0.0.1:8631"})
        EXPECT_EQ(statusOf(guard, from("127.0.0.1:8631", origin)), 403) << origin;
    EXPECT_EQ(statusOf(guard, from("print.example.com", "https://print.example.com")), 0);
}

TEST(RequestGuards, BodiesAreJson)
{
    const RequestGuard guard({.address = "127.0.0.1", .port = 8631});
    for (const char* type : {"application/json", "Application/JSON; charset=utf-8", "application/json ;x=y"})
        EXPECT_EQ(statusOf(guard, post(type)), 0) << type;
    for (const char* type : {"", "text/plain", "application/x-www-form-urlencoded", "multipart/form-data",
                             "application/json, text/plain", "application/jsonp"})
        EXPECT_EQ(statusOf(guard, post(type)), 415) << type;
}

TEST(RequestGuards, TheTokenGuardsAllButThePage)
{
    const RequestGuard guard({.address = "127.0.0.1", .port = 8631, .names = {}, .token = Token(GuardToken, "test")});
    for (const char* path : {"/", "/app.js", "/healthz", "/apis"})
        EXPECT_EQ(statusOf(guard, with(path, "")), 0) << path;
    for (const char* path : {"/api", "/api/session", "/api/runs/x", "/api/no/such", "/rpc", "/metrics"}) {
        EXPECT_EQ(statusOf(guard, with(path, "")), 401) << path;
        EXPECT_EQ(statusOf(guard, with(path, std::string("Bearer ") + GuardToken)), 0) << path;
        EXPECT_EQ(statusOf(guard, with(path, std::string("bearer ") + GuardToken)), 0) << path;
    }
}

TEST(Tokens, AllowNothingButThemselves)
{
    const Token token(GuardToken, "test");
    for (const char* wrong : {"", "Bearer", "Bearer ", "Bearer 0123456789abcdeF", "Bearer 0123456789abcde",
                              "Bearer 0123456789abcdef0", "Basic 0123456789abcdef", "0123456789abcdef",
                              "Bearer  0123456789abcdef", "Bearer 0123456789abcdef, Bearer 0123456789abcdef"})
        EXPECT_FALSE(token.allows(wrong)) << wrong;
    EXPECT_TRUE(token.allows("Bearer 0123456789abcdef"));
}

TEST(Tokens, AreLongEnoughAndVisible)
{
    EXPECT_NO_THROW(Token("0123456789abcdef", "test"));
    for (const char* bad : {"0123456789abcde", "0123456789 bcdef", "0123456789abcd\x7F_", "0123456789abcd\xC3\xA9"})
        try {
            const Token token(bad, "--token-file: f");
            FAIL() << bad;
        } catch (const UsageError& error) {
            EXPECT_THAT(error.what(), AllOf(HasSubstr("--token-file: f: a token"), Not(HasSubstr("0123456789"))));
        }
}

TEST(Tokens, ComeFromAFileForTheirOwnerAlone)
{
    const TemporaryFolder folder;
    EXPECT_TRUE(
        readTokenFile(folder.write("token", "0123456789abcdef\n"), "--token-file").allows("Bearer 0123456789abcdef"));
    const std::string shared = folder.write("shared", "0123456789abcdef\n", std::filesystem::perms(0644));
    EXPECT_THROW(readTokenFile(shared, "--token-file"), UsageError);
    EXPECT_THROW(readTokenFile(folder.file("none"), "--token-file"), UsageError);
    EXPECT_THROW(readTokenFile(folder.write("short", "x\n"), "--token-file"), UsageError);
}

} // namespace
} // namespace Host
