// What the NETCONF server says of itself: its capabilities, and the state that RFC 6022 describes.
#pragma once

#include "server/netconf/sessions.h"
#include "toolkit/datastores.h"

#include <string>
#include <vector>

namespace agentd::netconf {

// Of the hello. The host has finished its start.
std::vector<std::string> serverCapabilities(const tk::Host &host);

// The modules that this front end needs, to be loaded into the host before its bundles.
void loadModules(tk::Host &host);

// The content of netconf-state as JSON.
std::string netconfState(const tk::Host &host, const tk::Datastores &stores, const Sessions &sessions);

} // namespace agentd::netconf
