#include "server/restconf/front_end.h"

#include <utility>

namespace agentd::restconf {

RestconfFrontEnd::RestconfFrontEnd(const Services &services, boost::asio::ip::tcp::acceptor acceptor,
                                   boost::asio::ssl::context tls)
    : address_("https://" + boundAddress(acceptor))
    , tls_(std::move(tls))
    , authenticator_(services.users, services.hashing, services.guard)
    , handler_(services.host, services.callbacks, services.audit, &services.stores)
    , environment_{tls_, authenticator_, handler_, {}}
    , listener_(services.io, std::move(acceptor), environment_)
{
}

std::string RestconfFrontEnd::address() const
{
    return address_;
}

void RestconfFrontEnd::start()
{
    listener_.start();
}

void RestconfFrontEnd::stop()
{
    listener_.stop();
}

bool RestconfFrontEnd::hasEnded() const
{
    return listener_.connections() == 0;
}

} // namespace agentd::restconf
