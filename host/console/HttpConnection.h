/// One connection of the HTTP server.
#pragma once

#include "host/console/HttpServer.h"

#include <utility>

#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http/parser.hpp>
#include <boost/beast/http/serializer.hpp>
#include <boost/beast/http/string_body.hpp>

#include <optional>

namespace Host {

class HttpConnection;

/// What connections need of their server. For the thread of the connections alone.
class IHttpService {
public:
    using Done = std::function<void(HttpResponse response)>;

    virtual const HttpLimits& limits() const = 0;

    /// As `HttpServer::Admission`.
    virtual std::optional<HttpResponse> admit(const HttpRequest& head) = 0;

    /// Has the request answered and calls `done` later, on the thread of the connections. Never from within.
    virtual void answer(HttpRequest request, Done done) = 0;

    /// Has `parts` give the next one and calls `done` later with it, or with none when that failed; else as `answer`.
    /// `parts` lasts until then.
    virtual void produce(const std::function<std::string()>& parts,
                         std::function<void(std::optional<std::string> part)> done) = 0;

    virtual HttpResponse refusal(int status) = 0;

    /// Whether the server ends, so that no connection waits for another request.
    virtual bool ending() const = 0;

    /// Whether so many bytes more may wait for clients to take them; then they count until `release`.
    virtual bool reserve(std::size_t bytes) = 0;
    virtual void release(std::size_t bytes) = 0;

    /// The connection does nothing any more.
    virtual void ended(HttpConnection& connection) = 0;

protected:
    ~IHttpService() = default;
};

/// For the thread of the connections alone. Its operations in flight keep it alive.
class HttpConnection : public std::enable_shared_from_this<HttpConnection> {
public:
    using Socket = boost::asio::ip::tcp::socket;

    /// `client` is the dotted address of the other end. Keeps the reference.
    HttpConnection(Socket socket, std::string client, IHttpService& service);

    /// Begins to read.
    void start();

    /// Gives the connection up; `ended` follows.
    void close();

    const std::string& client() const { return client_; }

    /// Since when it waits for a request, or the rest of one; none while one is answered.
    std::optional<std::chrono::steady_clock::time_point> waitingSince() const { return waitingSince_; }

private:
    using Error = boost::system::error_code;
    using Response = boost::beast::http::response<boost::beast::http::string_body>;
    using Serializer = boost::beast::http::response_serializer<boost::beast::http::string_body>;
    using Parser = boost::beast::http::request_parser<boost::beast::http::string_body>;

    void setDeadline(std::chrono::milliseconds time);
    void clearDeadline();
    void awaitRequest();
    void readHeader();
    void onHeader(const Error& error);
    void proceedWithBody();
    void readBody();
    void onRequest(const Error& error);
    void beginAnswer();
    void onBadRequest(const Error& error);
    void respond(HttpResponse response, bool keepAlive);
    void write(bool headOnly);
    std::chrono::milliseconds timeFor(std::size_t bytes) const;
    void writeParts(const Error& error);
    void writePart(std::optional<std::string> part);
    void onResponded(const Error& error);
    void linger();
    void discard();
    void finish();
    HttpRequest requestHead() const;

    template <class... Arguments> auto bound(void (HttpConnection::*method)(Arguments...));

    Socket socket_;
    const std::string client_;
    IHttpService& service_;
    boost::asio::steady_timer deadline_;
    boost::beast::flat_buffer buffer_;
    std::optional<Parser> parser_;
    Response response_;
    std::optional<Serializer> serializer_;
    std::function<std::string()> parts_;
    std::string part_; ///< as it is written
    std::optional<std::chrono::steady_clock::time_point> waitingSince_;
    std::size_t requests_ = 0;
    std::size_t reserved_ = 0;
    std::size_t discarded_ = 0;
    bool finished_ = false;
};

} // namespace Host
