// Messages of NETCONF: what a client sent, and the envelope of what it gets back.
#pragma once

#include "server/netconf/rpc_error.h"
#include "toolkit/xml_names.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace agentd::netconf {

// The deepest data have some fifteen levels, and around them stand rpc, operation and config.
inline constexpr unsigned kDeepestMessage = 64;

// A well-formed message of bounded depth without a document type. Throws RpcFailure.
std::shared_ptr<pugi::xml_document> loadMessage(const std::string &text);

// The <rpc-reply> around an answer: with the attributes of the request, whatever they are.
class Envelope {
public:
    Envelope() = default; // of a message that could not be read
    explicit Envelope(const pugi::xml_node &rpc);

    std::string ok() const;
    std::string data(const std::string &content) const; // in <data>
    std::string content(const std::string &elements) const;
    std::string errors(const std::vector<RpcError> &errors, const NamespaceOf &namespaceOf) const;

private:
    std::string prefix_;     // "nc:", or empty where the base namespace is the default one
    std::string attributes_; // as they are written
    std::string declaration_ =
        {}; // of the base namespace on elements inside, where it is not the default one
    bool isDeclared_ = false;
};

// The operation's element of an <rpc>. Throws RpcFailure.
pugi::xml_node operationOf(const pugi::xml_document &message);

// What the server says first.
std::string helloMessage(const std::vector<std::string> &capabilities, std::uint32_t sessionId);

// What the client says first: whether it speaks base:1.1. Throws RpcFailure, after which the session ends.
bool readHello(const std::string &text);

} // namespace agentd::netconf
