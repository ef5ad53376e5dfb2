#include "host/console/RunRoutes.h"

#include "host/Comparison.h"
#include "host/ComparisonFormats.h"
#include "host/OutcomeFormats.h"
#include "host/ResultFormats.h"
#include "host/console/HttpQuery.h"
#include "host/console/HttpReplies.h"
#include "host/console/RunDocuments.h"

#include <algorithm>
#include <chrono>

namespace Host {

namespace {

using namespace std::chrono_literals;
using Names = std::vector<std::string>;

constexpr std::size_t MostRangesShown = 100;
constexpr std::size_t MostInReply = 2000;
constexpr auto LongestStop = 60s;

HttpResponse targets(const HttpRequest& request, const LocalNetworks& localNetworks)
{
    JsonBody body(request.body);
    const std::string included = body.text("targets").value_or("");
    const std::string excluded = body.text("exclude").value_or("");
    body.refuseOthers();
    const AddressRanges ranges = planOf(included, excluded, localNetworks);
    return jsonResponse({{"addresses", countProbed(ranges)}, {"ranges", rangesDocument(ranges, MostRangesShown)}});
}

HttpResponse start(const HttpRequest& request, ConsoleRuns& runs, const LocalNetworks& localNetworks)
{
    JsonBody body(request.body);
    RunRequest asked = readRunRequest(body, localNetworks);
    body.refuseOthers();
    requireConfirmed(asked);
    return jsonResponse(runs.start(std::move(asked))->summary(), 201);
}

HttpResponse one(const HttpRequest& request, const IRun& run)
{
    const PrinterSlice slice = run.printers(queryNumber(request.query, "from"), MostInReply);
    JsonValue document = run.summary();
    document["printers"] = printersDocument(slice.printers);
    document["next"] = slice.next;
    return jsonResponse(document);
}

HttpResponse stop(ConsoleRuns& runs, const std::string& id, Slots& slots)
{
    const ConsoleRuns::AnyRun run = runs.find(id);
    const Slots::Hold slot(slots);
    const auto now = std::chrono::steady_clock::now();
    runs.stop(id, slot ? now + LongestStop : now);
    return slot ? jsonResponse(run->summary()) : refusalOf(503);
}

HttpResponse download(const std::string& content, const std::string& type, const std::string& name)
{
    return {.contentType = type,
            .body = content,
            .fields = {{"Content-Disposition", "attachment; filename=\"" + name + '"'}}};
}

HttpResponse comparison(const HttpRequest& request, const ConsoleRuns& runs, const std::string& id)
{
    const ConsoleRuns::AnyRun run = runs.find(id);
    const auto with = queryText(request.query, "with");
    const ConsoleRuns::AnyRun before = with ? runs.find(*with) : runs.before(id, run->ranges());
    JsonValue document = {{"with", before ? before->summary() : JsonValue()}};
    document.update(
        comparisonDocument(before ? compare(before->result().printers, run->result(), run->ranges()) : Comparison()));
    return jsonResponse(document);
}

void addDownloads(Routes& routes, ConsoleRuns& runs)
{
    routes.add("GET", "/api/runs/*/printers.csv", [&runs](const HttpRequest&, const Names& names) {
        return download(csvText(runs.find(names[0])->result()), "text/csv; charset=utf-8", "printers.csv");
    });
    routes.add("GET", "/api/runs/*/printers.json", [&runs](const HttpRequest&, const Names& names) {
        return download(jsonText(runs.find(names[0])->result()), "application/json", "printers.json");
    });
}

constexpr std::size_t LinesOfPart = 2000;

bool isHeard(AddressOutcome outcome)
{
    return outcome != AddressOutcome::Silent;
}

/// A file of what became of each address, a part at a time: of a large run it is long.
HttpResponse outcomesDownload(ConsoleRuns::AnyRun run, OutcomeFormat format, const char* type, const char* name)
{
    HttpResponse response = download("", type, name);
    response.parts = [run = std::move(run), format, part = outcomeHead(format), from = std::uint64_t{0}]() mutable {
        if (!part.empty() || from > LastAddress)
            return std::exchange(part, {});
        const auto entries =
            run->outcomes(static_cast<std::uint32_t>(from), LinesOfPart, [](AddressOutcome) { return true; });
        from = entries.empty() ? std::uint64_t{LastAddress} + 1 : std::uint64_t{entries.back().address} + 1;
        std::string lines;
        for (const RunOutcomes::Entry& entry : entries)
            lines += outcomeLine(entry, format);
        return lines;
    };
    return response;
}

/// Clients ask from the address on that follows the last one they have; 0 when they have none.
HttpResponse outcomesFrom(const HttpRequest& request, const IRun& run)
{
    const std::size_t from = queryNumber(request.query, "from");
    std::vector<RunOutcomes::Entry> entries;
    if (from <= LastAddress)
        entries = run.outcomes(static_cast<std::uint32_t>(from), MostInReply, isHeard);
    JsonValue list = JsonValue::array();
    for (const RunOutcomes::Entry& entry : entries)
        list.push_back(
            {{"ip", addressText(entry.address)}, {"outcome", nameOf(entry.outcome)}, {"problem", entry.problem}});
    const std::uint64_t next = entries.empty() ? from : std::uint64_t{entries.back().address} + 1;
    return jsonResponse({{"outcomes", list}, {"next", next}});
}

void addOutcomes(Routes& routes, ConsoleRuns& runs)
{
    routes.add("GET", "/api/runs/*/outcomes", [&runs](const HttpRequest& request, const Names& names) {
        return outcomesFrom(request, *runs.find(names[0]));
    });
    routes.add("GET", "/api/runs/*/outcomes.csv", [&runs](const HttpRequest&, const Names& names) {
        return outcomesDownload(runs.find(names[0]), OutcomeFormat::Csv, "text/csv; charset=utf-8", "outcomes.csv");
    });
    routes.add("GET", "/api/runs/*/outcomes.jsonl", [&runs](const HttpRequest&, const Names& names) {
        return outcomesDownload(runs.find(names[0]), OutcomeFormat::JsonLines, "application/x-ndjson",
                                "outcomes.jsonl");
    });
}

} // namespace

void addRunRoutes(Routes& routes, const std::string& instance, ConsoleRuns& runs, Slots& slots,
                  const LocalNetworks& localNetworks)
{
    routes.add("GET", "/api/runs", [&runs, instance](const HttpRequest&, const Names&) {
        return jsonResponse({{"instance", instance}, {"runs", runs.summaries()}});
    });
    routes.add("POST", "/api/targets",
               [=](const HttpRequest& request, const Names&) { return targets(request, localNetworks); });
    routes.add("POST", "/api/runs", [&runs, localNetworks](const HttpRequest& request, const Names&) {
        return start(request, runs, localNetworks);
    });
    routes.add("GET", "/api/runs/*",
               [&runs](const HttpRequest& request, const Names& names) { return one(request, *runs.find(names[0])); });
    routes.add("DELETE", "/api/runs/*", [&runs](const HttpRequest&, const Names& names) {
        runs.forget(names[0]);
        return HttpResponse{.status = 204};
    });
    routes.add("POST", "/api/runs/*/stop",
               [&runs, &slots](const HttpRequest&, const Names& names) { return stop(runs, names[0], slots); });
    routes.add("GET", "/api/runs/*/comparison",
               [&runs](const HttpRequest& request, const Names& names) { return comparison(request, runs, names[0]); });
    addDownloads(routes, runs);
    addOutcomes(routes, runs);
}

} // namespace Host
