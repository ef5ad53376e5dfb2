#include "tests/unit/kep/platform/FakeTasks.h"

#include "Kep/Exception.h"
#include "tasks/CallbacksService.h"
#include "tasks/ServiceCaller.h"

std::string& events()
{
    static std::string log;
    return log;
}

namespace Kep::Platform {

IServiceCaller::~IServiceCaller() = default;

TaskQueue& LocalServiceCaller::taskQueue(const std::string&)
{
    throw Kep::NotFoundException("no queue here");
}

void CallbacksService::close()
{
    events() += "close ";
}

void CallbacksService::reopen()
{
    events() += "open ";
}

} // namespace Kep::Platform
