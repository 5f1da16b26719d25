// One family of daemons: a part of the switch's state and the calls that read and change it.
#pragma once

#include "switchsim/calls.h"
#include "switchsim/json_text.h"
#include "switchsim/logical.h"
#include "switchsim/ports.h"
#include "switchsim/values.h"

#include <memory>
#include <string>
#include <string_view>

namespace switchsim {

// The device's name and who gave it: 1 nobody, 2 a management client.
struct HostName {
    std::string name = "switch";
    std::int32_t source = 1;
};

// What all families share.
struct Device {
    Ports ports;
    Values values;
    HostName hostName;
    Lags lags;
    RoutedInterfaces routed;
    Vlans vlans;

    // A port, LAG, ve or loopback. Null: there is no such interface.
    Interface *findInterface(std::string_view name);
};

// Calls, show() and the device are only used under the simulator's lock.
class Family {
public:
    virtual ~Family() = default;
    virtual std::string_view word() const = 0;        // what `show WORD` calls it
    virtual void registerCalls(CallTable &calls) = 0; // the family outlives the table's use
    virtual Json show() const = 0;
};

// One a file, or a few of the same daemons; the order is that of `show`.
std::unique_ptr<Family> makePlatform(Device &device);
std::unique_ptr<Family> makeSystem(Device &device);
std::unique_ptr<Family> makeAaa(Device &device);
std::unique_ptr<Family> makeInterfaces(Device &device);
std::unique_ptr<Family> makeRoutedInterfaces(Device &device);
std::unique_ptr<Family> makeLags(Device &device);
std::unique_ptr<Family> makeVlans(Device &device);
std::unique_ptr<Family> makeStaticMacs(Device &device);
std::unique_ptr<Family> makeDhcpClient(Device &device);
std::unique_ptr<Family> makeJumbo(Device &device);
std::unique_ptr<Family> makeTrustDscp(Device &device);
std::unique_ptr<Family> makeStormControl(Device &device);
std::unique_ptr<Family> makeProtectedPorts(Device &device);
std::unique_ptr<Family> makeForwardingProfile(Device &device);
std::unique_ptr<Family> makePoe(Device &device);
std::unique_ptr<Family> makePlugins(Device &device);
std::unique_ptr<Family> makeTasks(Device &device);

} // namespace switchsim
