#include "backend/mcast_snoop.h"
#include "switchsim/family.h"

namespace switchsim {
namespace {

constexpr std::int32_t kHighestMode = 2;
constexpr std::uint32_t kHighestVersion = 3;
constexpr std::uint32_t kDefaultVersion = 2;

class McastSnooping : public Family {
public:
    explicit McastSnooping(Device &device)
        : device_(device)
    {
    }

    std::string_view word() const override { return "mcast-snooping"; }

    void registerCalls(CallTable &calls) override
    {
        calls.on<McastSnoopGlobalConfig, CommonResp>(
            "mcast_snoop_global_config_apply", mcast_snoop_global_config__descriptor, common_resp__descriptor,
            [this](const auto &request, auto &, auto &answering) { change(global_, request, answering); });
        calls.on<McastSnoopVlanConfig, CommonResp>(
            "mcast_snoop_vlan_config_apply", mcast_snoop_vlan_config__descriptor, common_resp__descriptor,
            [this](const auto &request, auto &, auto &answering) { changeVlan(request, answering); });
        calls.on<McastSnoopVlanOperReq, McastSnoopVlanOper>(
            "mcast_snoop_vlan_oper_fe_get", mcast_snoop_vlan_oper_req__descriptor,
            mcast_snoop_vlan_oper__descriptor,
            [this](const auto &request, auto &answer, auto &) { describe(request, answer); });
    }

    Json show() const override
    {
        Json vlans = Json::object();
        for (const auto &[id, vlan] : device_.vlans.all)
            if (vlan.snooping != Snooping{})
                vlans[std::to_string(id)] = asJson(vlan.snooping);
        return {{"global", asJson(global_)}, {"vlans", vlans}};
    }

private:
    static Json asJson(const Snooping &snooping)
    {
        return {{"mode", snooping.mode}, {"version", snooping.version}};
    }

    // A VLAN that is gone has nothing to remove.
    void changeVlan(const McastSnoopVlanConfig &request, Answering &answering)
    {
        const auto found = device_.vlans.all.find(request.vlan_id);
        const bool sets = request.mode_op == MCAST_SNOOP_SET || request.version_op == MCAST_SNOOP_SET;
        if (found != device_.vlans.all.end())
            change(found->second.snooping, request, answering);
        else if (sets)
            answering.refuse(unknownVlan(request.vlan_id));
    }

    template <class Request>
    static void change(Snooping &snooping, const Request &request, Answering &answering)
    {
        const bool setsMode = request.mode_op == MCAST_SNOOP_SET;
        const bool setsVersion = request.version_op == MCAST_SNOOP_SET;
        if (request.afi != MCAST_SNOOP_IGMP ||
            (setsMode && (request.mode < 0 || request.mode > kHighestMode)))
            return answering.refuse("Error: unknown multicast snooping setting\n");
        if (setsVersion && (request.version == 0 || request.version > kHighestVersion))
            return answering.refuse("Error: the version of IGMP must be in the range 1..3\n");
        if (request.mode_op != 0)
            snooping.mode = setsMode ? request.mode : 0;
        if (request.version_op != 0)
            snooping.version = setsVersion ? request.version : 0;
    }

    // A VLAN does what is set for it, else what is set for all. One that is not there does nothing.
    void describe(const McastSnoopVlanOperReq &request, McastSnoopVlanOper &answer) const
    {
        answer.afi = static_cast<std::uint32_t>(request.afi);
        answer.vlan_id = request.vlan_id;
        const auto found = device_.vlans.all.find(request.vlan_id);
        if (found == device_.vlans.all.end())
            return;
        const Snooping &own = found->second.snooping;
        answer.oper_mode = static_cast<std::uint32_t>(own.mode != 0 ? own.mode : global_.mode);
        answer.oper_version = own.version != 0 ? own.version
            : global_.version != 0             ? global_.version
                                               : kDefaultVersion;
    }

    Device &device_;
    Snooping global_;
};

} // namespace

std::unique_ptr<Family> makeMcastSnooping(Device &device)
{
    return std::make_unique<McastSnooping>(device);
}

} // namespace switchsim
