#include "host/console/HttpServer.h"

#include "Kep/Host/Mutex.h"
#include "host/Errors.h"
#include "host/console/HttpConnection.h"
#include "host/console/ListenOptions.h"

#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/thread_pool.hpp>

#include <algorithm>
#include <condition_variable>
#include <list>
#include <thread>

namespace Host {

namespace asio = boost::asio;

namespace {

using namespace std::chrono_literals;
using Tcp = asio::ip::tcp;

constexpr auto AcceptPause = 100ms; // when the system has no descriptor to give

Tcp::acceptor listenAt(asio::io_context& context, const std::string& address, std::uint16_t port)
{
    const auto refuse = [&](const boost::system::error_code& error) {
        throw Failure("cannot listen at " + address + ':' + std::to_string(port) + ": " + error.message());
    };
    boost::system::error_code error;
    const Tcp::endpoint endpoint(asio::ip::make_address_v4(address, error), port);
    Tcp::acceptor acceptor(context);
    if (!error)
        acceptor.open(Tcp::v4(), error);
    if (error)
        refuse(error);
    setListenOptions(acceptor);
    acceptor.bind(endpoint, error);
    if (!error)
        acceptor.listen(Tcp::acceptor::max_listen_connections, error);
    if (error)
        refuse(error);
    return acceptor;
}

} // namespace

class HttpServer::Core final : public IHttpService {
public:
    Core(const std::string& address, std::uint16_t port, const HttpLimits& limits)
        : limits_(limits), acceptor_(listenAt(context_, address, port)), pause_(context_),
          port_(acceptor_.local_endpoint().port()), threads_(limits.threads)
    {}

    ~Core()
    {
        stop(0ms);
        threads_.join();
        work_.reset();
        if (thread_.joinable())
            thread_.join();
    }

    Core(const Core&) = delete;
    Core& operator=(const Core&) = delete;

    std::uint16_t port() const { return port_; }

    void start(Admission admission, Handler handler, Refusal refusal)
    {
        admission_ = std::move(admission);
        handler_ = std::move(handler);
        refusal_ = std::move(refusal);
        accept();
        thread_ = std::thread([this] { serve(); });
    }

    bool stop(std::chrono::milliseconds time)
    {
        if (!thread_.joinable())
            return true;
        asio::post(context_, [this] { end(); });
        const bool ended = waitForEnd(time);
        asio::post(context_, [this] { closeIf([](const HttpConnection&) { return true; }); });
        return ended;
    }

    const HttpLimits& limits() const override { return limits_; }
    std::optional<HttpResponse> admit(const HttpRequest& head) override { return admission_(head); }
    HttpResponse refusal(int status) override { return refusal_(status); }
    bool ending() const override { return ending_; }

    void answer(HttpRequest request, Done done) override
    {
        asio::post(threads_, [this, request = std::move(request), done = std::move(done)]() mutable {
            HttpResponse response = answerTo(request);
            asio::post(context_, [done = std::move(done), response = std::move(response)]() mutable {
                done(std::move(response));
            });
        });
    }

    void produce(const std::function<std::string()>& parts,
                 std::function<void(std::optional<std::string>)> done) override
    {
        asio::post(threads_, [this, &parts, done = std::move(done)]() mutable {
            std::optional<std::string> part = partOf(parts);
            asio::post(context_, [done = std::move(done), part = std::move(part)]() mutable { done(std::move(part)); });
        });
    }

    bool reserve(std::size_t bytes) override
    {
        if (bytes > limits_.responseBytes - reserved_)
            return false;
        reserved_ += bytes;
        return true;
    }

    void release(std::size_t bytes) override { reserved_ -= bytes; }

    void ended(HttpConnection& connection) override
    {
        std::erase_if(connections_, [&](const auto& each) { return each.get() == &connection; });
        if (ending_ && connections_.empty())
            tellEnd();
    }

private:
    using Connections = std::list<std::shared_ptr<HttpConnection>>;

    /// What is thrown is want of memory; the connection that met it is closed in its time.
    void serve() noexcept
    {
        while (!context_.stopped()) {
            try {
                context_.run();
            } catch (const std::exception&) {
                continue;
            }
        }
    }

