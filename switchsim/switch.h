// The simulated switch inside of another process: what agentd starts when it has no device.
//
//   auto device = switchsim::startInProcessSwitch({.stateDir = dir});
//   backend::setTransport(device->transport());
//   ...
//   backend::setTransport(nullptr);
//
// It listens on DIR/switch.sock, so that `switchctl --state DIR` finds it.
#pragma once

#include "backend/transport.h"

#include <memory>
#include <string>

namespace switchsim {

class Simulator;

struct SwitchOptions {
    std::string stateDir; // an existing folder; empty: no control socket
    int platformType = 1; // what get_platform_type answers; `switchctl set platform-type` changes it
};

class InProcessSwitch {
public:
    explicit InProcessSwitch(const SwitchOptions &options);
    ~InProcessSwitch(); // closes the control socket and ends its threads; the transport answers no more
    InProcessSwitch(const InProcessSwitch &) = delete;
    InProcessSwitch &operator=(const InProcessSwitch &) = delete;

    // Carries requests to the switch on the caller's thread. May outlive this object: then every call
    // is a delivery failure.
    std::shared_ptr<backend::Transport> transport() const;

    // The switch itself, for tests that set values or read the journal without the socket.
    Simulator &simulator() const;

private:
    class Impl;
    std::unique_ptr<Impl> impl_;
};

// Starts the switch. Throws std::runtime_error or std::invalid_argument with one line for the user: the path
// of the socket is too long, in use by a live switch, or can't be made.
std::unique_ptr<InProcessSwitch> startInProcessSwitch(const SwitchOptions &options);

} // namespace switchsim
