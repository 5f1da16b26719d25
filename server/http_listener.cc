#include "server/http_listener.h"

#include <charconv>
#include <stdexcept>
#include <utility>

namespace agentd {
namespace {

namespace net = boost::asio;
using tcp = net::ip::tcp;

tcp::endpoint resolved(net::io_context &io, const Endpoint &endpoint)
{
    tcp::resolver resolver(io);
    const auto found = resolver.resolve(endpoint.host, std::to_string(endpoint.port),
                                        tcp::resolver::passive | tcp::resolver::numeric_service);
    return found.begin()->endpoint();
}

std::string asText(const std::string &host, std::uint16_t port)
{
    const bool isV6 = host.find(':') != std::string::npos;
    return (isV6 ? "[" + host + "]" : host) + ":" + std::to_string(port);
}

} // namespace

Endpoint parseEndpoint(const std::string &text)
{
    const auto colon = text.rfind(':');
    Endpoint endpoint;
    if (colon != std::string::npos)
        endpoint.host = text.substr(0, colon);
    if (endpoint.host.size() > 2 && endpoint.host.front() == '[' && endpoint.host.back() == ']')
        endpoint.host = endpoint.host.substr(1, endpoint.host.size() - 2);
    else if (endpoint.host.find(':') != std::string::npos)
        endpoint.host.clear();
    const char *const end = text.data() + text.size();
    const char *const digits = colon == std::string::npos ? end : text.data() + colon + 1;
    const auto [stop, error] = std::from_chars(digits, end, endpoint.port);
    if (endpoint.host.empty() || error != std::errc() || stop != end)
        throw std::invalid_argument("'" + text + "' is not HOST:PORT");
    return endpoint;
}

tcp::acceptor listenAt(net::io_context &io, const Endpoint &endpoint)
try {
    const tcp::endpoint where = resolved(io, endpoint);
    tcp::acceptor acceptor(net::make_strand(io));
    acceptor.open(where.protocol());
    acceptor.set_option(net::socket_base::reuse_address(true));
    acceptor.bind(where);
    acceptor.listen(net::socket_base::max_listen_connections);
    return acceptor;
} catch (const boost::system::system_error &failure) {
    throw std::runtime_error(asText(endpoint.host, endpoint.port) + ": " + failure.code().message());
}

std::string boundAddress(const tcp::acceptor &acceptor)
{
    const auto where = acceptor.local_endpoint();
    return asText(where.address().to_string(), where.port());
}

HttpListener::HttpListener(net::io_context &io, tcp::acceptor acceptor, HttpEnvironment &environment)
    : Listener(io, std::move(acceptor), "RESTCONF")
    , environment_(environment)
{
}

bool HttpListener::isFull() const
{
    return connections() >= environment_.limits.connections;
}

std::shared_ptr<HttpSession> HttpListener::connect(Socket socket, OnGone onGone)
{
    return std::make_shared<HttpSession>(std::move(socket), environment_, std::move(onGone));
}

} // namespace agentd
