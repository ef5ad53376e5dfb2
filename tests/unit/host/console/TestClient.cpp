#include "tests/unit/host/console/TestClient.h"

#include <boost/asio/write.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http/read.hpp>
#include <boost/beast/http/string_body.hpp>

#include <algorithm>
#include <cctype>
#include <chrono>
#include <stdexcept>

namespace Host {

namespace asio = boost::asio;
namespace http = boost::beast::http;
using namespace std::chrono_literals;
using Error = boost::system::error_code;

TestClient::TestClient(std::uint16_t port, int receiveBuffer) : port_(port)
{
    socket_.open(asio::ip::tcp::v4());
    if (receiveBuffer > 0) // before the connection, which agrees on it
        socket_.set_option(asio::socket_base::receive_buffer_size(receiveBuffer));
    socket_.connect({asio::ip::make_address_v4("127.0.0.1"), port});
    socket_.set_option(asio::ip::tcp::no_delay(true));
}

TestClient::~TestClient() = default;

void TestClient::await(const bool& done)
{
    context_.restart();
    context_.run_for(30s);
    if (done)
        return;
    Error ignored;
    socket_.close(ignored);
    context_.run();
    throw std::runtime_error("the server does nothing for half a minute");
}

bool TestClient::send(const std::string& bytes)
{
    bool done = false;
    bool sent = false;
    asio::async_write(socket_, asio::buffer(bytes), [&](const Error& error, std::size_t) {
        done = true;
        sent = !error;
    });
    await(done);
    return sent;
}

TestResponse TestClient::receive(const std::string& method)
{
    boost::beast::flat_buffer buffer;
    buffer.commit(asio::buffer_copy(buffer.prepare(pending_.size()), asio::buffer(pending_)));
    http::response_parser<http::string_body> parser;
    parser.body_limit(64UL * 1024 * 1024);
    parser.skip(method == "HEAD");
    bool done = false;
    Error result;
    http::async_read(socket_, buffer, parser, [&](const Error& error, std::size_t) {
        done = true;
        result = error;
    });
    await(done);
    if (result)
        throw std::runtime_error("no response: " + result.message());
    pending_ = std::string(static_cast<const char*>(buffer.data().data()), buffer.size());
    TestResponse response{static_cast<int>(parser.get().result_int()), {}, parser.get().body()};
    for (const auto& field : parser.get()) {
        std::string name(field.name_string());
        std::transform(name.begin(), name.end(), name.begin(),
                       [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
        response.fields[name] = std::string(field.value());
    }
    return response;
}

bool TestClient::awaitResponse()
{
    char byte = 0;
    bool done = false;
    bool came = false;
    socket_.async_read_some(asio::buffer(&byte, 1), [&](const Error& error, std::size_t) {
        done = true;
        came = !error;
    });
    await(done);
    if (came)
        pending_ += byte;
    return came;
}

bool TestClient::closed()
{
    return !awaitResponse();
}

void TestClient::endSending()
{
    socket_.shutdown(asio::ip::tcp::socket::shutdown_send);
}

TestResponse TestClient::request(const std::string& method, const std::string& target, const std::string& body,
                                 const std::map<std::string, std::string>& fields)
{
    std::map<std::string, std::string> all = {{"Host", "127.0.0.1:" + std::to_string(port_)}};
    if (method == "POST")
        all["Content-Type"] = "application/json";
    if (!body.empty() || method == "POST")
        all["Content-Length"] = std::to_string(body.size());
    for (const auto& [name, value] : fields)
        all[name] = value;
    std::string head = method + ' ' + target + " HTTP/1.1\r\n";
    for (const auto& [name, value] : all)
        if (!value.empty())
            head += name + ": " + value + "\r\n";
    send(head + "\r\n" + body);
    return receive(method);
}

} // namespace Host
