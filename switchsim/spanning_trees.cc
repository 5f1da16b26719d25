#include "backend/spanning_tree.h"
#include "switchsim/family.h"

#include <algorithm>

namespace switchsim {
namespace {

constexpr std::int32_t kSet = 2;
constexpr std::int32_t kRemove = 3;
constexpr std::uint32_t kHighestPriority = 65535;
constexpr std::ptrdiff_t kMostTrees = 254;

const char *kindName(bool isRapid)
{
    return isRapid ? "rapid" : "classic";
}

class SpanningTrees : public Family {
public:
    explicit SpanningTrees(Device &device)
        : device_(device)
    {
    }

    std::string_view word() const override { return "spanning-tree"; }

    void registerCalls(CallTable &calls) override
    {
        calls.on<RstpConfig, CommonResp>(
            "ui_rstp_config_apply", rstp_config__descriptor, common_resp__descriptor,
            [this](const auto &request, auto &, auto &answering) { changeTree(request, true, answering); });
        calls.on<StpConfig, CommonResp>(
            "ui_stp_config_apply", stp_config__descriptor, common_resp__descriptor,
            [this](const auto &request, auto &, auto &answering) { changeTree(request, false, answering); });
        calls.on<StpCommonPortConfig, CommonResp>("ui_stp_common_port_config_apply",
                                                  stp_common_port_config__descriptor, common_resp__descriptor,
                                                  [this](const auto &request, auto &, auto &answering) {
                                                      if (TreePort *port = treePort(request.name, answering))
                                                          setGuards(*port, request);
                                                  });
        calls.on<RstpPortConfig, CommonResp>("ui_rstp_port_config_apply", rstp_port_config__descriptor,
                                             common_resp__descriptor,
                                             [this](const auto &request, auto &, auto &answering) {
                                                 if (TreePort *port = treePort(request.name, answering))
                                                     setEdge(*port, request);
                                             });
    }

    // Ports that are as they come from the factory are left out.
    Json show() const override
    {
        Json trees = Json::object(), ports = Json::object();
        for (const auto &[id, vlan] : device_.vlans.all)
            if (vlan.tree)
                trees[std::to_string(id)] = {{"kind", kindName(vlan.tree->isRapid)},
                                             {"priority", vlan.tree->priority}};
        for (const Port &port : device_.ports.all())
            describe(port, ports);
        for (const auto &[id, lag] : device_.lags.all)
            describe(lag, ports);
        return {{"vlans", trees}, {"ports", ports}};
    }

private:
    static void describe(const Interface &interface, Json &ports)
    {
        const TreePort &port = interface.treePort;
        if (port != TreePort{})
            ports[interface.name] = {
                {"root-guard", port.hasRootGuard}, {"bpdu-guard", port.hasBpduGuard}, {"edge", port.isEdge}};
    }

    // What is not there can be turned off: its VLAN may have gone before it.
    template <class Request>
    void changeTree(const Request &request, bool isRapid, Answering &answering)
    {
        const auto found = device_.vlans.all.find(request.vlan_id);
        if (request.enable == 0) {
            if (found != device_.vlans.all.end() && found->second.tree &&
                found->second.tree->isRapid == isRapid)
                found->second.tree.reset();
            return;
        }
        if (found == device_.vlans.all.end())
            return answering.refuse(unknownVlan(request.vlan_id));
        std::optional<SpanningTree> &tree = found->second.tree;
        if (request.enable != (isRapid ? RSTP_ENABLED : STP_ENABLED))
            return answering.refuse("Error: unknown spanning tree operation\n");
        if (tree && tree->isRapid != isRapid)
            return answering.refuse("Error: VLAN " + std::to_string(request.vlan_id) + " has a " +
                                    kindName(tree->isRapid) + " spanning tree\n");
        if (request.priority_op == kSet && request.priority > kHighestPriority)
            return answering.refuse("Error: the priority of a bridge must be in the range 0..65535\n");
        if (!tree && countTrees() >= kMostTrees)
            return answering.refuse("Error: there is no room for another spanning tree\n");
        if (!tree)
            tree = SpanningTree{isRapid};
        if (request.priority_op == kSet)
            tree->priority = request.priority;
    }

    std::ptrdiff_t countTrees() const
    {
        return std::count_if(device_.vlans.all.begin(), device_.vlans.all.end(),
                             [](const auto &vlan) { return vlan.second.tree.has_value(); });
    }

    // A port or a LAG. Null: refused.
    TreePort *treePort(const char *text, Answering &answering)
    {
        const std::string_view name = text == nullptr ? "" : text;
        if (Port *port = device_.ports.find(name))
            return &port->treePort;
        if (Lag *lag = device_.lags.find(name))
            return &lag->treePort;
        answering.refuse(unknownPort(name));
        return nullptr;
    }

    static void setGuards(TreePort &port, const StpCommonPortConfig &request)
    {
        if (request.root_guard_op == kSet)
            port.hasRootGuard = request.root_guard != 0;
        if (request.bpdu_guard_op == kSet)
            port.hasBpduGuard = request.bpdu_guard_off == 0;
    }

    static void setEdge(TreePort &port, const RstpPortConfig &request)
    {
        if (request.admin_edge_op == kSet)
            port.isEdge = request.admin_edge != 0;
        else if (request.admin_edge_op == kRemove)
            port.isEdge = false;
    }

    Device &device_;
};

} // namespace

std::unique_ptr<Family> makeSpanningTrees(Device &device)
{
    return std::make_unique<SpanningTrees>(device);
}

} // namespace switchsim
