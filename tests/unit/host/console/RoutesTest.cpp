#include "host/console/Routes.h"

#include "host/console/HttpQuery.h"
#include "host/console/HttpReplies.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Host {
namespace {

using testing::Contains;
using testing::Pair;

class RouteTables : public testing::Test {
protected:
    RouteTables()
    {
        add("GET", "/");
        add("GET", "/api/runs");
        add("POST", "/api/runs");
        add("GET", "/api/runs/*");
        add("DELETE", "/api/runs/*");
        add("POST", "/api/runs/*/stop");
    }

    void add(const std::string& method, const std::string& pattern)
    {
        routes.add(method, pattern, [=](const HttpRequest&, const std::vector<std::string>& names) {
            std::string body = method + ' ' + pattern;
            for (const std::string& name : names)
                body += ' ' + name;
            return HttpResponse{.body = body};
        });
    }

    HttpResponse answer(const std::string& method, const std::string& path) const
    {
        HttpRequest request;
        request.method = method;
        request.path = path;
        return routes.answer(request);
    }

    int statusOf(const std::string& method, const std::string& path) const
    {
        try {
            return answer(method, path).status;
        } catch (const HttpError& error) {
            return error.status();
        }
    }

    Routes routes;
};

TEST_F(RouteTables, FindTheActionByMethodAndPath)
{
    EXPECT_EQ(answer("GET", "/").body, "GET /");
    EXPECT_EQ(answer("GET", "/api/runs").body, "GET /api/runs");
    EXPECT_EQ(answer("POST", "/api/runs").body, "POST /api/runs");
    EXPECT_EQ(answer("DELETE", "/api/runs/7").body, "DELETE /api/runs/* 7");
    EXPECT_EQ(answer("POST", "/api/runs/a%20b/stop").body, "POST /api/runs/*/stop a%20b");
}

TEST_F(RouteTables, AnswerHeadAsGet)
{
    EXPECT_EQ(answer("HEAD", "/api/runs").body, "GET /api/runs");
}

TEST_F(RouteTables, KnowNoOtherPaths)
{
    for (const char* path : {"/api", "/api/runs/", "/api/runs//stop", "/api/runs/7/stop/", "//", "/api/runs/7/x",
                             "/API/runs", "/../etc/passwd", "/api/runs/7/../.."})
        EXPECT_EQ(statusOf("GET", path), 404) << path;
}

TEST_F(RouteTables, TellWhichMethodsAPathTakes)
{
    const HttpResponse response = answer("PUT", "/api/runs");
    EXPECT_EQ(response.status, 405);
    EXPECT_THAT(response.fields, Contains(Pair("Allow", "GET, POST")));
}

TEST(HttpQueries, GiveTheirValues)
{
    EXPECT_EQ(queryText("from=5&with=x", "with"), "x");
    EXPECT_EQ(queryText("with=", "with"), "");
    EXPECT_EQ(queryText("with", "with"), "");
    EXPECT_EQ(queryText("a=b=c", "a"), "b=c");
    EXPECT_EQ(queryText("within=x", "with"), std::nullopt);
    EXPECT_EQ(queryText("", "with"), std::nullopt);
    EXPECT_EQ(queryNumber("from=5", "from"), 5U);
    EXPECT_EQ(queryNumber("", "from"), 0U);
}

TEST(HttpQueries, NumbersAreNumbers)
{
    for (const char* query : {"from=", "from=-1", "from=1x", "from=99999999999999999999", "from=+1", "from= 1"})
        EXPECT_THROW(queryNumber(query, "from"), HttpError) << query;
}

} // namespace
} // namespace Host
