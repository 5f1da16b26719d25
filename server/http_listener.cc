#include "server/http_listener.h"

#include "toolkit/log.h"

#include <algorithm>
#include <boost/asio/post.hpp>
#include <boost/asio/strand.hpp>
#include <charconv>
#include <stdexcept>
#include <utility>

namespace agentd {
namespace {

namespace net = boost::asio;
using tcp = net::ip::tcp;

constexpr std::chrono::milliseconds kAcceptPause{100};

tcp::endpoint resolved(net::io_context &io, const Endpoint &endpoint)
{
    tcp::resolver resolver(io);
    const auto found = resolver.resolve(endpoint.host, std::to_string(endpoint.port),
                                        tcp::resolver::passive | tcp::resolver::numeric_service);
    return found.begin()->endpoint();
}

std::string asText(const std::string &host, std::uint16_t port)
{
    const bool isV6 = host.find(':') != std::string::npos;
    return (isV6 ? "[" + host + "]" : host) + ":" + std::to_string(port);
}

} // namespace

Endpoint parseEndpoint(const std::string &text)
{
    const auto colon = text.rfind(':');
    Endpoint endpoint;
    if (colon != std::string::npos)
        endpoint.host = text.substr(0, colon);
    if (endpoint.host.size() > 2 && endpoint.host.front() == '[' && endpoint.host.back() == ']')
        endpoint.host = endpoint.host.substr(1, endpoint.host.size() - 2);
    else if (endpoint.host.find(':') != std::string::npos)
        endpoint.host.clear();
    const char *const end = text.data() + text.size();
    const char *const digits = colon == std::string::npos ? end : text.data() + colon + 1;
    const auto [stop, error] = std::from_chars(digits, end, endpoint.port);
    if (endpoint.host.empty() || error != std::errc() || stop != end)
        throw std::invalid_argument("'" + text + "' is not HOST:PORT");
    return endpoint;
}

tcp::acceptor listenAt(net::io_context &io, const Endpoint &endpoint)
try {
    const tcp::endpoint where = resolved(io, endpoint);
    tcp::acceptor acceptor(net::make_strand(io));
    acceptor.open(where.protocol());
    acceptor.set_option(net::socket_base::reuse_address(true));
    acceptor.bind(where);
    acceptor.listen(net::socket_base::max_listen_connections);
    return acceptor;
} catch (const boost::system::system_error &failure) {
    throw std::runtime_error(asText(endpoint.host, endpoint.port) + ": " + failure.code().message());
}

std::string boundAddress(const tcp::acceptor &acceptor)
{
    const auto where = acceptor.local_endpoint();
    return asText(where.address().to_string(), where.port());
}

HttpListener::HttpListener(net::io_context &io, tcp::acceptor acceptor, HttpEnvironment &environment)
    : io_(io)
    , acceptor_(std::move(acceptor))
    , environment_(environment)
    , pause_(acceptor_.get_executor())
{
}

void HttpListener::start()
{
    net::post(acceptor_.get_executor(), [this] { accept(); });
}

void HttpListener::stop()
{
    net::post(acceptor_.get_executor(), [this] {
        boost::system::error_code ignored;
        acceptor_.close(ignored);
        pause_.cancel();
    });
    for (const auto &session : liveSessions())
        session->stop();
}

// Handed out as owners and used without the lock: the last owner of a session takes that lock.
std::vector<std::shared_ptr<HttpSession>> HttpListener::liveSessions() const
{
    std::vector<std::shared_ptr<HttpSession>> sessions;
    const std::lock_guard lock(register_->mutex);
    sessions.reserve(register_->sessions.size());
    for (const auto &[number, weak] : register_->sessions) {
        if (auto session = weak.lock())
            sessions.push_back(std::move(session));
    }
    return sessions;
}

std::size_t HttpListener::connections() const
{
    const std::lock_guard lock(register_->mutex);
    return register_->sessions.size();
}

// The one that has had the longest time to log in, and did not, ends.
bool HttpListener::makeRoom() const
{
    const auto sessions = liveSessions();
    return std::any_of(sessions.begin(), sessions.end(),
                       [](const auto &session) { return session->giveWay(); });
}

void HttpListener::accept()
{
    if (!acceptor_.is_open())
        return;
    acceptor_.async_accept(net::make_strand(io_),
                           [this](boost::system::error_code error, tcp::socket socket) {
                               onAccepted(error, std::move(socket));
                           });
}

void HttpListener::onAccepted(boost::system::error_code error, tcp::socket socket)
{
    if (!acceptor_.is_open())
        return;
    if (!error) {
        admit(std::move(socket));
        return accept();
    }
    // Out of descriptors, most likely: asking again at once would only burn the processor.
    log_error("agentd: cannot accept a connection: %s\n", error.message().c_str());
    pause_.expires_after(kAcceptPause);
    pause_.async_wait([this](boost::system::error_code) { accept(); });
}

void HttpListener::admit(tcp::socket socket)
{
    const bool isFull = connections() >= environment_.limits.connections;
    if (isFull && !std::exchange(wasFull_, true))
        log_error("agentd: %zu connections are open: those that are not logged in give way\n",
                  environment_.limits.connections);
    if (isFull && !makeRoom())
        return; // the socket closes
    wasFull_ = isFull;
    std::shared_ptr<HttpSession> session;
    {
        const std::lock_guard lock(register_->mutex);
        const auto number = ++register_->last;
        session = std::make_shared<HttpSession>(std::move(socket), environment_, [all = register_, number] {
            const std::lock_guard inner(all->mutex);
            all->sessions.erase(number);
        });
        register_->sessions.emplace(number, session);
    }
    session->start();
}

} // namespace agentd
