// The switch behind the bundle: how its daemons are reached.
#pragma once

#include <chrono>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>

namespace agentd {

struct DeviceOptions {
    std::string where = "inproc";         // or "unix:PATH"
    std::optional<int> platform;          // the platform type that the simulated switch reports
    std::chrono::milliseconds timeout{0}; // for one answer of a daemon; 0: the back end's own
    std::filesystem::path stateDir;       // switchctl finds the switch inside this process there
};

// The way to the switch, for as long as it lives.
class Device {
public:
    virtual ~Device() = default;
    // From any thread: calls that wait for a daemon, and all later ones, end as delivery failures.
    virtual void interrupt() = 0;
};

// Sets up the transport that the client functions of the back end use. Throws tk::StartFailure, or another
// std::exception with one line for the user.
std::unique_ptr<Device> setUpDevice(const DeviceOptions &options);

} // namespace agentd
