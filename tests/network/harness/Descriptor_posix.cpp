#include "tests/network/harness/Descriptor.h"

#include <unistd.h>

namespace NetworkTests {

void Descriptor::reset()
{
    if (number_ >= 0) {
        close(number_);
        number_ = -1;
    }
}

} // namespace NetworkTests
