#include "Kep/Tasks/Task.h"

#include "tasks/HeldCode.h"

#include <utility>

namespace Kep::Tasks {

Task::Task(std::string name, RunCallback run, FinishCallback finish)
    : code_(holdCode(run.code())), name_(std::move(name)), run_(std::move(run)), finish_(std::move(finish))
{}

Task::~Task() = default;

void Task::setOptions(const TaskOptions& options)
{
    options_ = options;
}

} // namespace Kep::Tasks
