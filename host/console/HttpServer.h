/// HTTP/1.1 (RFC 9110, RFC 9112) on one IPv4 address, made so that slow and hostile clients hold up nobody else.
///
/// One thread reads and writes for all connections and never waits for any of them; requests are answered on a fixed
/// number of further threads. A connection that does not bring its request, or take its response, in the time given is
/// closed. Of too many connections that wait for a request, those that have waited longest are closed.
#pragma once

#include "host/console/HttpMessage.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace Host {

struct HttpLimits {
    std::size_t connections = 384;         ///< fewer than the descriptors that sweeps leave over
    std::size_t connectionsOfClient = 256; ///< from one address
    std::size_t requestsOfConnection = 1000;
    std::size_t threads = 32; ///< requests that are answered at once
    std::uint32_t headerBytes = 16384;
    std::uint64_t bodyBytes = std::uint64_t{1024} * 1024;
    std::size_t responseBytes = std::size_t{256} * 1024 * 1024; ///< of bodies that clients have not taken yet
    std::size_t slowestRate = 16384;                            ///< bytes in a second that a client takes
    std::chrono::milliseconds idle{30000};                      ///< from one request to the next
    std::chrono::milliseconds request{10000};                   ///< from the first byte of a request to its last
    std::chrono::milliseconds response{10000}; ///< to take a response, besides what the slowest rate allows
};

class HttpServer {
public:
    /// Answers one request; any of the server's threads, several at once. What it throws becomes status 500.
    using Handler = std::function<HttpResponse(const HttpRequest& request)>;

    /// Told the head of each request: whether the rest is read and handed to the handler, or what is given is the
    /// answer. To return at once, on the one thread of all connections; throws nothing.
    using Admission = std::function<std::optional<HttpResponse>(const HttpRequest& head)>;

    /// Answers a request whose form is at fault, of which `status` says how (RFC 9110, section 15.5); on the one
    /// thread of all connections.
    using Refusal = std::function<HttpResponse(int status)>;

    /// Listens from now on at `address` (dotted) and `port`, where 0 is any that is free; requests wait for `start`.
    /// Throws `Failure` when that cannot be.
    HttpServer(const std::string& address, std::uint16_t port, const HttpLimits& limits = {});

    /// As `stop`; waits for the requests that are being answered.
    ~HttpServer();
    HttpServer(const HttpServer&) = delete;
    HttpServer& operator=(const HttpServer&) = delete;

    std::uint16_t port() const;

    /// Begins to answer. Once. Throws `std::system_error` when there is no thread to be had.
    void start(Admission admission, Handler handler, Refusal refusal);

    /// Closes the socket and the connections that wait for requests; the others are closed when they are answered, or
    /// after `time`, which is waited for at most. Whether all were answered.
    bool stop(std::chrono::milliseconds time);

private:
    class Core;
    std::unique_ptr<Core> core_;
};

} // namespace Host
