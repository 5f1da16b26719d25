#include "xstp/u_openconfig-spanning-tree.h"

#include "frame/rules.h"
#include "frame/stub.h"
#include "frame/wait.h"
#include "xstp/vlan_tree.h"

#include <algorithm>
#include <iterator>
#include <optional>

using namespace frame;
using namespace xstp;

USER_UNIT(openconfig_spanning_tree);

STUB_EDIT(u_openconfig_spanning_tree_stp_edit);
STUB_EDIT(u_openconfig_spanning_tree_stp_rapid_pvst_edit);
STUB_GET(u_openconfig_spanning_tree_stp_rapid_pvst_vlan_state_get, const char *);
STUB_EDIT(u_openconfig_spanning_tree_stp_interfaces_edit);
STUB_EDIT(u_openconfig_spanning_tree_stp_interfaces_interface_edit, const char *);
STUB_GET(u_openconfig_spanning_tree_stp_interfaces_interface_state_get, const char *);

namespace {

constexpr const char *kModule = "openconfig-spanning-tree";
constexpr unsigned kSettleSeconds = 3; // the device needs them to take a rapid tree down

constexpr Kind<RstpConfig> kRapid{kModule, "bridge-priority", rstp_config__init, ui_rstp_config_apply,
                                  RSTP_ENABLED};

Status turnOn(const EditCall &call, const char *)
{
    return kRapid.sendConfig(call);
}

Status turnOff(const EditCall &call, const char *vlanId)
{
    const Status status = kRapid.sendRemoval(call, vlanId);
    waitSeconds(kSettleSeconds);
    return status;
}

constexpr Rule<const char *> kVlanEdit[] = {
    {inApply, onDelete, turnOff},
};
constexpr Rule<const char *> kVlanConfigEdit[] = {
    {inApply, onMerge | onCreate, turnOn},
};

// Ports

template <class Record>
Status send(const EditCall &call, Record &request, int (*apply)(Record *, CommonResp **))
{
    Answer answer;
    const int result = apply(&request, answer.slot());
    return readAnswer(call, result, answer);
}

// On or off; nothing for a word that the device lacks. Without a value the setting goes, which is off.
std::optional<bool> stateOf(const Value *value, const char *on, const char *off)
{
    const char *word = value ? val_get_string(value) : off;
    const bool isOn = xml_strcmp(word, on) == 0;
    return isOn || xml_strcmp(word, off) == 0 ? std::optional(isOn) : std::nullopt;
}

// The senders of a port's settings, removed where the value is null. One that is neither on nor off makes a
// request that says nothing.

Status sendBpduGuard(const EditCall &call, const char *port, const Value *value)
{
    StpCommonPortConfig request = STP_COMMON_PORT_CONFIG__INIT;
    request.name = const_cast<char *>(port); // borrowed; nothing writes to it
    request.bpdu_guard_op = kSet;
    request.has_bpdu_guard_off = 1;
    request.bpdu_guard_off = !value || !val_get_boolean(value);
    return send(call, request, ui_stp_common_port_config_apply);
}

Status sendGuard(const EditCall &call, const char *port, const Value *value)
{
    StpCommonPortConfig request = STP_COMMON_PORT_CONFIG__INIT;
    request.name = const_cast<char *>(port);
    const auto isOn = stateOf(value, "ROOT", "NONE");
    request.root_guard_op = isOn ? kSet : 0;
    request.has_root_guard = isOn.has_value();
    request.root_guard = isOn.value_or(false);
    return send(call, request, ui_stp_common_port_config_apply);
}

Status sendEdgePort(const EditCall &call, const char *port, const Value *value)
{
    RstpPortConfig request = RSTP_PORT_CONFIG__INIT;
    request.name = const_cast<char *>(port);
    const auto isOn = stateOf(value, "EDGE_ENABLE", "EDGE_DISABLE");
    request.admin_edge_op = !isOn ? 0 : *isOn ? kSet : kRemove;
    request.has_admin_edge = isOn.has_value();
    request.admin_edge = isOn.value_or(false);
    return send(call, request, ui_rstp_port_config_apply);
}

struct Setting {
    const char *leaf;
    Status (*send)(const EditCall &call, const char *port, const Value *value);
};
// In the order in which they go out.
constexpr Setting kSettings[] = {
    {"bpdu-guard", sendBpduGuard},
    {"guard", sendGuard},
    {"edge-port", sendEdgePort},
};

void keepFailure(Status &kept, Status status)
{
    if (status != kOk)
        kept = status;
}

// All settings of a container; either with their values or to be removed.
Status sendAll(const EditCall &call, const char *port, const Value *config, bool isRemoval)
{
    Status status = kOk;
    for (const Setting &setting : kSettings) {
        const Value *value = val_find_child(config, kModule, setting.leaf);
        if (value && val_get_status(value) == kOk)
            keepFailure(status, setting.send(call, port, isRemoval ? nullptr : value));
    }
    return status;
}

Status createSettings(const EditCall &call, const char *port)
{
    return sendAll(call, port, call.newval, false);
}

Status removeSettings(const EditCall &call, const char *port)
{
    return sendAll(call, port, call.curval, true);
}

Status mergeSettings(const EditCall &call, const char *port)
{
    struct Change {
        bool isThere = false;
        const Value *value = nullptr;
    } changes[std::size(kSettings)];
    walkChildEdits(call, [&](const EditedLeaf &leaf) {
        const auto *setting = std::find_if(std::begin(kSettings), std::end(kSettings),
                                           [&](const Setting &known) { return leaf.is(known.leaf); });
        if (setting == std::end(kSettings))
            return kOk;
        Change &change = changes[setting - std::begin(kSettings)];
        if (leaf.op == del && leaf.curval)
            change = {true, nullptr};
        else if (onWrite.has(leaf.op) && leaf.newval)
            change = {true, leaf.newval};
        return kOk;
    });
    Status status = kOk;
    for (std::size_t i = 0; i < std::size(kSettings); ++i)
        if (changes[i].isThere)
            keepFailure(status, kSettings[i].send(call, port, changes[i].value));
    return status;
}

constexpr Rule<const char *> kPortConfigEdit[] = {
    {inApply, onMerge, mergeSettings},
    {inApply, onCreate, createSettings},
    {inApply, onDelete, removeSettings},
};
static_assert(noneHidden(kPortConfigEdit));

} // namespace

extern "C" Status u_openconfig_spanning_tree_stp_rapid_pvst_vlan_edit(EDIT_ARGS, const char *vlanId)
{
    return run(kVlanEdit, EDIT_CALL, vlanId);
}

extern "C" Status u_openconfig_spanning_tree_stp_rapid_pvst_vlan_config_edit(EDIT_ARGS, const char *vlanId)
{
    return run(kVlanConfigEdit, EDIT_CALL, vlanId);
}

extern "C" Status u_openconfig_spanning_tree_stp_interfaces_interface_config_edit(EDIT_ARGS, const char *name)
{
    return run(kPortConfigEdit, EDIT_CALL, name);
}
