/// A client of HTTP that may also behave badly.
#pragma once

#include <utility>

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>

#include <cstdint>
#include <map>
#include <string>

namespace Host {

struct TestResponse {
    int status = 0;
    std::map<std::string, std::string> fields; ///< names in small letters
    std::string body;
};

/// One connection. Waits give up after half a minute by throwing.
class TestClient {
public:
    /// The system holds about `receiveBuffer` bytes that have not been read; 0: what it sees fit.
    explicit TestClient(std::uint16_t port, int receiveBuffer = 0);
    ~TestClient();

    /// Sends bytes as they are. False when the server has closed the connection.
    bool send(const std::string& bytes);

    /// Reads one response, to a request with the given method.
    TestResponse receive(const std::string& method = "GET");

    /// Waits until a response has begun to come; false when the server closes the connection instead.
    bool awaitResponse();

    /// Whether the server closes the connection without a further byte.
    bool closed();

    /// Ends the sending side alone.
    void endSending();

    /// Sends a proper request and reads its response.
    TestResponse request(const std::string& method, const std::string& target, const std::string& body = "",
                         const std::map<std::string, std::string>& fields = {});

private:
    void await(const bool& done);

    boost::asio::io_context context_;
    boost::asio::ip::tcp::socket socket_{context_};
    std::uint16_t port_;
    std::string pending_; ///< received after the response that was read last
};

} // namespace Host
