#include "server/http_session.h"

#include <boost/asio/dispatch.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/write.hpp>
#include <boost/beast/core/bind_handler.hpp>
#include <boost/beast/http/read.hpp>
#include <boost/beast/http/rfc7230.hpp>
#include <boost/beast/http/write.hpp>
#include <ctime>
#include <utility>

namespace agentd {
namespace {

namespace net = boost::asio;
namespace beast = boost::beast;
namespace http = beast::http;

constexpr std::size_t kReadAhead = 65536; // beyond the header: pipelined requests and the body's pieces
constexpr std::size_t kFirstRead = 4096;
constexpr std::size_t kMostDrained = std::size_t{16} << 20;

std::string addressOf(const net::ip::tcp::socket &socket, bool withPort)
{
    boost::system::error_code error;
    const auto endpoint = socket.remote_endpoint(error);
    if (error)
        return "unknown";
    const std::string address = endpoint.address().to_string();
    if (!withPort)
        return address;
    const std::string port = std::to_string(endpoint.port());
    return endpoint.address().is_v6() ? "[" + address + "]:" + port : address + ":" + port;
}

std::string httpDate()
{
    const std::time_t now = std::time(nullptr);
    std::tm parts{};
    ::gmtime_r(&now, &parts);
    char text[40];
    std::strftime(text, sizeof text, "%a, %d %b %Y %H:%M:%S GMT", &parts);
    return text;
}

bool isHttpError(const boost::system::error_code &error)
{
    return error.category() == http::make_error_code(http::error::end_of_stream).category();
}

} // namespace

HttpSession::HttpSession(net::ip::tcp::socket &&socket, HttpEnvironment &environment,
                         std::function<void()> ended)
    : stream_(std::move(socket), environment.tls)
    , environment_(environment)
    , ended_(std::move(ended))
    , buffer_(environment.limits.headerBytes + kReadAhead)
{
    auto &plain = beast::get_lowest_layer(stream_).socket();
    boost::system::error_code ignored;
    plain.set_option(net::ip::tcp::no_delay(true), ignored);
    address_ = addressOf(plain, false);
    peer_ = addressOf(plain, true);
}

HttpSession::~HttpSession()
{
    ended_();
}

void HttpSession::start()
{
    net::dispatch(stream_.get_executor(), [self = shared_from_this()] { self->shakeHands(); });
}

void HttpSession::stop()
{
    net::post(stream_.get_executor(), [self = shared_from_this()] {
        self->isStopping_ = true;
        if (self->isIdle_)
            beast::get_lowest_layer(self->stream_).cancel();
    });
}

bool HttpSession::giveWay()
{
    if (!mayGiveWay_.exchange(false))
        return false;
    net::post(stream_.get_executor(),
              [self = shared_from_this()] { beast::get_lowest_layer(self->stream_).close(); });
    return true;
}

auto HttpSession::then(Step step)
{
    return beast::bind_front_handler(step, shared_from_this());
}

void HttpSession::allow(std::chrono::milliseconds time)
{
    beast::get_lowest_layer(stream_).expires_after(time);
}

void HttpSession::shakeHands()
{
    allow(environment_.limits.handshake);
    stream_.async_handshake(net::ssl::stream_base::server, [self = shared_from_this()](Error error) {
        if (!error)
            self->awaitRequest();
    });
}

void HttpSession::awaitRequest()
{
    if (isStopping_)
        return shutDown();
    if (buffer_.size() > 0)
        return readHeader();
    parser_.reset(); // an idle connection holds no more than it must
    buffer_.shrink_to_fit();
    isIdle_ = true;
    allow(isKnown_ ? environment_.limits.idle : environment_.limits.idleStranger);
    stream_.async_read_some(buffer_.prepare(kFirstRead), then(&HttpSession::onFirstBytes));
}

void HttpSession::onFirstBytes(Error error, std::size_t count)
{
    isIdle_ = false;
    buffer_.commit(count);
    if (error && (isStopping_ || error == net::error::eof))
        return shutDown();
    if (!error)
        readHeader();
}

void HttpSession::readHeader()
{
    user_.clear();
    parser_.emplace();
    parser_->header_limit(static_cast<std::uint32_t>(environment_.limits.headerBytes));
    parser_->body_limit(environment_.limits.bodyBytes);
    allow(environment_.limits.header);
    const std::size_t before = buffer_.size();
    const Error error = parseBuffered();
    if (error || parser_->is_header_done())
        return onHeader(error, before - buffer_.size());
    http::async_read_header(stream_, buffer_, *parser_, then(&HttpSession::onHeader));
}

// Most requests come in one piece: then neither their header nor their body needs another turn on the strand.
auto HttpSession::parseBuffered() -> Error
{
    Error error;
    while (!error && buffer_.size() > 0 &&
           !(parser_->eager() ? parser_->is_done() : parser_->is_header_done()))
        buffer_.consume(parser_->put(buffer_.data(), error));
    return error == http::error::need_more ? Error() : error;
}

void HttpSession::onHeader(Error error, std::size_t count)
{
    if (error)
        return refuseUnreadable(error);
    // The parser counts only what did not come at once.
    if (count > environment_.limits.headerBytes)
        return refuse(HttpFault::headerTooLong);
    if (parser_->get().version() >= 11 && parser_->get().count(http::field::host) != 1)
        return refuse(HttpFault::noHost);
    authenticate();
}

// Before the body is read: a stranger may not make the server hold megabytes.
void HttpSession::authenticate()
{
    const auto value = parser_->get()[http::field::authorization];
    const auto credentials = basicCredentials({value.data(), value.size()});
    if (!credentials)
        return refuse(value.empty() ? HttpFault::noCredentials : HttpFault::badCredentials);
    user_ = credentials->name;
    beast::get_lowest_layer(stream_).expires_never();
    environment_.authenticator.check(*credentials, address_, stream_.get_executor(),
                                     [self = shared_from_this()](Login login) { self->onLogin(login); });
}

void HttpSession::onLogin(Login login)
{
    if (login != Login::accepted)
        return refuse(login == Login::busy ? HttpFault::tooManyLogins : HttpFault::badCredentials);
    mayGiveWay_ = false;
    if (!std::exchange(isKnown_, true))
        environment_.service.noteLogin(user_, peer_);
    parser_->get().erase(http::field::authorization);
    const auto expected = parser_->get()[http::field::expect];
    if (!parser_->is_done() && beast::iequals(expected, "100-continue") && buffer_.size() == 0)
        return inviteBody();
    readBody();
}

void HttpSession::inviteBody()
{
    static constexpr std::string_view goOn = "HTTP/1.1 100 Continue\r\n\r\n";
    allow(environment_.limits.write);
    net::async_write(stream_, net::buffer(goOn.data(), goOn.size()),
                     [self = shared_from_this()](Error error, std::size_t) {
                         if (!error)
                             self->readBody();
                     });
}

void HttpSession::readBody()
{
    parser_->eager(true);
    if (const Error error = parseBuffered())
        return refuseUnreadable(error);
    if (parser_->is_done())
        return serve();
    allow(environment_.limits.body);
    http::async_read(stream_, buffer_, *parser_, then(&HttpSession::onBody));
}

void HttpSession::onBody(Error error, std::size_t)
{
    if (error)
        return refuseUnreadable(error);
    serve();
}

// Meanwhile nothing is read, so that no time runs: what takes long is the server's own doing.
void HttpSession::serve()
{
    beast::get_lowest_layer(stream_).expires_never();
    HttpRequest request{parser_->release(), user_, peer_};
    closes_ = !request.message.keep_alive();
    environment_.service.serve(std::move(request), [self = shared_from_this()](HttpResponse response) {
        net::dispatch(self->stream_.get_executor(), [self, response = std::move(response)]() mutable {
            self->respond(std::move(response));
        });
    });
}

void HttpSession::respond(HttpResponse response)
{
    response_ = std::move(response);
    response_.version(11);
    response_.set(http::field::date, httpDate());
    closes_ = closes_ || isStopping_;
    response_.keep_alive(!closes_);
    allow(environment_.limits.write);
    http::async_write(stream_, response_, then(&HttpSession::onWritten));
}

void HttpSession::onWritten(Error error, std::size_t)
{
    response_ = {};
    if (error)
        return;
    if (!closes_)
        return awaitRequest();
    if (parser_ && parser_->is_done())
        return shutDown();
    allow(environment_.limits.farewell);
    drain();
}

// Closing while the client still sends would make its system throw the answer away unread.
void HttpSession::drain()
{
    buffer_.clear();
    stream_.async_read_some(buffer_.prepare(kReadAhead), then(&HttpSession::onDrained));
}

void HttpSession::onDrained(Error error, std::size_t count)
{
    drained_ += count;
    if (error == net::error::eof)
        return shutDown();
    if (!error && drained_ < kMostDrained)
        drain();
}

void HttpSession::shutDown()
{
    allow(environment_.limits.farewell);
    stream_.async_shutdown([self = shared_from_this()](Error) {});
}

// Whatever is left of the request is not worth reading, unless nothing is.
void HttpSession::refuse(HttpFault fault)
{
    HttpRequest request;
    const bool hasHeader = parser_->is_header_done();
    const bool isWhole = hasHeader && parser_->is_done();
    if (hasHeader)
        static_cast<http::request_header<> &>(request.message) = parser_->get().base();
    request.user = environment_.authenticator.isUser(user_) ? user_ : std::string();
    request.peer = peer_;
    closes_ = !isWhole || !parser_->get().keep_alive();
    respond(environment_.service.refuse(fault, request));
}

void HttpSession::refuseUnreadable(Error error)
{
    if (error == http::error::header_limit || error == http::error::buffer_overflow)
        refuse(HttpFault::headerTooLong);
    else if (error == http::error::body_limit)
        refuse(HttpFault::bodyTooLong);
    else if (error == http::error::end_of_stream)
        shutDown();
    else if (isHttpError(error) && error != http::error::partial_message)
        refuse(HttpFault::malformed);
}

} // namespace agentd
