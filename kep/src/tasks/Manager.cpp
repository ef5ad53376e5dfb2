#include "Kep/Tasks/IManager.h"

namespace Kep::Tasks {

IManager::~IManager() = default;

} // namespace Kep::Tasks
