#include "server/netconf/ssh_connection.h"

#include "server/netconf/ssh_login_message.h"
#include "toolkit/log.h"

#include <boost/asio/dispatch.hpp>
#include <boost/asio/post.hpp>
#include <boost/system/system_error.hpp>
#include <cerrno>
#include <unistd.h>
#include <utility>

namespace agentd::netconf {

namespace {

namespace net = boost::asio;

constexpr char kFrontEnd[] = "netconf", kSubsystem[] = "netconf";
constexpr int kMessagesAtOnce = 16, kReadsAtOnce = 64; // then others have their turn
constexpr std::size_t kPiece = 32768;

std::string asText(const net::ip::tcp::endpoint &endpoint)
{
    const std::string address = endpoint.address().to_string(), port = std::to_string(endpoint.port());
    return (endpoint.address().is_v6() ? "[" + address + "]" : address) + ":" + port;
}

// A descriptor of its own for waiting: libssh closes the other one as it sees fit, and the number could be
// somebody else's by then.
int duplicateOf(ssh_session session)
{
    const int descriptor = ::dup(::ssh_get_fd(session));
    if (descriptor < 0)
        throw boost::system::system_error(errno, boost::system::system_category(), "dup");
    return descriptor;
}

} // namespace

SshConnection::SshConnection(const net::any_io_executor &strand, SshSessionHandle session,
                             const net::ip::tcp::endpoint &peer, SshEnvironment &environment,
                             std::function<void()> ended)
    : strand_(strand)
    , session_(std::move(session))
    , socket_(strand, duplicateOf(session_.get()))
    , timer_(strand)
    , environment_(environment)
    , ended_(std::move(ended))
    , address_(peer.address().to_string())
    , peer_(asText(peer))
{
    ++environment_.strangers;
}

void SshConnection::start()
{
    net::dispatch(strand_, [self = shared_from_this()] {
        ::ssh_set_blocking(self->session_.get(), 0);
        ::ssh_set_auth_methods(self->session_.get(), SSH_AUTH_METHOD_PASSWORD | SSH_AUTH_METHOD_PUBLICKEY);
        self->allow(self->environment_.limits.keyExchange);
        self->advance();
    });
}

void SshConnection::stop()
{
    post([this] { isStopping_ = true; });
}

bool SshConnection::giveWay()
{
    if (!leaveStrangers())
        return false;
    net::post(strand_, [self = shared_from_this()] { self->close(); });
    return true;
}

bool SshConnection::leaveStrangers()
{
    const bool wasOne = isStranger_.exchange(false);
    if (wasOne)
        --environment_.strangers;
    return wasOne;
}

void SshConnection::post(std::function<void()> action)
{
    net::post(strand_, [self = shared_from_this(), action = std::move(action)] {
        if (self->state_ != State::closed)
            action();
        self->advance();
    });
}

// Does all that can be done without waiting.
void SshConnection::advance()
{
    if (state_ == State::closed || std::exchange(isAdvancing_, true))
        return;
    hasMore_ = false;
    if (state_ == State::keyExchange)
        exchangeKeys();
    if (state_ != State::closed && !isVerifying_)
        takeMessages();
    if (state_ != State::closed && channel_)
        readChannel();
    if (state_ != State::closed && channel_)
        writeChannel();
    if (state_ != State::closed)
        endIfDone();
    isAdvancing_ = false;
    if (state_ != State::closed)
        awaitSocket();
}

void SshConnection::exchangeKeys()
{
    const int result = ::ssh_handle_key_exchange(session_.get());
    if (result == SSH_ERROR)
        return close();
    if (result != SSH_OK)
        return;
    state_ = State::authentication;
    allow(environment_.limits.authentication);
}

void SshConnection::takeMessages()
{
    for (int taken = 0; taken < kMessagesAtOnce; ++taken) {
        if (state_ == State::closed || isVerifying_)
            return;
        SshMessageHandle message(::ssh_message_get(session_.get()));
        if (!message)
            return;
        take(std::move(message));
    }
    hasMore_ = true;
}

void SshConnection::take(SshMessageHandle message)
{
    bool isTaken = false;
    switch (::ssh_message_type(message.get())) {
    case SSH_REQUEST_SERVICE:
        isTaken = ::ssh_message_service_reply_success(message.get()) == SSH_OK;
        break;
    case SSH_REQUEST_AUTH:
        return takeLogin(std::move(message));
    case SSH_REQUEST_CHANNEL_OPEN:
        isTaken = openChannel(message.get());
        break;
    case SSH_REQUEST_CHANNEL:
        isTaken = openSubsystem(message.get());
        break;
    default:
        break;
    }
    if (!isTaken)
        ::ssh_message_reply_default(message.get());
}

// Logging in

void SshConnection::takeLogin(SshMessageHandle message)
{
    if (state_ != State::authentication || ++logins_ > environment_.limits.logins)
        return close();
    user_ = userIn(message.get());
    switch (::ssh_message_subtype(message.get())) {
    case SSH_AUTH_METHOD_PASSWORD:
        return checkPassword(std::move(message));
    case SSH_AUTH_METHOD_PUBLICKEY:
        return checkKey(std::move(message));
    default:
        ::ssh_message_reply_default(message.get()); // says which methods there are
    }
}

void SshConnection::checkPassword(SshMessageHandle message)
{
    isVerifying_ = true;
    const std::shared_ptr<ssh_message_struct> kept(std::move(message));
    environment_.authenticator.check({user_, passwordIn(kept.get())}, address_, strand_,
                                     [self = shared_from_this(), kept](Login login) {
                                         self->isVerifying_ = false;
                                         if (self->state_ == State::closed)
                                             return;
                                         if (login == Login::accepted)
                                             self->accept(kept.get());
                                         else
                                             self->refuse(kept.get());
                                         if (login == Login::busy)
                                             self->close();
                                         self->advance();
                                     });
}

void SshConnection::checkKey(SshMessageHandle message)
{
    const KeyOffer offer = keyIn(message.get());
    const auto file = environment_.users.publicKeyOf(user_);
    const bool isKnown = file && offer.key && isKeyIn(*file, offer.key);
    if (isKnown && offer.isProbe)
        ::ssh_message_auth_reply_pk_ok_simple(message.get());
    else if (isKnown && offer.isSigned)
        accept(message.get());
    else if (offer.isProbe)
        ::ssh_message_reply_default(message.get());
    else
        refuse(message.get());
}

void SshConnection::accept(const ssh_message &message)
{
    ::ssh_message_auth_reply_success(message, 0);
    state_ = State::loggedIn;
    leaveStrangers();
    allow(environment_.limits.hello);
    note("accepted");
}

void SshConnection::refuse(const ssh_message &message)
{
    ::ssh_message_reply_default(message);
    note("refused");
}

// A name that is no user is left out: people type passwords where the name belongs.
void SshConnection::note(const char *outcome) const
{
    const bool isKnown = environment_.users.isKnown(user_);
    environment_.audit.record({kFrontEnd, isKnown ? user_ : std::string(), peer_, "login", outcome});
}

// The session's channel

bool SshConnection::openChannel(ssh_message message)
{
    if (state_ != State::loggedIn || channel_ || ::ssh_message_subtype(message) != SSH_CHANNEL_SESSION)
        return false;
    channel_ = ::ssh_message_channel_request_open_reply_accept(message);
    return channel_ != nullptr;
}

bool SshConnection::openSubsystem(ssh_message message)
{
    const bool isOurs = channel_ && ::ssh_message_channel_request_channel(message) == channel_ && !netconf_ &&
        ::ssh_message_subtype(message) == SSH_CHANNEL_REQUEST_SUBSYSTEM;
    const char *name = isOurs ? ::ssh_message_channel_request_subsystem(message) : nullptr;
    Sessions &sessions = environment_.dispatcher.sessions();
    if (!name || std::string_view(name) != kSubsystem)
        return false;
    if (sessions.count() >= environment_.limits.sessions) {
        log_error("agentd: %zu NETCONF sessions are open, more are refused\n", environment_.limits.sessions);
        return false;
    }
    ::ssh_message_channel_request_reply_success(message);
    const auto kill = [weak = weak_from_this()] {
        if (const auto self = weak.lock())
            net::post(self->strand_, [self] { self->close(); });
    };
    netconf_ =
        std::make_shared<Session>(environment_.dispatcher, weak_from_this(),
                                  sessions.begin(user_, peer_, kill), environment_.limits.messageBytes);
    netconf_->start();
    return true;
}

void SshConnection::readChannel()
{
    const bool wasGreeted = netconf_ && netconf_->hasSaidHello();
    char buffer[16384];
    for (int reads = 0; netconf_ && !isStopping_; ++reads) {
        const bool isDropped = state_ == State::closing; // what comes behind the last reply
        if (state_ == State::closed || (!isDropped && (!netconf_->wantsInput() || sent_ < output_.size())))
            break;
        if (reads == kReadsAtOnce) {
            hasMore_ = true;
            break;
        }
        const int count = ::ssh_channel_read_nonblocking(channel_, buffer, sizeof buffer, 0);
        if (count <= 0)
            break;
        if (!isDropped)
            netconf_->receive({buffer, static_cast<std::size_t>(count)});
    }
    if (netconf_ && !wasGreeted && netconf_->hasSaidHello())
        allow(environment_.limits.idle);
}

void SshConnection::send(std::string bytes)
{
    if (sent_ == output_.size()) {
        output_ = std::move(bytes);
        sent_ = 0;
        allow(environment_.limits.write);
    } else {
        output_.append(bytes);
    }
}

// No further than the socket and the client's window take it: the rest stays here.
void SshConnection::writeChannel()
{
    const bool hadOutput = !output_.empty();
    while (sent_ < output_.size() && !(::ssh_get_status(session_.get()) & SSH_WRITE_PENDING)) {
        const auto size = static_cast<std::uint32_t>(std::min(kPiece, output_.size() - sent_));
        const int count = ::ssh_channel_write(channel_, output_.data() + sent_, size);
        if (count <= 0)
            break; // the window is full, or the connection is gone
        sent_ += static_cast<std::size_t>(count);
        allow(environment_.limits.write);
    }
    if (!hadOutput || sent_ < output_.size())
        return;
    output_ = {};
    sent_ = 0;
    if (netconf_->hasSaidHello() && state_ == State::loggedIn)
        allow(environment_.limits.idle);
    // The next request may be here already, and its bytes may be libssh's by now.
    hasMore_ = netconf_->wantsInput();
}

// What the session held is given back before the client can know that it ended.
void SshConnection::endSession()
{
    if (state_ == State::loggedIn)
        state_ = State::closing;
    endNetconf();
}

void SshConnection::endNetconf()
{
    if (!netconf_ || std::exchange(hasNetconfEnded_, true))
        return;
    netconf_->end();
    environment_.dispatcher.sessions().end(netconf_->record(), netconf_->endsOrderly());
    environment_.release(netconf_->record());
}

bool SshConnection::isAlive() const
{
    return ::ssh_is_connected(session_.get()) &&
        !(::ssh_get_status(session_.get()) & (SSH_CLOSED | SSH_CLOSED_ERROR));
}

void SshConnection::endIfDone()
{
    const bool isBusy = netconf_ && netconf_->isBusy();
    const bool isFlushed = sent_ == output_.size() && !(::ssh_get_status(session_.get()) & SSH_WRITE_PENDING);
    if (!isAlive() || (channel_ && ::ssh_channel_is_closed(channel_)))
        return close();
    if (isBusy || !isFlushed)
        return;
    if (isStopping_ || (channel_ && state_ == State::loggedIn && ::ssh_channel_is_eof(channel_) && !hasMore_))
        return close();
    if (state_ != State::closing || std::exchange(hasSaidFarewell_, true))
        return;
    // The client closes the connection, or else the deadline does.
    ::ssh_channel_send_eof(channel_);
    ::ssh_channel_close(channel_);
    allow(environment_.limits.farewell);
}

void SshConnection::close()
{
    if (std::exchange(state_, State::closed) == State::closed)
        return;
    leaveStrangers();
    endNetconf();
    channel_ = nullptr;
    ::ssh_disconnect(session_.get());
    boost::system::error_code ignored;
    socket_.close(ignored);
    timer_.cancel();
    ended_();
}

// Waiting

void SshConnection::awaitSocket()
{
    if (hasMore_)
        net::post(strand_, [self = shared_from_this()] { self->advance(); });
    if (!isVerifying_ && !isAwaitingRead_)
        awaitReadable();
    if ((::ssh_get_status(session_.get()) & SSH_WRITE_PENDING) && !isAwaitingWrite_)
        awaitWritable();
}

void SshConnection::awaitReadable()
{
    isAwaitingRead_ = true;
    socket_.async_wait(net::posix::stream_descriptor::wait_read,
                       [self = shared_from_this()](const boost::system::error_code &) {
                           self->isAwaitingRead_ = false;
                           self->advance();
                       });
}

void SshConnection::awaitWritable()
{
    isAwaitingWrite_ = true;
    socket_.async_wait(net::posix::stream_descriptor::wait_write,
                       [self = shared_from_this()](const boost::system::error_code &) {
                           self->isAwaitingWrite_ = false;
                           self->advance();
                       });
}

void SshConnection::allow(std::chrono::milliseconds time)
{
    deadline_ = Clock::now() + time;
    // A timer that goes off too early only looks at the clock; one that is set too late has to be set anew.
    if (isAwaitingDeadline_ && timer_.expiry() <= deadline_)
        return;
    awaitDeadline();
}

void SshConnection::awaitDeadline()
{
    isAwaitingDeadline_ = true;
    timer_.expires_at(deadline_);
    timer_.async_wait([self = shared_from_this()](const boost::system::error_code &error) {
        if (!error)
            self->onDeadline();
    });
}

void SshConnection::onDeadline()
{
    isAwaitingDeadline_ = false;
    if (state_ == State::closed)
        return;
    // What takes long while a callback works is the switch's doing.
    if (netconf_ && netconf_->isBusy())
        return allow(environment_.limits.idle);
    if (deadline_ > Clock::now())
        return awaitDeadline();
    log_info("agentd: a NETCONF connection from %s took too long\n", peer_.c_str());
    close();
}

} // namespace agentd::netconf
