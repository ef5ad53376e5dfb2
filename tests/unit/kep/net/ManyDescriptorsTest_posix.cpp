#include "tests/unit/kep/net/ReverseDns.h"

#include <vector>

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

namespace {

using namespace Kep::Testing;

TEST_F(ReverseDns, DescriptorsOfAThousandAndMoreServeAsWell)
{
    rlimit limit{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &limit), 0);
    ASSERT_GT(limit.rlim_max, 1200U);
    limit.rlim_cur = limit.rlim_max;
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &limit), 0);
    std::vector<int> taken;
    while (taken.empty() || taken.back() < 1100) {
        taken.push_back(::open("/dev/null", O_RDONLY | O_CLOEXEC));
        ASSERT_GE(taken.back(), 0);
    }
    {
        UdpResponder server(answering(encodedName("printer.example.com")));
        EXPECT_EQ(ask(server), "printer.example.com");
    }
    for (const int descriptor : taken) {
        ::close(descriptor);
    }
}

} // namespace
