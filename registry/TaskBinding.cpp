#include "registry/TaskBinding.h"

#include "engine/PdExecutor.h"

#include <utility>

namespace PrinterDiscoveryPlugin {
namespace {

std::shared_ptr<Kep::Tasks::Task> makeTask(const char* name, const std::string& item, PdExecutor& run,
                                           Kep::Tasks::RunCallback work)
{
    auto finish = [run = &run](const Kep::Tasks::FinishContext& context) { run->taskFinished(context.taskId); };
    auto task = std::make_shared<Kep::Tasks::Task>(name, std::move(work), std::move(finish));
    Kep::Tasks::TaskOptions options;
    options.description = "PrinterDiscovery: " + item;
    task->setOptions(options);
    return task;
}

std::string itemText(const std::vector<IpRangeText>& ranges)
{
    std::string text;
    for (const IpRangeText& range : ranges)
        text.append(range.from).append("-").append(range.to).append(",");
    return text;
}

} // namespace

std::shared_ptr<Kep::Tasks::Task> TaskBinding::testIp(PdExecutor& run, const std::string& address) const
{
    auto probe = [run = &run, address](Kep::Tasks::RunContext&) {
        run->testIp(address);
        return true;
    };
    return makeTask("Test IP", address, run, std::move(probe));
}

std::shared_ptr<Kep::Tasks::Task> TaskBinding::testIpRanges(PdExecutor& run,
                                                            const std::vector<IpRangeText>& ranges) const
{
    auto sweepRest = [run = &run, ranges](Kep::Tasks::RunContext&) {
        run->sweep(ranges, {});
        return true;
    };
    return makeTask("Test IP ranges", itemText(ranges), run, std::move(sweepRest));
}

} // namespace PrinterDiscoveryPlugin
