#include "host/console/RandomId.h"

#include <random>

namespace Host {

std::string randomId()
{
    static constexpr char digits[] = "0123456789abcdef";
    std::random_device source;
    std::uniform_int_distribution<int> digit(0, 15);
    std::string id(16, '0');
    for (char& each : id)
        each = digits[digit(source)];
    return id;
}

} // namespace Host
