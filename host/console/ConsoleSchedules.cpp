#include "host/console/ConsoleSchedules.h"

#include "host/Errors.h"
#include "host/console/HttpReplies.h"
#include "host/console/RandomId.h"
#include "host/console/RunDocuments.h"
#include "host/console/Times.h"

#include <utility>

namespace Host {

namespace {

// Of what is kept of a schedule: the body that asked for its runs, and its credentials in words.
constexpr const char* BodyMember = "body";
constexpr const char* CredentialsMember = "credentials";
constexpr const char* IntervalMember = "everyMinutes";

JsonValue documentOf(const Schedule& schedule)
{
    const JsonValue body = schedule.request.value(BodyMember, JsonValue::object());
    const auto text = [&](const char* key) {
        const auto member = body.find(key);
        return member != body.end() && member->is_string() ? shortText(member->get<std::string>()) : std::string();
    };
    const auto port = body.find("port");
    return {{"id", schedule.id},
            {"name", text("name")},
            {"targets", text("targets")},
            {"exclude", text("exclude")},
            {"port", port != body.end() && port->is_number() ? *port : JsonValue(SnmpPort)},
            {"credentials", schedule.request.value(CredentialsMember, JsonValue::array())},
            {IntervalMember, schedule.every.count()},
            {"next", isoTime(schedule.next)},
            {"last", schedule.lastRun.empty() ? JsonValue() : JsonValue(schedule.lastRun)}};
}

std::chrono::minutes intervalOf(JsonBody& body)
{
    const auto minutes = body.integer(IntervalMember, static_cast<int>(Schedules::Shortest.count()),
                                      static_cast<int>(Schedules::Longest.count()));
    if (!minutes)
        throw badInput(IntervalMember, "how often it is to run is missing");
    return std::chrono::minutes(*minutes);
}

} // namespace

ConsoleSchedules::ConsoleSchedules(const std::string& path, ConsoleRuns& runs, LocalNetworks localNetworks)
    : runs_(runs), localNetworks_(std::move(localNetworks)), schedules_(path),
      scheduler_(schedules_, [this](const Schedule& schedule) { return start(schedule); })
{}

JsonValue ConsoleSchedules::list() const
{
    JsonValue all = JsonValue::array();
    for (const Schedule& schedule : schedules_.list())
        all.push_back(documentOf(schedule));
    return all;
}

JsonValue ConsoleSchedules::add(const std::string& text)
{
    JsonBody body(text);
    const RunRequest request = readRunRequest(body, localNetworks_);
    const std::chrono::minutes every = intervalOf(body);
    body.refuseOthers();
    requireConfirmed(request);
    JsonValue kept = parseReply(text);
    kept.erase(IntervalMember);
    try {
        const Schedule schedule =
            schedules_.add(randomId(), {{BodyMember, kept}, {CredentialsMember, request.credentials}}, every,
                           std::chrono::system_clock::now());
        scheduler_.wake();
        return documentOf(schedule);
    } catch (const UsageError& error) { // of the number of schedules; the interval has been checked
        throw HttpError(409, "tooManySchedules", error.what());
    }
}

void ConsoleSchedules::remove(const std::string& id)
{
    if (!schedules_.remove(id))
        throw notFound();
}

std::string ConsoleSchedules::start(const Schedule& schedule)
{
    JsonBody body(schedule.request.at(BodyMember), "", "");
    RunRequest request = readRunRequest(body, localNetworks_);
    request.schedule = schedule.id;
    return runs_.start(std::move(request))->id();
}

} // namespace Host
