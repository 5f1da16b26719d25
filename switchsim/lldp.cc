#include "backend/lldp.h"
#include "switchsim/family.h"

#include <map>
#include <sstream>

namespace switchsim {
namespace {

constexpr std::int32_t kSet = 2;
constexpr std::int32_t kGet = 5;
constexpr std::int32_t kGiven = 1;
constexpr std::int32_t kTagged = 3;
constexpr std::int32_t kPriorityTagged = 1;

struct PortState {
    bool receives = true;
    bool sends = true;

    bool operator==(const PortState &) const = default;
};

struct Policy {
    std::int32_t tagMode;
    std::uint32_t vlan, priority, dscp;

    bool operator==(const Policy &) const = default;
};

// "ethernet 1/1/1 ethernet 1/1/2": names of two words.
std::vector<std::string> namesIn(const char *list)
{
    std::vector<std::string> names;
    std::istringstream words(list == nullptr ? "" : list);
    for (std::string kind, id; words >> kind; names.push_back(id.empty() ? kind : kind + " " + id)) {
        id.clear();
        words >> id;
    }
    return names;
}

class Lldp : public Family {
public:
    explicit Lldp(Device &device)
        : device_(device)
    {
    }

    std::string_view word() const override { return "lldp"; }

    void registerCalls(CallTable &calls) override
    {
        calls
            .on<LldpGlobalConfig, LldpGlobalConfig>(
                "ui_fe_lldp_config_apply", lldp_global_config__descriptor, lldp_global_config__descriptor,
                [this](const auto &request, auto &answer, auto &answering) {
                    global(request, answer, answering);
                })
            .withArgument("flag");
        calls.on<Lldpcfg__LldpInterfaceConfig, Lldpcfg__LldpInterfaceConfig>(
            "ui_lldp_fe_int_config_apply", lldpcfg__lldp_interface_config__descriptor,
            lldpcfg__lldp_interface_config__descriptor,
            [this](const auto &request, auto &answer, auto &answering) { port(request, answer, answering); });
        calls
            .on<Lldpcfg__LldpMed, Lldpcfg__LldpMed>(
                "ui_lldp_fe_med_config_apply", lldpcfg__lldp_med__descriptor, lldpcfg__lldp_med__descriptor,
                [this](const auto &request, auto &, auto &answering) { med(request, answering); })
            .withArgument("flag");
    }

    // Ports that do as they come from the factory are left out.
    Json show() const override
    {
        Json ports = Json::object(), neighbors = Json::object(), policies = Json::object();
        for (const auto &[name, state] : ports_)
            if (state != PortState{})
                ports[name] = {{"receives", state.receives}, {"sends", state.sends}};
        for (const Port &one : device_.ports.all())
            if (hears(one))
                neighbors[one.name] = neighborOf(one);
        for (const auto &[port, ofPort] : policies_)
            for (const auto &[application, policy] : ofPort)
                policies[port][std::to_string(application)] = describe(policy);
        return {{"enabled", isEnabled_}, {"ports", ports}, {"neighbors", neighbors}, {"med", policies}};
    }

private:
    static Json describe(const Policy &policy)
    {
        Json shown = Json::object();
        if (policy.tagMode == kTagged)
            shown["vlan"] = policy.vlan;
        if (policy.tagMode == kTagged || policy.tagMode == kPriorityTagged)
            shown["priority"] = policy.priority;
        shown["dscp"] = policy.dscp;
        return shown;
    }

    void global(const LldpGlobalConfig &request, LldpGlobalConfig &answer, Answering &answering)
    {
        if (request.operation != kSet && request.operation != kGet)
            return answering.refuse("Error: unknown LLDP operation\n");
        if (request.operation == kSet && request.state_op == kGiven)
            isEnabled_ = request.state != 0;
        answer.has_state = 1;
        answer.state = isEnabled_ ? 1 : 0;
    }

    // There is no word for a refusal: a port that is not there is passed over.
    void port(const Lldpcfg__LldpInterfaceConfig &request, Lldpcfg__LldpInterfaceConfig &answer,
              Answering &answering)
    {
        const std::string name = request.interface_name == nullptr ? "" : request.interface_name;
        if (device_.ports.find(name) != nullptr)
            ports_[name] = {request.rx != 0, request.tx != 0};
        answer.operation = request.operation;
        answer.rx_op = request.rx_op;
        answer.rx = request.rx;
        answer.tx_op = request.tx_op;
        answer.tx = request.tx;
        answer.interface_name = answering.keep(name);
        answer.interface_op = request.interface_op;
    }

    // A port announces one policy for an application. Removing one that it does not announce is done already.
    void med(const Lldpcfg__LldpMed &request, Answering &answering)
    {
        const Policy policy{request.tag_mode, request.vlan, request.priority, request.dscp};
        const auto names = namesIn(request.ports);
        if (request.add == 0) {
            for (const auto &name : names)
                withdraw(name, request.application_type, policy);
            return;
        }
        for (const auto &name : names)
            if (device_.ports.find(name) == nullptr)
                return answering.refuse(unknownPort(name));
        for (const auto &name : names)
            policies_[name][request.application_type] = policy;
    }

    void withdraw(const std::string &name, std::int32_t application, const Policy &policy)
    {
        const auto found = policies_.find(name);
        if (found == policies_.end())
            return;
        const auto announced = found->second.find(application);
        if (announced != found->second.end() && announced->second == policy)
            found->second.erase(announced);
        if (found->second.empty())
            policies_.erase(found);
    }

    // There is a neighbour at the end of each cable.
    bool hears(const Port &port) const
    {
        const auto found = ports_.find(port.name);
        const bool isPlugged =
            device_.values.get("unplugged-port") != static_cast<std::int32_t>(port.ifindex);
        return isEnabled_ && port.isEnabled && isPlugged && (found == ports_.end() || found->second.receives);
    }

    static Json neighborOf(const Port &port)
    {
        const std::string number = std::to_string(port.ifindex);
        return {{"system-name", "neighbor-" + number}, {"port-id", "eth0"}};
    }

    Device &device_;
    bool isEnabled_ = true;
    std::map<std::string, PortState> ports_;                         // absent: as from the factory
    std::map<std::string, std::map<std::int32_t, Policy>> policies_; // by port and application
};

} // namespace

std::unique_ptr<Family> makeLldp(Device &device)
{
    return std::make_unique<Lldp>(device);
}

} // namespace switchsim
