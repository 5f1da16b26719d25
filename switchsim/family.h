// One family of daemons: a part of the switch's state and the calls that read and change it.
#pragma once

#include "switchsim/calls.h"
#include "switchsim/json_text.h"
#include "switchsim/logical.h"
#include "switchsim/ports.h"
#include "switchsim/units.h"
#include "switchsim/values.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace switchsim {

// The device's name and who gave it: 1 nobody, 2 a management client.
struct HostName {
    std::string name = "switch";
    std::int32_t source = 1;
};

// The partition that the switch started from and the one that it starts from next: 4 primary, 5 secondary.
struct Boot {
    std::int32_t running = 4;
    std::int32_t source = 4;
};

// What all families share.
struct Device {
    Ports ports;
    Values values;
    HostName hostName;
    Lags lags;
    RoutedInterfaces routed;
    Vlans vlans;
    StackUnits units;
    Boot boot;
    std::function<std::string()> runningConfig; // as a text, made of what the families say

    // A port, LAG, ve or loopback. Null: there is no such interface.
    Interface *findInterface(std::string_view name);
    // Those that are there now, by number.
    std::vector<const StackUnit *> presentUnits() const;
    // Null: there is no such unit.
    StackUnit *findUnit(std::int32_t id);
};

// Calls, show() and the device are only used under the simulator's lock.
class Family {
public:
    virtual ~Family() = default;
    virtual std::string_view word() const = 0;        // what `show WORD` calls it
    virtual void registerCalls(CallTable &calls) = 0; // the family outlives the table's use
    virtual Json show() const = 0;
    // A value that a user may set has just been set.
    virtual void valueChanged([[maybe_unused]] std::string_view name) { }
    // Its part of the running configuration, where it differs from a new switch's.
    virtual std::vector<std::string> configLines() const { return {}; }
};

// One a file, or a few of the same daemons; the order is that of `show`.
std::unique_ptr<Family> makePlatform(Device &device);
std::unique_ptr<Family> makeSystem(Device &device);
std::unique_ptr<Family> makeAaa(Device &device);
std::unique_ptr<Family> makeInterfaces(Device &device);
std::unique_ptr<Family> makeRoutedInterfaces(Device &device);
std::unique_ptr<Family> makeLags(Device &device);
std::unique_ptr<Family> makeVlans(Device &device);
std::unique_ptr<Family> makeSpanningTrees(Device &device);
std::unique_ptr<Family> makeLldp(Device &device);
std::unique_ptr<Family> makeMcastSnooping(Device &device);
std::unique_ptr<Family> makeStaticMacs(Device &device);
std::unique_ptr<Family> makeDhcpClient(Device &device);
std::unique_ptr<Family> makeDhcpServer(Device &device);
std::unique_ptr<Family> makeRoutes(Device &device);
std::unique_ptr<Family> makeReachability(Device &device);
std::unique_ptr<Family> makeJumbo(Device &device);
std::unique_ptr<Family> makeTrustDscp(Device &device);
std::unique_ptr<Family> makeStormControl(Device &device);
std::unique_ptr<Family> makeAccessLists(Device &device);
std::unique_ptr<Family> makeProtectedPorts(Device &device);
std::unique_ptr<Family> makeForwardingProfile(Device &device);
std::unique_ptr<Family> makePoe(Device &device);
std::unique_ptr<Family> makePlugins(Device &device);
std::unique_ptr<Family> makeTasks(Device &device);
std::unique_ptr<Family> makeChassis(Device &device);
std::unique_ptr<Family> makeStack(Device &device);
std::unique_ptr<Family> makeFlash(Device &device);
std::unique_ptr<Family> makeConfigFiles(Device &device);
std::unique_ptr<Family> makeSupportData(Device &device);

} // namespace switchsim
