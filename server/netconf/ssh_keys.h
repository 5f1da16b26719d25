// The server's own key and those of the users.
#pragma once

#include "server/netconf/ssh_handles.h"

#include <filesystem>
#include <stdexcept>
#include <string_view>

namespace agentd::netconf {

class SshError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Makes DIR/ssh-host-key (Ed25519, mode 0600) and DIR/ssh-host-key.pub where they are missing.
// Throws SshError or std::system_error.
void ensureHostKey(const std::filesystem::path &stateDir);

// What makes sessions out of accepted connections, with that key. Throws SshError naming a file that cannot
// be used.
SshBindHandle serverBind(const std::filesystem::path &stateDir);

// Whether the key is one of the file's: a line "TYPE BASE64 [COMMENT]" each, as OpenSSH writes them. A file
// that cannot be read holds none.
bool isKeyIn(const std::filesystem::path &file, ssh_key key);

} // namespace agentd::netconf
