// Accepts connections and keeps count of them.
#pragma once

#include "server/http_session.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/steady_timer.hpp>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

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

class HttpListener {
public:
    HttpListener(boost::asio::io_context &io, boost::asio::ip::tcp::acceptor acceptor,
                 HttpEnvironment &environment);

    void start();
    // From any thread: accepts no more and asks every session to end.
    void stop();
    std::size_t connections() const;

private:
    // Outlives the listener while sessions do, each of which takes itself off.
    struct Register {
        mutable std::mutex mutex;
        std::uint64_t last = 0;
        std::map<std::uint64_t, std::weak_ptr<HttpSession>> sessions;
    };
    std::vector<std::shared_ptr<HttpSession>> liveSessions() const;
    bool makeRoom() const;
    void accept();
    void onAccepted(boost::system::error_code error, boost::asio::ip::tcp::socket socket);
    void admit(boost::asio::ip::tcp::socket socket);

    boost::asio::io_context &io_;
    boost::asio::ip::tcp::acceptor acceptor_;
    HttpEnvironment &environment_;
    boost::asio::steady_timer pause_;
    std::shared_ptr<Register> register_ = std::make_shared<Register>();
    bool wasFull_ = false;
};

} // namespace agentd
