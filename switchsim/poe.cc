#include "backend/proto/poe.pb-c.h"
#include "switchsim/family.h"

#include <algorithm>
#include <array>
#include <map>

namespace switchsim {
namespace {

// Opcodes of a request.
constexpr std::int32_t kSet = 1;
constexpr std::int32_t kSetState = 2;
constexpr std::int32_t kRemove = 3;
constexpr std::int32_t kRead = 5;
// Its oper_type.
constexpr std::int32_t kOperDelete = 3;

// Milliwatts that a class stands for, by the standard's numbers; class 0 is a device that names none.
constexpr std::array<std::uint32_t, 9> kClassPower = {15'400, 4'000,  7'000,  15'400, 30'000,
                                                      45'000, 60'000, 75'000, 90'000};
constexpr std::uint32_t kLowestLimit = 1'000;
constexpr std::uint32_t kHighestLimit = 95'000;
constexpr std::uint32_t kUnlimited = 30'000; // allocated to a port without limit and class
constexpr std::int32_t kLowestPriority = 3;

struct PortPower {
    bool isEnabled = false;
    std::int32_t powerClass = 0;
    std::uint32_t limit = 0; // 0: none
    std::int32_t priority = kLowestPriority;

    std::uint32_t allocated() const
    {
        if (!isEnabled)
            return 0;
        if (limit > 0)
            return limit;
        return powerClass > 0 ? kClassPower[static_cast<std::size_t>(powerClass)] : kUnlimited;
    }
};

class Poe : public Family {
public:
    explicit Poe(Device &device)
        : device_(device)
    {
    }

    std::string_view word() const override { return "poe"; }

    void registerCalls(CallTable &calls) override
    {
        calls
            .on<PoeConfig, PoeInfo>("ui_fe_poe_config_cmd_send", poe_config__descriptor, poe_info__descriptor,
                                    [this](const auto &request, auto &answer, auto &answering) {
                                        config(request, answer, answering);
                                    })
            .withArgument("opcode");
    }

    Json show() const override
    {
        Json ports = Json::object();
        for (const auto &[name, power] : ports_) {
            ports[name] = {{"enabled", power.isEnabled},     {"class", power.powerClass},
                           {"limit", power.limit},           {"priority", power.priority},
                           {"allocated", power.allocated()}, {"used", used(power)}};
        }
        return {{"budget", budget()}, {"allocated", allocatedBeside({})}, {"ports", ports}};
    }

private:
    void config(const PoeConfig &request, PoeInfo &answer, Answering &answering)
    {
        const std::string name = request.port == nullptr ? "" : request.port;
        if (device_.ports.find(name) == nullptr)
            return answering.refuse(unknownPort(name));
        const auto opcode = answering.argument();
        if (opcode == kSet || opcode == kSetState || opcode == kRemove)
            change(name, request, opcode, answering);
        else if (opcode == kRead)
            describe(ports_[name], answer, answering);
        else
            answering.refuse("Error: unknown inline power operation\n");
    }

    void change(const std::string &name, const PoeConfig &request, std::int32_t opcode, Answering &answering)
    {
        if (request.oper != nullptr && request.oper->oper_type == kOperDelete) {
            ports_.erase(name);
            return;
        }
        PortPower wanted = ports_[name];
        // A request that sets values carries a state too, a zero where nothing was said of it.
        if (request.port_config != nullptr && (opcode == kSetState || request.port_config->enabled != 0))
            wanted.isEnabled = request.port_config->enabled != 0;
        if (opcode == kRemove)
            wanted.isEnabled = false;
        if (request.ilp_config != nullptr && !takeLimits(*request.ilp_config, wanted, answering))
            return;
        if (wanted.isEnabled && allocatedBeside(name) + wanted.allocated() > budget())
            return answering.refuse("Error: the unit's power budget does not allow it\n");
        ports_[name] = wanted;
    }

    // A zero says nothing; a limit takes the place of a class and the other way round.
    static bool takeLimits(const PoeIlpConfig &ilp, PortPower &power, Answering &answering)
    {
        const auto limit = static_cast<std::uint32_t>(ilp.power_limit);
        if (limit != 0 && (limit < kLowestLimit || limit > kHighestLimit)) {
            answering.refuse("Error: the power limit must be in the range 1000..95000\n");
            return false;
        }
        if (ilp.power_class < 0 || static_cast<std::size_t>(ilp.power_class) >= kClassPower.size()) {
            answering.refuse("Error: the power class must be in the range 0..8\n");
            return false;
        }
        if (limit != 0) {
            power.limit = limit;
            power.powerClass = 0;
        } else if (ilp.power_class != 0) {
            power.powerClass = ilp.power_class;
            power.limit = 0;
        }
        if (ilp.priority != 0)
            power.priority = ilp.priority;
        return true;
    }

    void describe(const PortPower &power, PoeInfo &answer, Answering &answering) const
    {
        answer.has_power_class = answer.has_priority = 1;
        answer.power_class = power.powerClass;
        answer.priority = power.priority;
        answer.port_info = answering.make(poe_port_info__init);
        answer.port_info->has_enabled = answer.port_info->has_power_allocated =
            answer.port_info->has_power_used = 1;
        answer.port_info->enabled = power.isEnabled ? 1 : 0;
        answer.port_info->power_allocated = power.allocated();
        answer.port_info->power_used = used(power);
    }

    std::uint32_t used(const PortPower &power) const
    {
        return std::min(power.allocated(), static_cast<std::uint32_t>(device_.values.get("poe-draw")));
    }

    std::uint32_t budget() const { return static_cast<std::uint32_t>(device_.values.get("poe-budget")); }

    std::uint32_t allocatedBeside(const std::string &name) const
    {
        std::uint32_t sum = 0;
        for (const auto &[other, power] : ports_)
            sum += other == name ? 0 : power.allocated();
        return sum;
    }

    Device &device_;
    std::map<std::string, PortPower> ports_; // absent: as it comes from the factory
};

} // namespace

std::unique_ptr<Family> makePoe(Device &device)
{
    return std::make_unique<Poe>(device);
}

} // namespace switchsim
