#include "server/restconf/call.h"

namespace agentd::restconf {

namespace http = boost::beast::http;

std::optional<std::string> headerOf(const HttpMessage &message, http::field field)
{
    const auto [first, last] = message.equal_range(field);
    if (first == last)
        return std::nullopt;
    std::string text;
    for (auto line = first; line != last; ++line)
        text.append(line == first ? "" : ", ").append(line->value().data(), line->value().size());
    return text;
}

HttpResponse documentAnswer(http::status status, std::string_view mediaType, std::string body)
{
    HttpResponse response(status, 11);
    response.set(http::field::content_type, {mediaType.data(), mediaType.size()});
    response.body() = std::move(body);
    return response;
}

HttpResponse emptyAnswer(http::status status)
{
    return HttpResponse(status, 11);
}

} // namespace agentd::restconf
