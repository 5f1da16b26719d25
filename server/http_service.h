// Between the HTTP side, which knows connections, and what answers requests, which knows resources.
#pragma once

#include <boost/beast/http/message.hpp>
#include <boost/beast/http/string_body.hpp>
#include <chrono>
#include <cstddef>
#include <functional>
#include <string>

namespace agentd {

using HttpMessage = boost::beast::http::request<boost::beast::http::string_body>;
using HttpResponse = boost::beast::http::response<boost::beast::http::string_body>;

struct HttpRequest {
    HttpMessage message;
    std::string user; // who asks; in a refusal the name that was given, empty if nobody has it
    std::string peer; // address and port, for the audit trail
};

// Why a request does not reach the service.
enum class HttpFault {
    malformed,
    headerTooLong,
    bodyTooLong,
    noHost,
    noCredentials,
    badCredentials,
    tooManyLogins,
};

class HttpService {
public:
    using Reply = std::function<void(HttpResponse)>;
    virtual ~HttpService() = default;

    // Answers by calling `reply` once, at once or later, on any thread. Does not throw.
    // The response is complete but for what belongs to the connection.
    virtual void serve(HttpRequest request, Reply reply) = 0;

    // The answer to a request that the connection refuses. `request` holds what is known of it: its header,
    // unless that is malformed. Does not throw.
    virtual HttpResponse refuse(HttpFault fault, const HttpRequest &request) = 0;

    // A connection showed good credentials for the first time. Does not throw.
    virtual void noteLogin(const std::string &user, const std::string &peer) = 0;
};

// What a client may cost.
struct HttpLimits {
    std::chrono::milliseconds handshake = std::chrono::seconds(10);
    std::chrono::milliseconds header = std::chrono::seconds(10); // from its first byte to its last
    std::chrono::milliseconds body = std::chrono::seconds(60);
    std::chrono::milliseconds write = std::chrono::seconds(60);        // the whole response
    std::chrono::milliseconds idle = std::chrono::seconds(120);        // between requests
    std::chrono::milliseconds idleStranger = std::chrono::seconds(15); // before the first good credentials
    std::chrono::milliseconds farewell = std::chrono::seconds(2); // reading what nobody wants, closing TLS
    std::size_t headerBytes = 16384;
    std::size_t bodyBytes = std::size_t{4} << 20;
    std::size_t connections = 400;
};

} // namespace agentd
