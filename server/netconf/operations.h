// The operations: from the element of a request to what is left to do.
#pragma once

#include "server/netconf/message.h"
#include "server/netconf/sessions.h"
#include "toolkit/datastores.h"

#include <functional>
#include <string>

namespace agentd::netconf {

// What a request asks for, once it is understood.
struct Plan {
    std::function<std::string(const Envelope &)> run; // the reply; throws RpcFailure, tk::Failure
    bool blocks = false;      // it may call back into the bundle, or has to keep its place among those who do
    bool closes = false;      // the session ends behind the reply
    std::string audited = {}; // how the audit trail calls it; empty: it changes nothing
};

struct OperationContext {
    tk::Host &host;
    tk::Datastores &stores;
    std::function<bool(std::uint32_t)> kill; // a session by its number; false: there is none
};

// `session` makes the request. Throws RpcFailure for what can be told at once.
Plan planOperation(const OperationContext &context, const pugi::xml_node &operation,
                   const SessionRecord &session);

} // namespace agentd::netconf
