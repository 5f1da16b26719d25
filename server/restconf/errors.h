// Refusals: one exception type that carries the whole answer, and the error document that clients read.
#pragma once

#include "toolkit/host.h"

#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace agentd::restconf {

// A request that the RESTCONF front end refuses by itself. Made by the functions below only: no other code
// spells an error-tag.
class RequestError : public std::runtime_error {
public:
    using Fields = std::vector<std::pair<std::string, std::string>>;
    RequestError(unsigned status, std::string tag, std::string message, Fields fields = {});

    unsigned status; // of HTTP
    tk::Error error;
    Fields fields; // headers that the answer needs, such as Allow
};

RequestError badUri(const std::string &message);          // 400: a path, key or query that cannot be read
RequestError unknownResource(const std::string &message); // 404: no such resource, or no data in it
RequestError badBody(const std::string &message);         // 400: not JSON or XML, nested too deeply
RequestError badHeader(const std::string &message);       // 400: a field of the header
RequestError methodNotAllowed(const std::string &method, const std::string &allow);            // 405
RequestError notAcceptable(const std::string &message);                                        // 406
RequestError unsupportedMediaType(const std::string &message, const std::string &acceptPatch); // 415
RequestError preconditionFailed(const std::string &message);                                   // 412
RequestError bodyTooLong();                                                                    // 413
RequestError headerTooLong();                                                                  // 431
RequestError busy(const std::string &message);         // 409: too many requests wait
RequestError accessDenied(const std::string &message); // 401
RequestError internalError();                          // 500: what must not occur; the log has more

// The HTTP status of an error-tag, after the table of RFC 8040, section 7. A tag that it doesn't know: 500.
unsigned httpStatusOf(std::string_view errorTag);

// The namespace of a module by its name; empty if unknown.
using NamespaceOf = std::function<std::string(const std::string &module)>;

// The ietf-restconf:errors document. Bytes that a document cannot hold are replaced, so that it is always
// well-formed, whatever a device said.
std::string errorDocument(const std::vector<tk::Error> &errors, tk::Encoding encoding,
                          const NamespaceOf &namespaceOf);

} // namespace agentd::restconf
