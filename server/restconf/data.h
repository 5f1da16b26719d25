// Requests on the datastore, the resources in it, and operations: from the header and query to a call of the
// host, and from its outcome to an answer.
#pragma once

#include "server/restconf/call.h"

#include <memory>

namespace agentd::restconf {

using CallPointer = std::shared_ptr<Call>;

// Each checks all that can be checked at once and throws RequestError or tk::Failure for it.
Plan planRead(tk::Host &host, const CallPointer &call); // GET and HEAD
Plan planEdit(tk::Host &host, const CallPointer &call, tk::Method method);
Plan planInvoke(tk::Host &host, const CallPointer &call); // POST to an rpc or action

} // namespace agentd::restconf
