// Where NETCONF over SSH listens.
#pragma once

#include "server/listener.h"
#include "server/netconf/ssh_connection.h"

namespace agentd::netconf {

class SshListener : public Listener<SshConnection> {
public:
    SshListener(boost::asio::io_context &io, boost::asio::ip::tcp::acceptor acceptor, SshBindHandle bind,
                SshEnvironment &environment);

private:
    bool isFull() const override;
    std::shared_ptr<SshConnection> connect(Socket socket, OnGone onGone) override;

    const SshBindHandle bind_; // used on the acceptor's strand only
    SshEnvironment &environment_;
};

} // namespace agentd::netconf
