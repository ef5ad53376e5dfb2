#include "host/console/HttpConnection.h"

#include "host/console/Times.h"

#include <boost/asio/write.hpp>
#include <boost/beast/core/string.hpp>
#include <boost/beast/http/chunk_encode.hpp>
#include <boost/beast/http/read.hpp>
#include <boost/beast/http/write.hpp>

#include <string_view>

namespace Host {

namespace asio = boost::asio;
namespace http = boost::beast::http;

namespace {

using namespace std::chrono_literals;

constexpr std::size_t ReadSize = 4096;
constexpr std::size_t LongestDiscarded = 4UL * 1024 * 1024;
constexpr auto LingerTime = 2s;

/// Of a field that is sent several times all values, so that none of them passes for the only one.
std::string fieldOf(const http::fields& fields, http::field name)
{
    std::string all;
    const auto [begin, end] = fields.equal_range(name);
    for (auto field = begin; field != end; ++field)
        all += (all.empty() ? "" : ", ") + std::string(field->value());
    return all;
}

int statusOf(const boost::system::error_code& error)
{
    if (error == http::error::header_limit || error == http::error::buffer_overflow)
        return 431;
    return error == http::error::body_limit ? 413 : 400;
}

/// The request's form is at fault, rather than the network or the end of the stream.
bool isClientFault(const boost::system::error_code& error)
{
    return error.category() == make_error_code(http::error::bad_method).category() &&
           error != http::error::end_of_stream && error != http::error::partial_message;
}

} // namespace

template <class... Arguments> auto HttpConnection::bound(void (HttpConnection::*method)(Arguments...))
{
    return [self = shared_from_this(), method](const Error& error, std::size_t) { ((*self).*method)(error); };
}

HttpConnection::HttpConnection(Socket socket, std::string client, IHttpService& service)
    : socket_(std::move(socket)), client_(std::move(client)), service_(service), deadline_(socket_.get_executor()),
      buffer_(service.limits().headerBytes + 65536)
{}

void HttpConnection::start()
{
    Error ignored;
    socket_.set_option(asio::ip::tcp::no_delay(true), ignored);
    awaitRequest();
}

void HttpConnection::close()
{
    Error ignored;
    socket_.close(ignored);
    deadline_.cancel();
}

void HttpConnection::setDeadline(std::chrono::milliseconds time)
{
    deadline_.expires_after(time);
    deadline_.async_wait([self = shared_from_this()](const Error& error) {
        if (!error && self->deadline_.expiry() <= std::chrono::steady_clock::now()) // not set anew meanwhile
            self->finish();
    });
}

void HttpConnection::clearDeadline()
{
    deadline_.expires_at(std::chrono::steady_clock::time_point::max());
}

void HttpConnection::awaitRequest()
{
    waitingSince_ = std::chrono::steady_clock::now();
    if (buffer_.size() > 0)
        return readHeader();
    setDeadline(service_.limits().idle);
    socket_.async_read_some(buffer_.prepare(ReadSize),
                            [self = shared_from_this()](const Error& error, std::size_t size) {
                                self->buffer_.commit(size);
                                if (error)
                                    return self->finish();
                                self->readHeader();
                            });
}

void HttpConnection::readHeader()
{
    setDeadline(service_.limits().request);
    parser_.emplace();
    parser_->header_limit(service_.limits().headerBytes);
    parser_->body_limit(service_.limits().bodyBytes);
    http::async_read_header(socket_, buffer_, *parser_, bound(&HttpConnection::onHeader));
}

void HttpConnection::onHeader(const Error& error)
{
    if (error)
        return onBadRequest(error);
    if (!parser_->get().target().starts_with('/'))
        return onBadRequest(make_error_code(http::error::bad_target));
    if (auto answer = service_.admit(requestHead())) {
        beginAnswer();
        return respond(std::move(*answer), parser_->is_done() && parser_->get().keep_alive());
    }
    proceedWithBody();
}

/// A client may ask whether it is to send the body (RFC 9110, section 10.1.1).
void HttpConnection::proceedWithBody()
{
    static constexpr std::string_view proceed = "HTTP/1.1 100 Continue\r\n\r\n";
    if (!boost::beast::iequals(parser_->get()[http::field::expect], "100-continue"))
        return readBody();
    asio::async_write(socket_, asio::buffer(proceed), [self = shared_from_this()](const Error& error, std::size_t) {
        if (error)
            return self->finish();
        self->readBody();
    });
}

void HttpConnection::readBody()
{
    http::async_read(socket_, buffer_, *parser_, bound(&HttpConnection::onRequest));
}

void HttpConnection::onRequest(const Error& error)
{
    if (error)
        return onBadRequest(error);
    beginAnswer();
    HttpRequest request = requestHead();
    request.body = std::move(parser_->get().body());
    service_.answer(std::move(request), [self = shared_from_this()](HttpResponse response) {
        self->respond(std::move(response), self->parser_->get().keep_alive());
    });
}

void HttpConnection::beginAnswer()
{
    waitingSince_.reset();
    clearDeadline();
    ++requests_;
}

void HttpConnection::onBadRequest(const Error& error)
{
    if (!isClientFault(error))
        return finish();
    beginAnswer();
    respond(service_.refusal(statusOf(error)), false);
}

HttpRequest HttpConnection::requestHead() const
{
    const auto& message = parser_->get();
    const std::string target(message.target());
    const std::size_t question = std::min(target.find('?'), target.size());
    HttpRequest request;
    request.method = std::string(message.method_string());
    request.path = target.substr(0, question);
    request.query = question < target.size() ? target.substr(question + 1) : "";
    request.host = fieldOf(message, http::field::host);
    request.origin = fieldOf(message, http::field::origin);
    request.authorization = fieldOf(message, http::field::authorization);
    request.contentType = fieldOf(message, http::field::content_type);
    request.client = client_;
    return request;
}

void HttpConnection::respond(HttpResponse response, bool keepAlive)
{
    if (response.parts && parser_->get().version() < 11) // which knows no chunks
        response = service_.refusal(505);
    if (!service_.reserve(response.body.size()))
        response = service_.refusal(503);
    else
        reserved_ = response.body.size();
    response_ = Response(http::int_to_status(static_cast<unsigned>(response.status)), 11);
    response_.set(http::field::date, httpDate(std::chrono::system_clock::now()));
    if (!response.body.empty() || response.parts)
        response_.set(http::field::content_type, response.contentType);
    for (const auto& [name, value] : response.fields)
        response_.set(name, value);
    response_.body() = std::move(response.body);
    response_.keep_alive(keepAlive && requests_ < service_.limits().requestsOfConnection && !service_.ending());
    parts_ = std::move(response.parts);
    if (parts_)
        response_.chunked(true);
    else
        response_.prepare_payload();
    write(parser_->get().method() == http::verb::head);
}

std::chrono::milliseconds HttpConnection::timeFor(std::size_t bytes) const
{
    return service_.limits().response + std::chrono::seconds(bytes / service_.limits().slowestRate);
}

void HttpConnection::write(bool headOnly)
{
    setDeadline(timeFor(response_.body().size()));
    serializer_.emplace(response_);
    if (headOnly)
        http::async_write_header(socket_, *serializer_, bound(&HttpConnection::onResponded));
    else if (parts_)
        http::async_write_header(socket_, *serializer_, bound(&HttpConnection::writeParts));
    else
        http::async_write(socket_, *serializer_, bound(&HttpConnection::onResponded));
}

void HttpConnection::writeParts(const Error& error)
{
    if (error)
        return finish();
    clearDeadline();
    service_.produce(
        parts_, [self = shared_from_this()](std::optional<std::string> part) { self->writePart(std::move(part)); });
}

/// An empty part ends the body, as an empty chunk does (RFC 9112, section 7.1).
void HttpConnection::writePart(std::optional<std::string> part)
{
    if (!part)
        return finish();
    const bool last = part->empty();
    part_ = std::move(*part);
    setDeadline(timeFor(part_.size()));
    if (last)
        asio::async_write(socket_, http::make_chunk_last(), bound(&HttpConnection::onResponded));
    else
        asio::async_write(socket_, http::make_chunk(asio::buffer(part_)), bound(&HttpConnection::writeParts));
}

void HttpConnection::onResponded(const Error& error)
{
    const bool keepAlive = response_.keep_alive();
    service_.release(std::exchange(reserved_, 0));
    serializer_.reset();
    parts_ = nullptr;
    response_ = {};
    parser_.reset();
    if (error)
        return finish();
    if (!keepAlive)
        return linger();
    if (service_.ending())
        return finish();
    awaitRequest();
}

/// Closing while bytes of the client are unread would make the system reset the connection, and the response be lost.
void HttpConnection::linger()
{
    Error error;
    socket_.shutdown(Socket::shutdown_send, error);
    if (error)
        return finish();
    waitingSince_ = std::chrono::steady_clock::now();
    setDeadline(LingerTime);
    buffer_.clear();
    discard();
}

void HttpConnection::discard()
{
    socket_.async_read_some(buffer_.prepare(ReadSize),
                            [self = shared_from_this()](const Error& error, std::size_t size) {
                                self->discarded_ += size;
                                if (error || self->discarded_ > LongestDiscarded)
                                    return self->finish();
                                self->discard();
                            });
}

void HttpConnection::finish()
{
    if (std::exchange(finished_, true))
        return;
    close();
    service_.release(std::exchange(reserved_, 0));
    service_.ended(*this);
}

} // namespace Host
