// One SSH connection: key exchange, authentication, the one channel of a NETCONF session. Event-driven:
// libssh is only called when the socket is ready, and never waits.
#pragma once

#include "server/authenticator.h"
#include "server/netconf/session.h"
#include "server/netconf/ssh_keys.h"

#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/posix/stream_descriptor.hpp>
#include <boost/asio/steady_timer.hpp>
#include <chrono>

namespace agentd::netconf {

// What a client may cost.
struct SshLimits {
    std::chrono::milliseconds keyExchange = std::chrono::seconds(10);
    std::chrono::milliseconds authentication = std::chrono::seconds(40); // with the waits after failures
    std::chrono::milliseconds hello = std::chrono::seconds(20); // from the login to the client's hello
    std::chrono::milliseconds idle = std::chrono::hours(1);     // between requests
    std::chrono::milliseconds write = std::chrono::seconds(60); // without the client taking anything
    std::chrono::milliseconds farewell = std::chrono::seconds(2);
    unsigned logins = 10; // attempts, offered keys included
    std::size_t sessions = 512;
    std::size_t strangers = 128; // connections that are not logged in
    std::size_t messageBytes = std::size_t{8} << 20;
};

// Outlives the connections, but for their destruction.
struct SshEnvironment {
    Authenticator &authenticator;
    Users &users;
    Audit &audit;
    Dispatcher &dispatcher;
    std::function<void(const SessionPointer &)> release; // a session that ended gives back what it held
    SshLimits limits = {};
    std::atomic<std::size_t> strangers{0}; // connections that are not logged in
};

class SshConnection : public Transport, public std::enable_shared_from_this<SshConnection> {
public:
    // `session` has the socket; `ended` is called once when the connection is gone. Throws
    // boost::system::system_error when there are no descriptors left.
    SshConnection(const boost::asio::any_io_executor &strand, SshSessionHandle session,
                  const boost::asio::ip::tcp::endpoint &peer, SshEnvironment &environment,
                  std::function<void()> ended);

    void start();
    // From any thread: takes no more requests, and ends when the one under way is answered.
    void stop();
    // From any thread: ends unless somebody has logged in. False: it stays, or ends already.
    bool giveWay();

    // As the transport of its session.
    void send(std::string bytes) override;
    void endSession() override;
    void post(std::function<void()> action) override;

private:
    enum class State { keyExchange, authentication, loggedIn, closing, closed };
    using Clock = std::chrono::steady_clock;

    void advance();
    void exchangeKeys();
    void takeMessages();
    void take(SshMessageHandle message);
    void takeLogin(SshMessageHandle message);
    void checkPassword(SshMessageHandle message);
    void checkKey(SshMessageHandle message);
    void accept(const ssh_message &message);
    void refuse(const ssh_message &message);
    bool openChannel(ssh_message message);
    bool openSubsystem(ssh_message message);
    void readChannel();
    void writeChannel();
    void endIfDone();
    void endNetconf();
    bool isAlive() const;
    void awaitSocket();
    void awaitReadable();
    void awaitWritable();
    void allow(std::chrono::milliseconds time);
    void awaitDeadline();
    void onDeadline();
    void note(const char *outcome) const;
    bool leaveStrangers();
    void close();

    const boost::asio::any_io_executor strand_;
    const SshSessionHandle session_;
    boost::asio::posix::stream_descriptor socket_; // a second descriptor of it, to wait for
    boost::asio::steady_timer timer_;
    SshEnvironment &environment_;
    const std::function<void()> ended_;
    const std::string address_, peer_; // without and with the port
    State state_ = State::keyExchange;
    Clock::time_point deadline_;
    bool isVerifying_ = false; // a password is being checked
    bool isAwaitingRead_ = false, isAwaitingWrite_ = false, isAwaitingDeadline_ = false;
    bool isAdvancing_ = false, hasMore_ = false, isStopping_ = false;
    std::atomic<bool> isStranger_{true}; // not logged in, and counted as such
    bool hasNetconfEnded_ = false, hasSaidFarewell_ = false;
    unsigned logins_ = 0;
    std::string user_;
    ssh_channel channel_ = nullptr; // the session's
    std::shared_ptr<Session> netconf_;
    std::string output_;
    std::size_t sent_ = 0; // of the output
};

} // namespace agentd::netconf
