/// The web console as a command serves it.
#pragma once

#include "host/IPluginCalls.h"
#include "host/RunFollower.h"
#include "host/console/Token.h"

#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

namespace Host {

struct HttpOptions {
    std::string address; ///< dotted
    std::uint16_t port = 0;
    std::vector<std::string> names;
    std::optional<Token> token;
    std::string dataStore; ///< path of the settings file, UTF-8; may be empty
};

/// Reads `address` ("127.0.0.1:8631"), the path of the file that holds the token, if there is one, and further names of
/// this host. Throws `UsageError`, also when others than this machine could reach the address and no token is asked of
/// them.
HttpOptions readHttpOptions(const std::string& address, const std::optional<std::string>& tokenFile,
                            const std::vector<std::string>& names, std::string dataStore);

/// Serves until the user interrupts `pace`, having told the address on `notes`. Then runs are stopped and requests
/// answered, for which it waits some seconds; if that does not suffice, the process ends here with status 0. `plugin`
/// is started. Throws `Failure` when it cannot listen, and `GenericException` when runs are to be kept
/// and the data store cannot be used.
void serveHttp(const HttpOptions& options, IPluginCalls& plugin, IPace& pace, std::ostream& notes);

} // namespace Host
