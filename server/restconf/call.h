// One request on its way through the RESTCONF front end.
#pragma once

#include "server/http_service.h"
#include "server/restconf/negotiation.h"
#include "server/restconf/routes.h"
#include "server/restconf/uri.h"
#include "toolkit/host.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace agentd::restconf {

struct Call {
    HttpRequest request;
    SplitTarget uri{};                  // points into the request
    Offer answer{};                     // what the client reads
    std::optional<tk::Target> target{}; // of data resources and operations
    std::optional<ResourceKind> kind{}; // once it is known
    std::uint64_t record = 0;           // of an edit that is carried out and not yet safely on disk
    HttpResponse response{};            // once it is carried out
};

// What is left to do when a request was understood.
struct Plan {
    bool blocks = false;               // it may call back into the bundle, and wait for a daemon
    std::function<HttpResponse()> run; // throws RequestError, tk::Failure
};

// The value of a header, all its lines joined as HTTP allows; nothing if it wasn't sent.
std::optional<std::string> headerOf(const HttpMessage &message, boost::beast::http::field field);

// An answer with a document.
HttpResponse documentAnswer(boost::beast::http::status status, std::string_view mediaType, std::string body);
// An answer without.
HttpResponse emptyAnswer(boost::beast::http::status status);

} // namespace agentd::restconf
