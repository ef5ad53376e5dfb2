#include "tasks/Capacity.h"

#include <windows.h>

namespace Kep {
namespace {

// A probe's stacks as far as they are used, its request and what the system keeps of thread and socket.
constexpr std::size_t bytesOfTask = 96 * std::size_t{1024};

// The system's range of ports for sockets that name none has 16,384 unless somebody changed it.
constexpr std::size_t ports = 16384;
constexpr std::size_t otherPorts = 2048;

} // namespace

std::vector<Capacity> machineBounds()
{
    std::vector<Capacity> bounds{{ports - otherPorts, "UDP ports"}};
    MEMORYSTATUSEX memory{};
    memory.dwLength = sizeof memory;
    if (GlobalMemoryStatusEx(&memory) != 0) {
        bounds.push_back({memory.ullAvailPhys / (2 * bytesOfTask), "memory"}); // half of it, at most
    }
    return bounds;
}

} // namespace Kep
