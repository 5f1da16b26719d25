// Accepts SSH connections and keeps count of them.
#pragma once

#include "server/netconf/ssh_connection.h"

#include <boost/asio/io_context.hpp>
#include <map>
#include <mutex>
#include <vector>

namespace agentd::netconf {

class SshListener {
public:
    SshListener(boost::asio::io_context &io, boost::asio::ip::tcp::acceptor acceptor, SshBindHandle bind,
                SshEnvironment &environment);

    void start();
    // From any thread: accepts no more and asks every connection to end.
    void stop();
    std::size_t connections() const;

private:
    // Outlives the listener while connections do, each of which takes itself off.
    struct Register {
        mutable std::mutex mutex;
        std::uint64_t last = 0;
        std::map<std::uint64_t, std::weak_ptr<SshConnection>> connections;
    };
    std::vector<std::shared_ptr<SshConnection>> liveConnections() const;
    bool isFull() const;
    bool makeRoom() const;
    void accept();
    void onAccepted(boost::system::error_code error, boost::asio::ip::tcp::socket socket);
    void admit(boost::asio::ip::tcp::socket socket);

    boost::asio::io_context &io_;
    boost::asio::ip::tcp::acceptor acceptor_;
    const SshBindHandle bind_; // used on the acceptor's strand only
    SshEnvironment &environment_;
    boost::asio::steady_timer pause_;
    std::shared_ptr<Register> register_ = std::make_shared<Register>();
    bool wasFull_ = false;
};

} // namespace agentd::netconf
