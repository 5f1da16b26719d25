// NETCONF over SSH, put together.
#pragma once

#include "server/front_end.h"
#include "server/netconf/ssh_listener.h"

namespace agentd::netconf {

class NetconfFrontEnd : public FrontEnd {
public:
    // `acceptor` listens already. Makes the host key where it is missing. Throws SshError or
    // std::system_error.
    NetconfFrontEnd(const Services &services, boost::asio::ip::tcp::acceptor acceptor, SshLimits limits = {});

    std::string address() const override; // HOST:PORT
    void start() override;
    void stop() override;
    bool hasEnded() const override;

private:
    void release(const SessionPointer &session);
    void sweepLater();
    void watchDeadline();
    void onDeadline();

    std::string address_;
    Sessions sessions_;
    Dispatcher dispatcher_;
    Authenticator authenticator_;
    SshEnvironment environment_;
    boost::asio::any_io_executor strand_; // of the timers
    boost::asio::steady_timer sweep_, unconfirmed_;
    SshListener listener_;
};

} // namespace agentd::netconf
