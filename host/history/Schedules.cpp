#include "host/history/Schedules.h"

#include "host/Errors.h"
#include "host/history/Keys.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace Host {

namespace {

using std::chrono::minutes;
using std::chrono::seconds;

constexpr const char* Prefix = "schedules.";

JsonValue documentOf(const Schedule& schedule)
{
    const auto next = std::chrono::floor<seconds>(schedule.next.time_since_epoch());
    return {{"request", schedule.request},
            {"everyMinutes", schedule.every.count()},
            {"next", next.count()},
            {"lastRun", schedule.lastRun}};
}

bool isInterval(minutes every)
{
    return every >= Schedules::Shortest && every <= Schedules::Longest;
}

/// None for what is no schedule.
std::optional<Schedule> scheduleOf(const std::string& id, const std::string& text)
{
    try {
        const JsonValue document = JsonValue::parse(text);
        Schedule schedule{.id = id,
                          .request = document.at("request"),
                          .every = minutes(document.at("everyMinutes").get<int>()),
                          .next = Schedule::Time(seconds(document.at("next").get<std::int64_t>())),
                          .lastRun = document.at("lastRun").get<std::string>()};
        return schedule.request.is_object() && isInterval(schedule.every) ? std::optional(schedule) : std::nullopt;
    } catch (const JsonValue::exception&) {
        return std::nullopt;
    }
}

/// The first of a schedule's times after `now`.
Schedule::Time timeAfter(const Schedule& schedule, Schedule::Time now)
{
    const auto missed = (now - schedule.next) / schedule.every;
    return schedule.next + (missed + 1) * schedule.every;
}

} // namespace

Schedules::Schedules(std::string path) : store_(std::move(path))
{
    const Kep::MutexLock lock(mutex_);
    for (const auto& [key, text] : store_.list(Prefix)) {
        const std::string place = key.substr(std::string_view(Prefix).size());
        if (!isPlace(place))
            continue;
        if (auto schedule = scheduleOf(idOf(place), text))
            schedules_.emplace(place, std::move(*schedule));
    }
}

std::vector<Schedule> Schedules::list() const
{
    const Kep::MutexLock lock(mutex_);
    std::vector<Schedule> all;
    for (const auto& [place, schedule] : schedules_)
        all.push_back(schedule);
    return all;
}

Schedule Schedules::add(std::string id, JsonValue request, minutes every, Time now)
{
    if (!isInterval(every))
        throw UsageError("a schedule repeats every " + std::to_string(Shortest.count()) + " to " +
                         std::to_string(Longest.count()) + " minutes");
    const Kep::MutexLock lock(mutex_);
    if (schedules_.size() >= Most)
        throw UsageError("there are " + std::to_string(Most) + " schedules already, as many as there may be");
    const std::string place = placeOf(now, id);
    Schedule schedule{
        .id = std::move(id), .request = std::move(request), .every = every, .next = now + every, .lastRun = {}};
    write(place, schedule);
    return schedule;
}

bool Schedules::remove(const std::string& id)
{
    const Kep::MutexLock lock(mutex_);
    const auto place = find(id);
    if (place == schedules_.end())
        return false;
    store_.change({{Prefix + place->first, std::nullopt}});
    schedules_.erase(place);
    return true;
}

std::vector<Schedule> Schedules::takeDue(Time now)
{
    const Kep::MutexLock lock(mutex_);
    std::vector<Schedule> due;
    Kept later = schedules_;
    Kep::Host::DataStore::Changes changes;
    for (auto& [place, schedule] : later) {
        if (schedule.next > now)
            continue;
        due.push_back(schedule);
        schedule.next = timeAfter(schedule, now);
        changes[Prefix + place] = textOf(documentOf(schedule));
    }
    if (!changes.empty())
        store_.change(changes);
    schedules_ = std::move(later);
    return due;
}

std::optional<Schedule::Time> Schedules::nextDue() const
{
    const Kep::MutexLock lock(mutex_);
    std::optional<Time> next;
    for (const auto& [place, schedule] : schedules_)
        next = next ? std::min(*next, schedule.next) : schedule.next;
    return next;
}

void Schedules::noteRun(const std::string& id, const std::string& run)
{
    const Kep::MutexLock lock(mutex_);
    const auto place = find(id);
    if (place == schedules_.end())
        return;
    Schedule schedule = place->second;
    schedule.lastRun = run;
    write(place->first, schedule);
}

void Schedules::write(const std::string& place, const Schedule& schedule)
{
    store_.set(Prefix + place, textOf(documentOf(schedule)));
    schedules_[place] = schedule;
}

Schedules::Kept::iterator Schedules::find(const std::string& id)
{
    return std::ranges::find_if(schedules_, [&](const auto& entry) { return entry.second.id == id; });
}

} // namespace Host
