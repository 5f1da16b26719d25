// Where HTTPS listens.
#pragma once

#include "server/http_session.h"
#include "server/listener.h"

#include <string>

namespace agentd {

// HOST:PORT as options and the ready line spell it; an IPv6 address stands in brackets.
struct Endpoint {
    std::string host;
    std::uint16_t port = 0;
};
// Throws std::invalid_argument.
Endpoint parseEndpoint(const std::string &text);

// A socket that listens there; port 0 takes a free one. Throws std::runtime_error: "HOST:PORT: reason".
boost::asio::ip::tcp::acceptor listenAt(boost::asio::io_context &io, const Endpoint &endpoint);

// HOST:PORT of what the acceptor is bound to.
std::string boundAddress(const boost::asio::ip::tcp::acceptor &acceptor);

class HttpListener : public Listener<HttpSession> {
public:
    HttpListener(boost::asio::io_context &io, boost::asio::ip::tcp::acceptor acceptor,
                 HttpEnvironment &environment);

private:
    bool isFull() const override;
    std::shared_ptr<HttpSession> connect(Socket socket, OnGone onGone) override;

    HttpEnvironment &environment_;
};

} // namespace agentd
