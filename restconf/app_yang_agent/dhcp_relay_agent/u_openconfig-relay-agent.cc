#include "dhcp_relay_agent/u_openconfig-relay-agent.h"

#include "backend/ip_interface.h"
#include "backend/net_text.h"
#include "frame/answer.h"
#include "frame/owned.h"
#include "frame/rules.h"
#include "frame/stub.h"
#include "frame/unit.h"

using namespace frame;

USER_UNIT(openconfig_relay_agent);

STUB_EDIT(u_openconfig_relay_agent_relay_agent_edit);
STUB_EDIT(u_openconfig_relay_agent_relay_agent_dhcp_edit);
STUB_EDIT(u_openconfig_relay_agent_relay_agent_dhcp_config_edit);
STUB_GET(u_openconfig_relay_agent_relay_agent_dhcp_state_get);
STUB_EDIT(u_openconfig_relay_agent_relay_agent_dhcp_agent_information_option_edit);
STUB_EDIT(u_openconfig_relay_agent_relay_agent_dhcp_agent_information_option_config_edit);
STUB_GET(u_openconfig_relay_agent_relay_agent_dhcp_agent_information_option_state_get);
STUB_EDIT(u_openconfig_relay_agent_relay_agent_dhcp_interfaces_edit);
STUB_EDIT(u_openconfig_relay_agent_relay_agent_dhcp_interfaces_interface_edit, const char *);
STUB_GET(u_openconfig_relay_agent_relay_agent_dhcp_interfaces_interface_state_get, const char *);
STUB_GET(u_openconfig_relay_agent_relay_agent_dhcp_interfaces_interface_state_counters_get, const char *);
STUB_EDIT(u_openconfig_relay_agent_relay_agent_dhcp_interfaces_interface_interface_ref_edit, const char *);
STUB_EDIT(u_openconfig_relay_agent_relay_agent_dhcp_interfaces_interface_interface_ref_config_edit,
          const char *);
STUB_GET(u_openconfig_relay_agent_relay_agent_dhcp_interfaces_interface_interface_ref_state_get,
         const char *);
STUB_EDIT(u_openconfig_relay_agent_relay_agent_dhcp_interfaces_interface_agent_information_option_edit,
          const char *);
STUB_EDIT(u_openconfig_relay_agent_relay_agent_dhcp_interfaces_interface_agent_information_option_config_edit,
          const char *);
STUB_GET(u_openconfig_relay_agent_relay_agent_dhcp_interfaces_interface_agent_information_option_state_get,
         const char *);
STUB_EDIT(u_openconfig_relay_agent_relay_agent_dhcpv6_edit);
STUB_EDIT(u_openconfig_relay_agent_relay_agent_dhcpv6_config_edit);
STUB_GET(u_openconfig_relay_agent_relay_agent_dhcpv6_state_get);
STUB_EDIT(u_openconfig_relay_agent_relay_agent_dhcpv6_options_edit);
STUB_EDIT(u_openconfig_relay_agent_relay_agent_dhcpv6_options_config_edit);
STUB_GET(u_openconfig_relay_agent_relay_agent_dhcpv6_options_state_get);
STUB_EDIT(u_openconfig_relay_agent_relay_agent_dhcpv6_interfaces_edit);
STUB_EDIT(u_openconfig_relay_agent_relay_agent_dhcpv6_interfaces_interface_edit, const char *);
STUB_EDIT(u_openconfig_relay_agent_relay_agent_dhcpv6_interfaces_interface_config_edit, const char *);
STUB_GET(u_openconfig_relay_agent_relay_agent_dhcpv6_interfaces_interface_state_get, const char *);
STUB_GET(u_openconfig_relay_agent_relay_agent_dhcpv6_interfaces_interface_state_counters_get, const char *);
STUB_EDIT(u_openconfig_relay_agent_relay_agent_dhcpv6_interfaces_interface_interface_ref_edit, const char *);
STUB_EDIT(u_openconfig_relay_agent_relay_agent_dhcpv6_interfaces_interface_interface_ref_config_edit,
          const char *);
STUB_GET(u_openconfig_relay_agent_relay_agent_dhcpv6_interfaces_interface_interface_ref_state_get,
         const char *);
STUB_EDIT(u_openconfig_relay_agent_relay_agent_dhcpv6_interfaces_interface_options_edit, const char *);
STUB_EDIT(u_openconfig_relay_agent_relay_agent_dhcpv6_interfaces_interface_options_config_edit, const char *);
STUB_GET(u_openconfig_relay_agent_relay_agent_dhcpv6_interfaces_interface_options_state_get, const char *);

