#include "HostFakes.h"

#include "Allocations.h"
#include "Kep/Exception.h"
#include "Kep/Platform/Proxy/Tasks.h"
#include "engine/Time.h"
#include "tasks/ServiceCaller.h"
#include "tasks/TaskQueue.h"
#include "tasks/TaskThreads.h"

#include <atomic>
#include <chrono>
#include <thread>
#include <utility>

namespace {

std::atomic<std::int64_t> ticks{1'000'000};
std::atomic<bool> threadsRefused{false};
std::atomic<std::size_t> threads{0};
std::atomic<std::size_t> submissionsLeft{0};

void nap() noexcept
{
    std::this_thread::sleep_for(std::chrono::microseconds(200));
}

bool submissionFails()
{
    std::size_t left = submissionsLeft.load();
    while (left != 0 && !submissionsLeft.compare_exchange_weak(left, left - 1))
        continue;
    return left == 1;
}

} // namespace

namespace Faults {

void passTime(std::int64_t seconds)
{
    ticks += seconds * 10'000'000;
}

void refuseThreads(bool refused)
{
    threadsRefused = refused;
}

std::size_t queueThreads()
{
    return threads.load();
}

void failSubmission(std::size_t nth)
{
    submissionsLeft = nth;
}

} // namespace Faults

namespace PrinterDiscoveryPlugin::Time {

std::int64_t systemTicks() noexcept
{
    return ticks.load();
}

void sleepWhileDraining() noexcept
{
    nap();
}

void sleepBeforeRetry() noexcept {}

void sleepBetweenPolls() noexcept
{
    nap();
}

} // namespace PrinterDiscoveryPlugin::Time

namespace Kep {

bool SystemTaskThreads::start(std::function<void()> body) noexcept
try {
    if (threadsRefused.load())
        return false;
    ++threads;
    std::thread([body = std::move(body)] {
        body();
        --threads;
    }).detach();
    return true;
} catch (const std::exception&) {
    --threads;
    return false;
}

namespace Platform::Proxy::Tasks {

struct Proxy::Impl {
    TaskQueue& queue;
    std::shared_ptr<CallbacksService> callbacks;
};

Proxy::Proxy(IServiceCaller& caller, std::shared_ptr<CallbacksService> callbacks, const std::string& service)
    : impl_(std::make_unique<Impl>(Impl{caller.taskQueue(service), std::move(callbacks)}))
{}

Proxy::~Proxy() = default;

std::uint32_t Proxy::submit(const std::shared_ptr<Kep::Tasks::Task>& task, const std::string&, int)
{
    if (submissionFails())
        throw GenericException("the queue takes no task");
    return impl_->queue.submit(task, impl_->callbacks);
}

} // namespace Platform::Proxy::Tasks
} // namespace Kep
