#include "Kep/Host/Call.h"

#include "base/CurrentCall.h"
#include "tasks/TaskQueue.h"

#include <atomic>

namespace Kep::Host {
namespace {

CallId newCallId() noexcept
{
    static std::atomic<CallId> last{0};
    return ++last;
}

} // namespace

Call::Call() noexcept : id_(newCallId()), outer_(enterCall(id_))
{
    TaskQueue::process().openCall(id_);
}

Call::~Call()
{
    TaskQueue::process().closeCall(id_);
    enterCall(outer_);
}

CallWork workOf(CallId call)
{
    return TaskQueue::process().workOf(call);
}

void waitForWork(CallId call)
{
    TaskQueue::process().waitForWork(call);
}

bool hasEnded(CallId call)
{
    return TaskQueue::process().hasEnded(call);
}

void withdraw(CallId call)
{
    TaskQueue::process().withdraw(call);
}

} // namespace Kep::Host