namespace {

constexpr const char *kModule = "openconfig-relay-agent", *kHelper = "helper-address";
constexpr std::int32_t kAdd = 1, kRemove = 3;

using Answer = Owned<CommonResp, common_resp__free_unpacked>;

Status fail(const EditCall &call, int line = __builtin_LINE())
{
    locationLines(call, line);
    return kInternal;
}

// kDeviceText: the switch turned this one down.
Status send(const EditCall &call, const char *id, const Value *helper, std::int32_t operation)
{
    Ip__Interface__Config request = IP__INTERFACE__CONFIG__INIT;
    request.name = const_cast<char *>(id); // borrowed; nothing writes to it
    request.has_helper_flag = request.has_helper_op = request.has_address = 1;
    request.helper_flag = 1;
    request.helper_op = operation;
    if (!ip_string_to_address(val_get_string(helper), &request.address))
        return recordText(call, kInvalidValue, "ipv4 address is not valid");
    Answer answer;
    if (ui_ip_interface_config(&request, answer.slot()) == 0)
        return kOk;
    locationLines(call);
    if (!answer)
        return kInternal;
    return recordText(call, kDeviceText, answer->reply_buf ? answer->reply_buf : "");
}

// Where the client names the addresses one by one, an empty one has words of its own.
Status sendChecked(const EditCall &call, const char *id, const Value *helper, std::int32_t operation)
{
    const char *text = val_get_string(helper);
    if (!text || !*text)
        return recordText(call, kMissingInput, "helper address is empty\n");
    return send(call, id, helper, operation);
}

template <class Act>
Status forEachHelper(const Value *config, Act act)
{
    for (const Value *helper = val_find_child(config, kModule, kHelper); helper;
         helper = val_find_next_child(config, kModule, kHelper, helper))
        if (const Status status = act(helper))
            return status;
    return kOk;
}

// One that the switch turns down does not keep the others from being sent.
class GoingOn {
public:
    Status after(Status status)
    {
        if (status != kDeviceText)
            return status;
        ended_ = status;
        return kOk;
    }
    Status end(Status status) const { return status ? status : ended_; }

private:
    Status ended_ = kOk;
};

Status mergeHelpers(const EditCall &call, const char *id)
{
    GoingOn course;
    return course.end(walkChildEdits(call, [&](const EditedLeaf &leaf) -> Status {
        if (!leaf.is(kHelper))
            return kOk;
        if (leaf.op != create && leaf.op != del)
            return kNotSupported;
        const Value *helper = leaf.newval ? leaf.newval : leaf.curval;
        return course.after(sendChecked(call, id, helper, leaf.op == create ? kAdd : kRemove));
    }));
}

Status addHelpers(const EditCall &call, const char *id)
{
    if (!call.newval)
        return fail(call);
    GoingOn course;
    return course.end(forEachHelper(
        call.newval, [&](const Value *helper) { return course.after(sendChecked(call, id, helper, kAdd)); }));
}

Status removeHelpers(const EditCall &call, const char *id)
{
    if (!call.curval)
        return fail(call);
    GoingOn course;
    return course.end(forEachHelper(
        call.curval, [&](const Value *helper) { return course.after(send(call, id, helper, kRemove)); }));
}

// All the old ones go, also those that are in both.
Status replaceHelpers(const EditCall &call, const char *id)
{
    if (!call.newval || !call.curval)
        return fail(call);
    const auto sendAll = [&](const Value *config, std::int32_t operation) {
        return forEachHelper(config, [&](const Value *helper) { return send(call, id, helper, operation); });
    };
    const Status status = sendAll(call.curval, kRemove);
    return status ? status : sendAll(call.newval, kAdd);
}

Status cannotOccur(const EditCall &, const char *)
{
    return INTERNAL_ERROR();
}

constexpr Rule<const char *> kHelperEdit[] = {
    // when, on, act
    {inApply, onMerge, mergeHelpers},     {inApply, onCreate, addHelpers}, {inApply, onDelete, removeHelpers},
    {inApply, onReplace, replaceHelpers}, {inApply, onLoad, cannotOccur},
};
static_assert(noneHidden(kHelperEdit));

} // namespace

extern "C" Status u_openconfig_relay_agent_relay_agent_dhcp_interfaces_interface_config_edit(EDIT_ARGS,
                                                                                             const char *id)
{
    return run(kHelperEdit, EDIT_CALL, id);
}
