#include "server/netconf/ssh_listener.h"

#include "toolkit/log.h"

#include <algorithm>
#include <boost/asio/post.hpp>
#include <boost/asio/strand.hpp>
#include <boost/system/system_error.hpp>
#include <utility>

namespace agentd::netconf {

namespace {

namespace net = boost::asio;
using tcp = net::ip::tcp;

constexpr std::chrono::milliseconds kAcceptPause{100};

} // namespace

SshListener::SshListener(net::io_context &io, tcp::acceptor acceptor, SshBindHandle bind,
                         SshEnvironment &environment)
    : io_(io)
    , acceptor_(std::move(acceptor))
    , bind_(std::move(bind))
    , environment_(environment)
    , pause_(acceptor_.get_executor())
{
}

void SshListener::start()
{
    net::post(acceptor_.get_executor(), [this] { accept(); });
}

void SshListener::stop()
{
    net::post(acceptor_.get_executor(), [this] {
        boost::system::error_code ignored;
        acceptor_.close(ignored);
        pause_.cancel();
    });
    for (const auto &connection : liveConnections())
        connection->stop();
}

std::vector<std::shared_ptr<SshConnection>> SshListener::liveConnections() const
{
    std::vector<std::shared_ptr<SshConnection>> live;
    const std::lock_guard lock(register_->mutex);
    live.reserve(register_->connections.size());
    for (const auto &[number, weak] : register_->connections) {
        if (auto connection = weak.lock())
            live.push_back(std::move(connection));
    }
    return live;
}

std::size_t SshListener::connections() const
{
    const std::lock_guard lock(register_->mutex);
    return register_->connections.size();
}

// Those who never log in cannot take the places of those who did.
bool SshListener::isFull() const
{
    const SshLimits &limits = environment_.limits;
    return environment_.strangers >= limits.strangers || connections() >= limits.sessions + limits.strangers;
}

// The one that has had the longest time to log in, and did not, ends.
bool SshListener::makeRoom() const
{
    const auto live = liveConnections();
    return std::any_of(live.begin(), live.end(),
                       [](const auto &connection) { return connection->giveWay(); });
}

void SshListener::accept()
{
    if (!acceptor_.is_open())
        return;
    acceptor_.async_accept(net::make_strand(io_),
                           [this](boost::system::error_code error, tcp::socket socket) {
                               onAccepted(error, std::move(socket));
                           });
}

void SshListener::onAccepted(boost::system::error_code error, tcp::socket socket)
{
    if (!acceptor_.is_open())
        return;
    if (!error) {
        try {
            admit(std::move(socket));
        } catch (const boost::system::system_error &failure) {
            error = failure.code();
        }
    }
    if (!error)
        return accept();
    // Out of descriptors, most likely: asking again at once would only burn the processor.
    log_error("agentd: cannot accept a connection: %s\n", error.message().c_str());
    pause_.expires_after(kAcceptPause);
    pause_.async_wait([this](boost::system::error_code) { accept(); });
}

void SshListener::admit(tcp::socket socket)
{
    const bool full = isFull();
    if (full && !std::exchange(wasFull_, true))
        log_error("agentd: too many NETCONF connections are open: those that are not logged in give way\n");
    if (full && !makeRoom())
        return; // the socket closes
    wasFull_ = full;
    boost::system::error_code gone;
    const tcp::endpoint peer = socket.remote_endpoint(gone);
    SshSessionHandle session(::ssh_new());
    if (gone || !session)
        return;
    socket.set_option(tcp::no_delay(true), gone);
    socket.set_option(net::socket_base::keep_alive(true), gone);
    const net::any_io_executor strand = socket.get_executor();
    if (::ssh_bind_accept_fd(bind_.get(), session.get(), socket.release()) != SSH_OK)
        return;
    std::uint64_t number = 0;
    {
        const std::lock_guard lock(register_->mutex);
        number = ++register_->last;
    }
    const auto connection = std::make_shared<SshConnection>(strand, std::move(session), peer, environment_,
                                                            [all = register_, number] {
                                                                const std::lock_guard lock(all->mutex);
                                                                all->connections.erase(number);
                                                            });
    {
        const std::lock_guard lock(register_->mutex);
        register_->connections.emplace(number, connection);
    }
    connection->start();
}

} // namespace agentd::netconf
