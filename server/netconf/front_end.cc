#include "server/netconf/front_end.h"

#include "server/http_listener.h"
#include "server/netconf/monitoring.h"

#include <algorithm>
#include <boost/asio/post.hpp>
#include <boost/asio/strand.hpp>
#include <sys/resource.h>
#include <utility>

namespace agentd::netconf {

namespace {

namespace net = boost::asio;

constexpr std::chrono::milliseconds kTryAgain{100};
constexpr rlim_t kDescriptors = 4096; // two a session, and those of the other front end

void allowDescriptors()
{
    rlimit limit{};
    if (::getrlimit(RLIMIT_NOFILE, &limit) != 0 || limit.rlim_cur >= kDescriptors)
        return;
    limit.rlim_cur = std::min<rlim_t>(kDescriptors, limit.rlim_max);
    ::setrlimit(RLIMIT_NOFILE, &limit);
}

SshBindHandle preparedBind(const std::filesystem::path &stateDir)
{
    ensureHostKey(stateDir);
    return serverBind(stateDir);
}

} // namespace

NetconfFrontEnd::NetconfFrontEnd(const Services &services, net::ip::tcp::acceptor acceptor, SshLimits limits)
    : address_(boundAddress(acceptor))
    , dispatcher_(services.host, services.stores, sessions_, services.callbacks, services.audit)
    , authenticator_(services.users, services.hashing, services.guard)
    , environment_{authenticator_,
                   services.users,
                   services.audit,
                   dispatcher_,
                   [this](const SessionPointer &session) { release(session); },
                   limits}
    , strand_(net::make_strand(services.io))
    , sweep_(strand_)
    , unconfirmed_(strand_)
    , listener_(services.io, std::move(acceptor), preparedBind(services.stateDir), environment_)
{
    allowDescriptors();
    services.host.addStateProvider("ietf-netconf-monitoring",
                                   [this, &host = services.host, &stores = services.stores] {
                                       return netconfState(host, stores, sessions_);
                                   });
    dispatcher_.onDeadlineChange([this] { net::post(strand_, [this] { watchDeadline(); }); });
}

std::string NetconfFrontEnd::address() const
{
    return address_;
}

void NetconfFrontEnd::start()
{
    listener_.start();
}

void NetconfFrontEnd::stop()
{
    listener_.stop();
    net::post(strand_, [this] {
        sweep_.cancel();
        unconfirmed_.cancel();
    });
}

bool NetconfFrontEnd::hasEnded() const
{
    return listener_.connections() == 0;
}

void NetconfFrontEnd::release(const SessionPointer &session)
{
    if (!dispatcher_.release(session))
        net::post(strand_, [this] { sweepLater(); });
}

void NetconfFrontEnd::sweepLater()
{
    sweep_.expires_after(kTryAgain);
    sweep_.async_wait([this](const boost::system::error_code &error) {
        if (!error && !dispatcher_.sweep())
            sweepLater();
    });
}

void NetconfFrontEnd::watchDeadline()
{
    const auto deadline = dispatcher_.deadline();
    if (!deadline) {
        unconfirmed_.cancel();
        return;
    }
    unconfirmed_.expires_at(*deadline);
    unconfirmed_.async_wait([this](const boost::system::error_code &error) {
        if (!error)
            onDeadline();
    });
}

// Too much waits for the switch: the commit is taken back as soon as there is room.
void NetconfFrontEnd::onDeadline()
{
    if (dispatcher_.takeBackUnconfirmed())
        return;
    unconfirmed_.expires_after(kTryAgain);
    unconfirmed_.async_wait([this](const boost::system::error_code &error) {
        if (!error)
            onDeadline();
    });
}

} // namespace agentd::netconf