    HttpResponse answerTo(const HttpRequest& request)
    {
        try {
            return handler_(request);
        } catch (const std::exception&) {
            return refusal_(500);
        }
    }

    static std::optional<std::string> partOf(const std::function<std::string()>& parts)
    {
        try {
            return parts();
        } catch (const std::exception&) {
            return std::nullopt;
        }
    }

    void accept()
    {
        acceptor_.async_accept([this](const boost::system::error_code& error, Tcp::socket socket) {
            if (ending_)
                return;
            if (error)
                return acceptLater();
            take(std::move(socket));
            accept();
        });
    }

    void acceptLater()
    {
        pause_.expires_after(AcceptPause);
        pause_.async_wait([this](const boost::system::error_code&) {
            if (!ending_)
                accept();
        });
    }

    void take(Tcp::socket socket)
    {
        boost::system::error_code error;
        const Tcp::endpoint remote = socket.remote_endpoint(error);
        const std::string client = error ? std::string() : remote.address().to_string();
        if (error || !makeRoom(client))
            return;
        connections_.push_back(std::make_shared<HttpConnection>(std::move(socket), client, *this));
        connections_.back()->start();
    }

    /// Makes place for another connection of `client`; whether there is.
    bool makeRoom(const std::string& client)
    {
        const auto ofClient = [&](const auto& each) { return each->client() == client; };
        const auto count = static_cast<std::size_t>(std::count_if(connections_.begin(), connections_.end(), ofClient));
        if (count >= limits_.connectionsOfClient)
            return closeLongestWaiting(ofClient);
        return connections_.size() < limits_.connections || closeLongestWaiting([](const auto&) { return true; });
    }

    template <class Predicate> bool closeLongestWaiting(const Predicate& predicate)
    {
        auto longest = connections_.end();
        for (auto each = connections_.begin(); each != connections_.end(); ++each)
            if (predicate(*each) && (*each)->waitingSince() &&
                (longest == connections_.end() || (*each)->waitingSince() < (*longest)->waitingSince()))
                longest = each;
        if (longest == connections_.end())
            return false;
        (*longest)->close();
        connections_.erase(longest);
        return true;
    }

    template <class Predicate> void closeIf(const Predicate& predicate)
    {
        for (const auto& connection : connections_)
            if (predicate(*connection))
                connection->close();
    }

    void end()
    {
        ending_ = true;
        boost::system::error_code ignored;
        acceptor_.close(ignored);
        pause_.cancel();
        closeIf([](const HttpConnection& connection) { return connection.waitingSince().has_value(); });
        if (connections_.empty())
            tellEnd();
    }

    void tellEnd()
    {
        Kep::MutexLock lock(mutex_);
        ended_ = true;
        end_.notify_all();
    }

    bool waitForEnd(std::chrono::milliseconds time)
    {
        const auto deadline = std::chrono::steady_clock::now() + time;
        Kep::MutexLock lock(mutex_);
        while (!ended_)
            if (!lock.waitUntil(end_, deadline))
                return ended_;
        return true;
    }

    const HttpLimits limits_;
    Admission admission_;
    Handler handler_;
    Refusal refusal_;

    // For the thread of the connections.
    asio::io_context context_{1};
    asio::executor_work_guard<asio::io_context::executor_type> work_{context_.get_executor()};
    Tcp::acceptor acceptor_;
    asio::steady_timer pause_;
    Connections connections_;
    std::size_t reserved_ = 0;
    bool ending_ = false;

    const std::uint16_t port_;
    std::thread thread_;

    Kep::Mutex mutex_;
    std::condition_variable end_;
    bool ended_ KEP_GUARDED_BY(mutex_) = false;

    asio::thread_pool threads_;
};

HttpServer::HttpServer(const std::string& address, std::uint16_t port, const HttpLimits& limits)
    : core_(std::make_unique<Core>(address, port, limits))
{}

HttpServer::~HttpServer() = default;

std::uint16_t HttpServer::port() const
{
    return core_->port();
}

void HttpServer::start(Admission admission, Handler handler, Refusal refusal)
{
    core_->start(std::move(admission), std::move(handler), std::move(refusal));
}

bool HttpServer::stop(std::chrono::milliseconds time)
{
    return core_->stop(time);
}

} // namespace Host
