#include "server/netconf/ssh_login_message.h"

// The callbacks that libssh has in place of these have to decide at once, but a password is checked
// elsewhere.
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

namespace agentd::netconf {

namespace {

std::string textOf(const char *text)
{
    return text ? text : "";
}

} // namespace

std::string userIn(ssh_message message)
{
    return textOf(::ssh_message_auth_user(message));
}

std::string passwordIn(ssh_message message)
{
    return textOf(::ssh_message_auth_password(message));
}

KeyOffer keyIn(ssh_message message)
{
    const auto state = ::ssh_message_auth_publickey_state(message);
    return {::ssh_message_auth_pubkey(message), state == SSH_PUBLICKEY_STATE_NONE,
            state == SSH_PUBLICKEY_STATE_VALID};
}

} // namespace agentd::netconf
