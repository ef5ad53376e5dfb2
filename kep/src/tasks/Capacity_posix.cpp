#include "tasks/Capacity.h"

#include <sys/resource.h>

#include <algorithm>
#include <fstream>
#include <optional>
#include <string>

namespace Kep {
namespace {

// A probe's stack as far as it is used, its request and what the system keeps of thread and socket.
constexpr std::size_t bytesOfTask = 48 * std::size_t{1024};
constexpr std::size_t mappingsOfTask = 2; // a stack and the guard below it
constexpr std::size_t descriptorsOfTask = 1;

// Left to everything else in the process, or on the machine; but not more than half.
constexpr std::size_t otherDescriptors = 512;
constexpr std::size_t otherThreads = 1024;
constexpr std::size_t otherMappings = 4096;
constexpr std::size_t otherPorts = 2048;

std::size_t less(std::size_t all, std::size_t others)
{
    return all - std::min(all / 2, others);
}

// The number that begins a file of the system; nothing where there is none, as in "max".
std::optional<std::size_t> numberIn(const char* path)
{
    std::ifstream file(path);
    std::size_t number = 0;
    return file >> number ? std::optional(number) : std::nullopt;
}

std::optional<std::size_t> availableMemory()
{
    std::ifstream file("/proc/meminfo");
    std::string name;
    std::size_t kibibytes = 0;
    std::string unit;
    while (file >> name >> kibibytes && std::getline(file, unit)) {
        if (name == "MemAvailable:") {
            return kibibytes * 1024;
        }
    }
    return std::nullopt;
}

std::optional<std::size_t> portCount()
{
    std::ifstream file("/proc/sys/net/ipv4/ip_local_port_range");
    std::size_t first = 0;
    std::size_t last = 0;
    return file >> first >> last && first <= last ? std::optional(last + 1 - first) : std::nullopt;
}

std::optional<std::size_t> resourceLimit(__rlimit_resource resource)
{
    rlimit limit{};
    if (getrlimit(resource, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY) {
        return std::nullopt;
    }
    return limit.rlim_cur;
}

class Bounds {
public:
    void add(std::optional<std::size_t> all, std::size_t others, std::size_t perTask, std::string_view resource)
    {
        if (all) {
            list_.push_back({less(*all, others) / perTask, resource});
        }
    }

    std::vector<Capacity> take() { return std::move(list_); }

private:
    std::vector<Capacity> list_;
};

} // namespace

std::vector<Capacity> machineBounds()
{
    Bounds bounds;
    bounds.add(resourceLimit(RLIMIT_NOFILE), otherDescriptors, descriptorsOfTask, "open files");
    bounds.add(resourceLimit(RLIMIT_NPROC), otherThreads, 1, "threads of the user");
    bounds.add(numberIn("/proc/sys/kernel/threads-max"), otherThreads, 1, "threads of the system");
    bounds.add(numberIn("/proc/sys/kernel/pid_max"), otherThreads, 1, "threads of the system");
    bounds.add(numberIn("/sys/fs/cgroup/pids.max"), otherThreads, 1, "threads of the control group");
    bounds.add(numberIn("/proc/sys/vm/max_map_count"), otherMappings, mappingsOfTask, "memory mappings");
    bounds.add(portCount(), otherPorts, 1, "UDP ports");
    bounds.add(availableMemory(), 0, 2 * bytesOfTask, "memory"); // half of it, at most
    bounds.add(numberIn("/sys/fs/cgroup/memory.max"), 0, 2 * bytesOfTask, "memory of the control group");
    return bounds.take();
}

} // namespace Kep
