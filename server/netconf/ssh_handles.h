// Owners of what libssh allocates.
#pragma once

#include <libssh/libssh.h>
#include <libssh/server.h>
#include <memory>

namespace agentd::netconf {

struct SshFree {
    void operator()(ssh_session_struct *session) const { ::ssh_free(session); }
    void operator()(ssh_bind_struct *bind) const { ::ssh_bind_free(bind); }
    void operator()(ssh_key_struct *key) const { ::ssh_key_free(key); }
    void operator()(ssh_message_struct *message) const { ::ssh_message_free(message); }
};

using SshSessionHandle = std::unique_ptr<ssh_session_struct, SshFree>;
using SshBindHandle = std::unique_ptr<ssh_bind_struct, SshFree>;
using SshKeyHandle = std::unique_ptr<ssh_key_struct, SshFree>;
using SshMessageHandle = std::unique_ptr<ssh_message_struct, SshFree>;

} // namespace agentd::netconf
