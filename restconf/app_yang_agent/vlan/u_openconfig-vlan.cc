#include "vlan/u_openconfig-vlan.h"

#include "frame/rules.h"
#include "frame/stub.h"
#include "frame/wait.h"
#include "vlan/vlan_request.h"

#include <cstdlib>
#include <cstring>

using namespace frame;
using namespace vlan;

USER_UNIT(openconfig_vlan);

STUB_GET(u_openconfig_vlan_interfaces_interface_ethernet_switched_vlan_state_get, const char *);
STUB_EDIT(u_openconfig_vlan_interfaces_interface_aggregation_switched_vlan_edit, const char *);
STUB_GET(u_openconfig_vlan_interfaces_interface_aggregation_switched_vlan_state_get, const char *);
STUB_EDIT(u_openconfig_vlan_interfaces_interface_routed_vlan_edit, const char *);
STUB_EDIT(u_openconfig_vlan_interfaces_interface_routed_vlan_config_edit, const char *);

namespace {

constexpr const char *kModule = "openconfig-vlan";
constexpr unsigned kSettleSeconds = 3; // the device needs them when a port leaves its access VLAN

// Ports and LAGs differ in little.
struct Anchor {
    bool accessByMask; // else the access VLAN stands in the request as a single one
    bool checksTrunks; // VLANs that cannot be are told to the client
};
constexpr Anchor kEthernet{true, true}, kAggregate{false, false};

struct Range {
    long first, last;
    bool isGood() const { return first >= 1 && first <= last && last <= long{Mask::kHighest}; }
};

// A VLAN, or a range "10..20".
Range rangeOf(const Value *value)
{
    if (val_get_btyp(value) != btString) {
        const auto vlan = static_cast<long>(val_get_uint64(value));
        return {vlan, vlan};
    }
    const char *text = val_get_string(value);
    char *end = nullptr;
    const long first = std::strtol(text, &end, 10);
    return {first, std::strncmp(end, "..", 2) == 0 ? std::strtol(end + 2, nullptr, 10) : first};
}

// False, with nothing added, when there is no such VLAN.
bool add(Mask &mask, const Value *value)
{
    const Range range = rangeOf(value);
    if (!range.isGood())
        return false;
    for (long vlan = range.first; vlan <= range.last; ++vlan)
        mask.set(static_cast<std::uint32_t>(vlan));
    return true;
}

const Value *findUsable(const Value *config, const char *leaf)
{
    const Value *value = config ? val_find_child(config, kModule, leaf) : nullptr;
    return value && val_get_status(value) == kOk ? value : nullptr;
}

// Calls act(value) for each trunk VLAN of a container, which may be null.
template <class Act>
void forTrunks(const Value *config, Act act)
{
    const Value *value = config ? val_find_child(config, kModule, "trunk-vlans") : nullptr;
    for (; value; value = val_find_next_child(config, kModule, "trunk-vlans", value))
        act(value);
}

Mask trunksOf(const Value *config)
{
    Mask mask;
    forTrunks(config, [&mask](const Value *value) { add(mask, value); });
    return mask;
}

Status send(const EditCall &call, vlan::Request &request, int line = __builtin_LINE())
{
    CommonResp *answer = nullptr;
    if (ui_restconf_vlan_config_apply_send_cleanup(&request.record, &answer, call.scb, call.msg) == kOk)
        return kOk;
    if (logsErrors())
        log_error("\n ERROR: switched_vlan_config_edit: Send FAIL at line %d", line);
    locationLines(call, line);
    return kInternal;
}

// Puts the port into the VLANs of the mask, or takes it out.
Status sendMembers(const EditCall &call, const char *name, const Mask &mask, PortKind kind, bool leaves)
{
    vlan::Request request;
    vlan_adapter_restconf_to_proto(mask.data(), byMask, 0, name, kind, leaves, nullptr, 0, &request.record);
    return send(call, request);
}

Status sendAccess(const EditCall &call, const Anchor &anchor, const char *name, const Value *value,
                  bool leaves)
{
    Mask mask;
    if (anchor.accessByMask) {
        add(mask, value);
        return sendMembers(call, name, mask, untagged, leaves);
    }
    vlan::Request request;
    request.select(static_cast<std::uint32_t>(val_get_uint64(value)));
    vlan_adapter_restconf_to_proto(mask.data(), bySingle, 0, name, untagged, leaves, nullptr, 0,
                                   &request.record);
    return send(call, request);
}

// Takes the port out of all VLANs of a container, whichever way it was a member.
Status sendLeaveAll(const EditCall &call, const char *name, const Value *config)
{
    Mask mask = trunksOf(config);
    if (const Value *access = findUsable(config, "access-vlan"))
        add(mask, access);
    vlan::Request request;
    vlan_adapter_restconf_to_proto(mask.data(), byMask, 1, name, eitherKind, 1, nullptr, 1, &request.record);
    return send(call, request);
}

void refuseTrunk(const EditCall &call, Status &status)
{
    status = recordText(call, kInternal, "Error : The trunk vlan list is empty ");
}

// A trunk VLAN that cannot be does not keep the others from being sent.
void addTrunk(const EditCall &call, const Anchor &anchor, Mask &mask, const Value *value, Status &status)
{
    if (!add(mask, value) && anchor.checksTrunks)
        refuseTrunk(call, status);
}

Status createMembers(const EditCall &call, const Anchor &anchor, const char *name)
{
    Status status = kOk;
    if (const Value *access = findUsable(call.newval, "access-vlan"))
        status = sendAccess(call, anchor, name, access, false);
    Mask trunks;
    forTrunks(call.newval, [&](const Value *value) { addTrunk(call, anchor, trunks, value, status); });
    if (trunks.any() && sendMembers(call, name, trunks, tagged, false))
        status = kInternal;
    return status;
}

Status mergeAccess(const EditCall &call, const Anchor &anchor, const char *name)
{
    const Value *access = nullptr;
    bool leaves = false;
    walkChildEdits(call, [&](const EditedLeaf &leaf) {
        if (!leaf.is("access-vlan"))
            return kOk;
        if (leaf.op == del && leaf.curval) {
            access = leaf.curval;
            leaves = true;
        } else if ((leaf.op == merge || leaf.op == create) && leaf.newval) {
            access = leaf.newval;
        }
        return kOk;
    });
    return access ? sendAccess(call, anchor, name, access, leaves) : kOk;
}

// What goes and what comes are two requests: one has room for one direction only.
Status mergeTrunks(const EditCall &call, const Anchor &anchor, const char *name)
{
    Status status = kOk;
    Mask gone, come;
    walkChildEdits(call, [&](const EditedLeaf &leaf) {
        if (!leaf.is("trunk-vlans"))
            return kOk;
        if (leaf.op == del && leaf.curval)
            add(gone, leaf.curval);
        else if (leaf.newval)
            addTrunk(call, anchor, come, leaf.newval, status);
        return kOk;
    });
    if (gone.any() && sendMembers(call, name, gone, tagged, true))
        status = kInternal;
    if (come.any() && sendMembers(call, name, come, tagged, false))
        status = kInternal;
    return status;
}

Status mergeMembers(const EditCall &call, const Anchor &anchor, const char *name)
{
    const Status access = mergeAccess(call, anchor, name), trunks = mergeTrunks(call, anchor, name);
    return access ? access : trunks;
}

Status replaceMembers(const EditCall &call, const Anchor &anchor, const char *name)
{
    Status status = kOk;
    if (const Value *access = findUsable(call.newval, "access-vlan"))
        status = sendAccess(call, anchor, name, access, false);
    else if (const Value *old = findUsable(call.curval, "access-vlan"))
        status = sendAccess(call, anchor, name, old, true);
    const Mask gone = trunksOf(call.curval), come = trunksOf(call.newval);
    if (gone.any() && sendMembers(call, name, gone, tagged, true))
        status = kInternal;
    if (come.any() && sendMembers(call, name, come, tagged, false))
        status = kInternal;
    return status;
}

Status deleteMembers(const EditCall &call, const Anchor &anchor, const char *name)
{
    if (&anchor == &kAggregate)
        return kOk;
    const Status status = sendLeaveAll(call, name, call.curval);
    if (findUsable(call.curval, "access-vlan"))
        waitSeconds(kSettleSeconds);
    return status;
}

Status takeBack(const EditCall &call, const Anchor &, const char *name)
{
    return call.newval ? sendLeaveAll(call, name, call.newval) : kOk;
}

constexpr Rule<const Anchor &, const char *> kConfigEdit[] = {
    // when     on                 act
    {inApply, onCreate, createMembers},   {inApply, onMerge, mergeMembers},
    {inApply, onReplace, replaceMembers}, {inApply, onDelete, deleteMembers},
    {inRollback, anyOp, takeBack},
};
static_assert(noneHidden(kConfigEdit));

// Also after the deletion of the config below, which the device takes as done.
Status leaveAll(const EditCall &call, const char *name)
{
    const Value *config = val_find_child(call.curval, kModule, "config");
    return config ? sendLeaveAll(call, name, config) : kOk;
}

constexpr Rule<const char *> kSwitchedVlanEdit[] = {
    {inApply, onDelete, leaveAll},
};

} // namespace

extern "C" Status u_openconfig_vlan_interfaces_interface_ethernet_switched_vlan_edit(EDIT_ARGS,
                                                                                     const char *name)
{
    return run(kSwitchedVlanEdit, EDIT_CALL, name);
}

extern "C" Status u_openconfig_vlan_interfaces_interface_ethernet_switched_vlan_config_edit(EDIT_ARGS,
                                                                                            const char *name)
{
    return run(kConfigEdit, EDIT_CALL, kEthernet, name);
}

extern "C" Status
u_openconfig_vlan_interfaces_interface_aggregation_switched_vlan_config_edit(EDIT_ARGS, const char *name)
{
    return run(kConfigEdit, EDIT_CALL, kAggregate, name);
}
