// Refusals of NETCONF requests: rpc-errors as RFC 6241 has them.
#pragma once

#include "toolkit/host.h"

#include <cstdint>
#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace agentd::netconf {

enum class ErrorType { rpc, protocol, application };

struct RpcError {
    ErrorType type = ErrorType::application;
    tk::Error error;
    std::vector<std::pair<std::string, std::string>> info; // of error-info: name and text
};

// A request that is refused: at least one error.
class RpcFailure : public std::runtime_error {
public:
    explicit RpcFailure(RpcError error)
        : RpcFailure(std::vector<RpcError>{std::move(error)})
    {
    }
    explicit RpcFailure(std::vector<RpcError> all)
        : std::runtime_error(all.at(0).error.message)
        , errors(std::move(all))
    {
    }
    std::vector<RpcError> errors;
};

// One function for each kind of refusal, so that no other code spells a tag.
RpcFailure malformedMessage(const std::string &message);
RpcFailure missingAttribute(const std::string &attribute, std::string_view element);
RpcFailure badAttribute(const std::string &attribute, std::string_view element, const std::string &message);
RpcFailure missingElement(const std::string &element);
RpcFailure badElement(std::string_view element, const std::string &message);
RpcFailure unknownElement(std::string_view element);
RpcFailure unknownNamespace(std::string_view element, const std::string &nameSpace);
RpcFailure unknownOperation(std::string_view element);
RpcFailure notSupported(std::string_view element, const std::string &message);
RpcFailure invalidValue(const std::string &message);
RpcFailure resourceDenied(const std::string &message);
RpcFailure internalError();

// What the toolkit refused.
std::vector<RpcError> fromToolkit(const tk::Failure &failure);

// The namespace of a module by its name; empty if unknown.
using NamespaceOf = std::function<std::string(const std::string &module)>;

// The rpc-error elements of a reply; `attribute` declares their namespace where it is not the default one.
// Bytes that a document cannot hold are replaced, whatever a device said.
std::string errorElements(const std::vector<RpcError> &errors, const std::string &attribute,
                          const NamespaceOf &namespaceOf);

} // namespace agentd::netconf
