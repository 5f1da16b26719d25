// RESTCONF over HTTPS, put together.
#pragma once

#include "server/authenticator.h"
#include "server/front_end.h"
#include "server/http_listener.h"
#include "server/restconf/handler.h"

#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/ssl/context.hpp>

namespace agentd::restconf {

class RestconfFrontEnd : public FrontEnd {
public:
    // `acceptor` listens already; `tls` has key and certificate.
    RestconfFrontEnd(const Services &services, boost::asio::ip::tcp::acceptor acceptor,
                     boost::asio::ssl::context tls);

    std::string address() const override; // https://HOST:PORT
    void start() override;
    void stop() override;
    bool hasEnded() const override;

private:
    std::string address_;
    boost::asio::ssl::context tls_;
    Authenticator authenticator_;
    Handler handler_;
    HttpEnvironment environment_;
    HttpListener listener_;
};

} // namespace agentd::restconf
