/// Which requests are let in.
///
/// A page of somewhere else that is open in a browser of this network must not be able to use the console. It can have
/// its own name lead to the console's address, but the Host field tells that name; it can send requests across, but
/// the Origin field tells where from, and without leave it cannot send JSON.
#pragma once

#include "host/console/HttpMessage.h"
#include "host/console/Token.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Host {

class RequestGuard {
public:
    struct Options {
        std::string address; ///< dotted, at which the server listens
        std::uint16_t port = 0;
        std::vector<std::string> names = {}; ///< by which it is reached besides, with a port or for any port
        std::optional<Token> token = {};
    };

    explicit RequestGuard(Options options);

    /// Throws `HttpError`: 421 when the Host field names another place than this, 403 when an Origin field names
    /// another than the Host field, 401 when the token is needed and absent or wrong, 415 when the body of a POST
    /// is not JSON. Does not look at the body.
    /// The token is needed for /metrics, /rpc and all below /api.
    void check(const HttpRequest& request) const;

private:
    bool isThisHost(const std::string& host) const;

    const Options options_;
    std::vector<std::string> hosts_; // values of the Host field by which the address is meant
    std::vector<std::string> names_; // of `options_`, in small letters
};

} // namespace Host
