/// Networks that a test makes for itself.
#pragma once

#include "tests/network/harness/ChildProcess.h"
#include "tests/network/harness/TemporaryFolder.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace NetworkTests {

/// A network of its own with nothing but a loopback interface, in which ports below 1024 are free, and a view of the
/// file system in which some files have another content. It ends with the object; the programs in it should end first.
class TestNetwork {
public:
    /// Existing files by absolute path, and the content that programs in the network see there.
    using Files = std::map<std::string, std::string>;

    /// Whether this user may make one.
    static bool permitted();

    /// Throws `std::runtime_error` when the network cannot be made.
    explicit TestNetwork(const Files& files = {});
    ~TestNetwork();

    /// The words to put before a command so that it runs in the network.
    std::vector<std::string> enter() const;

private:
    TemporaryFolder folder_;
    std::unique_ptr<ChildProcess> holder_;
};

} // namespace NetworkTests
