// What a client's message says about its login.
#pragma once

#include "server/netconf/ssh_handles.h"

#include <string>

namespace agentd::netconf {

struct KeyOffer {
    ssh_key key = nullptr; // the message's
    bool isProbe = false;  // the client only asks whether the key would do
    bool isSigned = false; // it has shown that it has the private part
};

std::string userIn(ssh_message message);
std::string passwordIn(ssh_message message);
KeyOffer keyIn(ssh_message message);

} // namespace agentd::netconf
