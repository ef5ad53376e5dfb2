#include "host/console/Times.h"

#include "host/console/PageFiles.h"
#include "host/console/RandomId.h"
#include "host/console/Slots.h"

#include <gtest/gtest.h>

#include <optional>
#include <set>

namespace Host {
namespace {

std::chrono::system_clock::time_point at(std::int64_t seconds)
{
    return std::chrono::system_clock::time_point(std::chrono::seconds(seconds));
}

TEST(Times, AreWrittenInUtc)
{
    EXPECT_EQ(isoTime(at(0)), "1970-01-01T00:00:00Z");
    EXPECT_EQ(isoTime(at(1795253405)), "2026-11-21T09:30:05Z");
    EXPECT_EQ(isoTime(at(1709210096) + std::chrono::milliseconds(999)), "2024-02-29T12:34:56Z");
    EXPECT_EQ(httpDate(at(784111777)), "Sun, 06 Nov 1994 08:49:37 GMT"); // the example of RFC 9110, section 5.6.7
}

TEST(PageFiles, HaveAMediaTypeEach)
{
    EXPECT_EQ(mediaType("/index.html"), "text/html; charset=utf-8");
    EXPECT_EQ(mediaType("/app.js"), "text/javascript; charset=utf-8");
    EXPECT_EQ(mediaType("/style.css"), "text/css; charset=utf-8");
    EXPECT_EQ(mediaType("/favicon.svg"), "image/svg+xml");
    EXPECT_EQ(mediaType("/vendor/LICENSE"), "text/plain; charset=utf-8");
}

TEST(PageFiles, AreThere)
{
    ASSERT_NE(findPageFile("/"), nullptr);
    EXPECT_EQ(findPageFile("/")->path, "/index.html");
    EXPECT_NE(findPageFile("/")->content.find("<html"), std::string_view::npos);
    EXPECT_EQ(findPageFile("/")->content.find('\0'), std::string_view::npos);
    EXPECT_EQ(findPageFile("/nothing"), nullptr);
    EXPECT_EQ(findPageFile(""), nullptr);
}

TEST(RandomIds, AreSixteenDigitsAndDiffer)
{
    std::set<std::string> ids;
    for (int i = 0; i < 100; ++i)
        ids.insert(randomId());
    EXPECT_EQ(ids.size(), 100U);
    for (const std::string& id : ids) {
        EXPECT_EQ(id.size(), 16U);
        EXPECT_EQ(id.find_first_not_of("0123456789abcdef"), std::string::npos);
    }
}

TEST(Slots, AreHeldAndComeBack)
{
    Slots slots(1);
    std::optional<Slots::Hold> first(slots);
    EXPECT_TRUE(*first);
    {
        const Slots::Hold second(slots);
        EXPECT_FALSE(second);
    }
    first.reset();
    const Slots::Hold third(slots);
    EXPECT_TRUE(third);
}

} // namespace
} // namespace Host
