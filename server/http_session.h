// One HTTPS connection: handshake, then one request after the other until somebody has enough.
#pragma once

#include "server/authenticator.h"
#include "server/http_service.h"

#include <atomic>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/ssl/context.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/core/tcp_stream.hpp>
#include <boost/beast/http/parser.hpp>
#include <boost/beast/ssl/ssl_stream.hpp>
#include <memory>
#include <optional>

namespace agentd {

// What the sessions of one listener share. Outlives them.
struct HttpEnvironment {
    boost::asio::ssl::context &tls;
    Authenticator &authenticator;
    HttpService &service;
    HttpLimits limits;
};

// Lives as long as one of its operations is under way. Requests that a client sends without waiting are
// read one by one, so answers come in order. Everything runs on the strand of the socket.
class HttpSession : public std::enable_shared_from_this<HttpSession> {
public:
    // `ended` is called once, when the session is destroyed.
    HttpSession(boost::asio::ip::tcp::socket &&socket, HttpEnvironment &environment,
                std::function<void()> ended);
    ~HttpSession();

    void start();
    // From any thread: ends at once if it waits for a request, otherwise after the answer at hand.
    void stop();
    // From any thread: ends unless somebody has logged in. False: it stays, or ends already.
    bool giveWay();

private:
    using Error = boost::system::error_code;
    using Step = void (HttpSession::*)(Error, std::size_t);

    // The steps of a connection, in their order.
    void shakeHands();
    void awaitRequest();
    void onFirstBytes(Error error, std::size_t count);
    void readHeader();
    Error parseBuffered();
    void onHeader(Error error, std::size_t count);
    void authenticate();
    void onLogin(Login login);
    void inviteBody();
    void readBody();
    void onBody(Error error, std::size_t count);
    void serve();
    void respond(HttpResponse response);
    void onWritten(Error error, std::size_t count);
    void drain();
    void onDrained(Error error, std::size_t count);
    void shutDown();

    void refuse(HttpFault fault);
    void refuseUnreadable(Error error);
    bool isLastAnswer() const;
    void allow(std::chrono::milliseconds time);
    auto then(Step step);

    boost::beast::ssl_stream<boost::beast::tcp_stream> stream_;
    HttpEnvironment &environment_;
    std::function<void()> ended_;
    std::string address_; // of the peer, without the port
    std::string peer_;
    boost::beast::flat_buffer buffer_;
    std::optional<boost::beast::http::request_parser<boost::beast::http::string_body>> parser_;
    HttpResponse response_;
    std::string user_;
    std::size_t drained_ = 0;
    bool isKnown_ = false; // showed good credentials before
    std::atomic<bool> mayGiveWay_{true};
    bool isIdle_ = false; // waits for the first byte of a request
    bool isStopping_ = false;
    bool closes_ = false; // nothing more is read from this client
};

} // namespace agentd
