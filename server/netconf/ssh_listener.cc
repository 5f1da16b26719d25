#include "server/netconf/ssh_listener.h"

#include <utility>

namespace agentd::netconf {

namespace {

namespace net = boost::asio;
using tcp = net::ip::tcp;

} // namespace

SshListener::SshListener(net::io_context &io, tcp::acceptor acceptor, SshBindHandle bind,
                         SshEnvironment &environment)
    : Listener(io, std::move(acceptor), "NETCONF")
    , bind_(std::move(bind))
    , environment_(environment)
{
}

// Those who never log in cannot take the places of those who did.
bool SshListener::isFull() const
{
    const SshLimits &limits = environment_.limits;
    return environment_.strangers >= limits.strangers || connections() >= limits.sessions + limits.strangers;
}

std::shared_ptr<SshConnection> SshListener::connect(Socket socket, OnGone onGone)
{
    boost::system::error_code gone;
    const tcp::endpoint peer = socket.remote_endpoint(gone);
    SshSessionHandle session(::ssh_new());
    if (gone || !session)
        return nullptr;
    socket.set_option(tcp::no_delay(true), gone);
    socket.set_option(net::socket_base::keep_alive(true), gone);
    const net::any_io_executor strand = socket.get_executor();
    if (::ssh_bind_accept_fd(bind_.get(), session.get(), socket.release()) != SSH_OK)
        return nullptr;
    return std::make_shared<SshConnection>(strand, std::move(session), peer, environment_, std::move(onGone));
}

} // namespace agentd::netconf
