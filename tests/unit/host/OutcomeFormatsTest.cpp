#include "host/OutcomeFormats.h"

#include "host/Errors.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <string>

namespace Host {
namespace {

using testing::AllOf;
using testing::HasSubstr;

constexpr std::uint32_t first = (10U << 24U) + 1;

RunOutcomes::Entry failed(const std::string& problem)
{
    return {.address = first, .outcome = AddressOutcome::Failed, .problem = problem};
}

std::string written(const RunOutcomes& outcomes, OutcomeFormat format)
{
    std::string text;
    writeOutcomes(outcomes, format, [&](std::string_view part) { text += part; });
    return text;
}

std::string fileRefusal(std::string_view path)
{
    try {
        outcomeFormatOf(path, "--outcomes");
        return "accepted";
    } catch (const UsageError& error) {
        return error.what();
    }
}

TEST(OutcomeFormats, FollowTheNameOfTheFile)
{
    EXPECT_EQ(outcomeFormatOf("a/b.csv", "--outcomes"), OutcomeFormat::Csv);
    EXPECT_EQ(outcomeFormatOf("b.jsonl", "--outcomes"), OutcomeFormat::JsonLines);
    for (const char* path : {"", "b", "b.json", "b.CSV", "csv", "b.csv.gz"})
        EXPECT_THAT(fileRefusal(path), AllOf(HasSubstr("--outcomes: "), HasSubstr(".csv and .jsonl"))) << path;
}

TEST(OutcomeFormats, LinesNameAddressOutcomeAndProblem)
{
    EXPECT_EQ(outcomeLine(failed("error status 5"), OutcomeFormat::Csv), "10.0.0.1,failed,error status 5\r\n");
    EXPECT_EQ(outcomeLine(failed("error status 5"), OutcomeFormat::JsonLines),
              "{\"ip\":\"10.0.0.1\",\"outcome\":\"failed\",\"problem\":\"error status 5\"}\n");
}

TEST(OutcomeFormats, ProblemsAreQuotedAsTheFormatDemands)
{
    const std::string problem = "=1, \"two\"";
    EXPECT_EQ(outcomeLine(failed(problem), OutcomeFormat::Csv), "10.0.0.1,failed,\"'=1, \"\"two\"\"\"\r\n");
    EXPECT_EQ(nlohmann::json::parse(outcomeLine(failed(problem), OutcomeFormat::JsonLines)).at("problem"), problem);
}

TEST(OutcomeFormats, AllAddressesThatWereProbedAreWritten)
{
    RunOutcomes outcomes{AddressRanges{{first, first + (1U << 16U)}}};
    for (std::uint32_t i = 0; i < 10'000; ++i)
        outcomes.observe({.call = 1, .address = first + i, .outcome = Kep::Host::Outcome::Silent, .problem = {}});
    const auto probed = static_cast<std::ptrdiff_t>(outcomes.counts()[AddressOutcome::Silent]);
    const std::string csv = written(outcomes, OutcomeFormat::Csv);
    EXPECT_EQ(std::count(csv.begin(), csv.end(), '\n'), probed + 1);
    EXPECT_THAT(csv, testing::StartsWith("ip,outcome,problem\r\n10.0.0.1,silent,\r\n10.0.0.2,"));
    const std::string lines = written(outcomes, OutcomeFormat::JsonLines);
    EXPECT_EQ(std::count(lines.begin(), lines.end(), '\n'), probed);
}

TEST(OutcomeFormats, NothingProbedIsNoLine)
{
    const RunOutcomes outcomes{AddressRanges{{first, first + 8}}};
    EXPECT_EQ(written(outcomes, OutcomeFormat::Csv), "ip,outcome,problem\r\n");
    EXPECT_EQ(written(outcomes, OutcomeFormat::JsonLines), "");
}

} // namespace
} // namespace Host
