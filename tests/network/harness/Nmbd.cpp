#include "tests/network/harness/Nmbd.h"

#include "tests/network/harness/WaitFor.h"

#include <stdexcept>

namespace NetworkTests {
namespace {

constexpr std::chrono::seconds nmbdBound(30);

/// An address with its mask is the one form in which nmbd takes a loopback address as its interface.
std::string writeConfiguration(const TemporaryFolder& folder, const std::string& address, const std::string& name)
{
    std::string text = "[global]\nnetbios name = " + name + "\nworkgroup = NETWORKTEST\ninterfaces = " + address +
                       "/8\nbind interfaces only = yes\ndisable netbios = no\nlocal master = no\n";
    for (const char* kind : {"state", "cache", "lock", "pid"}) {
        text += std::string(kind) + " directory = " + folder.makeFolder(kind).string() + "\n";
    }
    for (const char* kind : {"private", "ncalrpc"}) {
        text += std::string(kind) + " dir = " + folder.makeFolder(kind).string() + "\n";
    }
    text += "nmbd:socket dir = " + folder.makeFolder("socket").string() + "\n";
    return folder.write("smb.conf", text);
}

} // namespace

Nmbd::Nmbd(const TestNetwork& network, const std::string& address, const std::string& name)
    : configuration_(writeConfiguration(folder_, address, name)),
      process_(
          {.words = {"nmbd", "-F", "--no-process-group", "--debug-stdout", "-s", configuration_, "-l", folder_.path()},
           .network = &network})
{
    const auto named = [&] {
        const Command question = {.words = {"nmblookup", "-s", configuration_, "-A", address}, .network = &network};
        return run(question, nmbdBound).output.find(name) != std::string::npos;
    };
    if (!waitFor([&] { return !process_.running() || named(); }, nmbdBound) || !process_.running()) {
        throw std::runtime_error("nmbd does not answer: " + process_.output() + process_.errors());
    }
}

} // namespace NetworkTests
