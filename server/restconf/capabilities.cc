#include "server/restconf/capabilities.h"

#include <nlohmann/json.hpp>

namespace agentd::restconf {
namespace {

std::string restconfState()
{
    const nlohmann::json capabilities = {
        "urn:ietf:params:restconf:capability:defaults:1.0?basic-mode=explicit",
        "urn:ietf:params:restconf:capability:depth:1.0",
        "urn:ietf:params:restconf:capability:fields:1.0",
        "urn:ietf:params:restconf:capability:with-defaults:1.0",
    };
    const nlohmann::json state{{"capabilities", {{"capability", capabilities}}}};
    return nlohmann::json{{"ietf-restconf-monitoring:restconf-state", state}}.dump();
}

} // namespace

void provideCapabilities(tk::Host &host)
{
    host.addStateProvider("ietf-restconf-monitoring", restconfState);
}

} // namespace agentd::restconf
