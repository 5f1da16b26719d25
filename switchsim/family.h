// One family of daemons: a part of the switch's state and the calls that read and change it.
#pragma once

#include "switchsim/calls.h"
#include "switchsim/json_text.h"
#include "switchsim/ports.h"
#include "switchsim/values.h"

#include <memory>
#include <string_view>

namespace switchsim
{

// What all families share.
struct Device {
    Ports ports;
    Values values;
};

// Calls, show() and the device are only used under the simulator's lock.
class Family
{
public:
    virtual ~Family() = default;
    virtual std::string_view word() const = 0;        // what `show WORD` calls it
    virtual void registerCalls(CallTable &calls) = 0; // the family outlives the table's use
    virtual Json show() const = 0;
};

// One a file, or a few of the same daemons; the order is that of `show`.
std::unique_ptr<Family> makePlatform(Device &device);
std::unique_ptr<Family> makeInterfaces(Device &device);
std::unique_ptr<Family> makeJumbo(Device &device);
std::unique_ptr<Family> makeTrustDscp(Device &device);
std::unique_ptr<Family> makeStormControl(Device &device);
std::unique_ptr<Family> makeProtectedPorts(Device &device);
std::unique_ptr<Family> makeForwardingProfile(Device &device);
std::unique_ptr<Family> makePoe(Device &device);
std::unique_ptr<Family> makePlugins(Device &device);
std::unique_ptr<Family> makeTasks(Device &device);

} // namespace switchsim
