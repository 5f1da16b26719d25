#include "network_instance/u_openconfig-network-instance.h"

#include "backend/net_text.h"
#include "backend/vlan.h"
#include "frame/owned.h"
#include "frame/rules.h"
#include "frame/stub.h"
#include "vlan/vlan_request.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

using namespace frame;

USER_UNIT(openconfig_network_instance);

STUB_EDIT(u_openconfig_network_instance_network_instances_edit);
STUB_EDIT(u_openconfig_network_instance_network_instances_network_instance_fdb_edit, const char *);
STUB_EDIT(u_openconfig_network_instance_network_instances_network_instance_fdb_config_edit, const char *);
STUB_GET(u_openconfig_network_instance_network_instances_network_instance_fdb_state_get, const char *);
STUB_EDIT(u_openconfig_network_instance_network_instances_network_instance_fdb_mac_table_edit, const char *);
STUB_EDIT(u_openconfig_network_instance_network_instances_network_instance_fdb_mac_table_entries_edit,
          const char *);
STUB_EDIT(
    u_openconfig_network_instance_network_instances_network_instance_fdb_mac_table_entries_entry_config_edit,
    const char *, const char *, std::uint16_t);
STUB_GET(
    u_openconfig_network_instance_network_instances_network_instance_fdb_mac_table_entries_entry_state_get,
    const char *, const char *, std::uint16_t);
STUB_EDIT(
    u_openconfig_network_instance_network_instances_network_instance_fdb_mac_table_entries_entry_interface_edit,
    const char *, const char *, std::uint16_t);
STUB_EDIT(
    u_openconfig_network_instance_network_instances_network_instance_fdb_mac_table_entries_entry_interface_interface_ref_edit,
    const char *, const char *, std::uint16_t);
STUB_GET(
    u_openconfig_network_instance_network_instances_network_instance_fdb_mac_table_entries_entry_interface_interface_ref_state_get,
    const char *, const char *, std::uint16_t);
STUB_EDIT(u_openconfig_network_instance_network_instances_network_instance_config_edit, const char *);
STUB_GET(u_openconfig_network_instance_network_instances_network_instance_state_get, const char *);
STUB_EDIT(u_openconfig_network_instance_network_instances_network_instance_interfaces_edit, const char *);
STUB_EDIT(u_openconfig_network_instance_network_instances_network_instance_interfaces_interface_edit,
          const char *, const char *);
STUB_EDIT(u_openconfig_network_instance_network_instances_network_instance_interfaces_interface_config_edit,
          const char *, const char *);
STUB_GET(u_openconfig_network_instance_network_instances_network_instance_interfaces_interface_state_get,
         const char *, const char *);
STUB_GET(u_openconfig_network_instance_network_instances_network_instance_vlans_vlan_state_get, const char *,
         const char *);
STUB_EDIT(u_openconfig_network_instance_network_instances_network_instance_protocols_edit, const char *);

namespace {

constexpr const char *kModule = "openconfig-network-instance";
constexpr const char *kNoName = "";
constexpr std::size_t kMacText = 18; // bytes of a MAC address as text that are compared
constexpr std::int32_t kStaticAddresses = 3;

const Value *findUsable(const Value *parent, const char *name)
{
    const Value *value = parent ? val_find_child(parent, kModule, name) : nullptr;
    return value && val_get_status(value) == kOk ? value : nullptr;
}

Status refuseInstance(const EditCall &call, const char *)
{
    if (logsErrors())
        log_error("\nError: Trying to %s network instance", call.op == create ? "create" : "delete");
    return recordText(call, kDeviceText, "Error: Network instance creation/deletion not allowed\n");
}

constexpr Rule<const char *> kInstanceEdit[] = {
    {inApply, onCreate | onDelete, refuseInstance},
};

// VLANs

// What the log says of a failed request, by the callback and phase that it belongs to.
void logFailure(const char *trace, int line)
{
    if (!logsErrors())
        return;
    if (trace)
        log_error("%s", trace);
    else
        log_error("\n ERROR: network_instance_config_edit: Send FAIL at line %d", line);
}

// `trace` may be null for the line of the caller.
Status send(const EditCall &call, vlan::Request &request, const char *trace, int line)
{
    CommonResp *answer = nullptr;
    if (ui_restconf_vlan_config_apply_send_cleanup(&request.record, &answer, call.scb, call.msg) == kOk)
        return kOk;
    logFailure(trace, line);
    locationLines(call, line);
    return recordText(call, kInternal, "Error: Clam Call failure\n");
}

vlan::Mask maskOf(const char *vlanId)
{
    vlan::Mask mask;
    mask.set(static_cast<std::uint32_t>(std::strtol(vlanId, nullptr, 10)));
    return mask;
}

Status addVlan(const EditCall &call, const char *vlanId, const char *name, const char *trace,
               int line = __builtin_LINE())
{
    vlan::Request request;
    request.withName();
    vlan_adapter_restconf_to_proto(maskOf(vlanId).data(), vlan::byMask, 0, nullptr, vlan::untagged, 0, name,
                                   0, &request.record);
    return send(call, request, trace, line);
}

Status removeVlan(const EditCall &call, const char *vlanId, const char *trace, int line = __builtin_LINE())
{
    vlan::Request request;
    vlan_adapter_restconf_to_proto(maskOf(vlanId).data(), vlan::byMask, 1, nullptr, vlan::eitherKind, 0,
                                   nullptr, 0, &request.record);
    return send(call, request, trace, line);
}

const char *nameIn(const Value *config)
{
    const Value *name = findUsable(config, "name");
    return name ? val_get_string(name) : kNoName;
}

// The name that a merge leads to, or came from.
const char *mergedName(const EditCall &call, bool isBefore)
{
    const char *name = kNoName;
    const EditOp none = isBefore ? create : del; // the operation that has no name on this side
    walkChildEdits(call, [&](const EditedLeaf &leaf) {
        if (!leaf.is("name"))
            return kOk;
        const Value *value = isBefore ? leaf.curval : leaf.newval;
        name = leaf.op != none && value ? val_get_string(value) : kNoName;
        return kOk;
    });
    return name;
}

Status mergeVlan(const EditCall &call, const char *, const char *vlanId)
{
    return addVlan(call, vlanId, mergedName(call, false), "\n ERROR: Merge Failed!");
}

Status putVlan(const EditCall &call, const char *, const char *vlanId)
{
    return addVlan(call, vlanId, nameIn(call.newval), nullptr);
}

Status deleteVlan(const EditCall &call, const char *, const char *vlanId)
{
    return removeVlan(call, vlanId, nullptr);
}

Status takeBackMerge(const EditCall &call, const char *, const char *vlanId)
{
    return addVlan(call, vlanId, mergedName(call, true), "\n ERROR: Rollback Failed!");
}

constexpr const char *kConfigRollback = "\n ERROR: network_instance_config_edit: Rolback FAIL!";

Status takeBackPut(const EditCall &call, const char *, const char *vlanId)
{
    return removeVlan(call, vlanId, kConfigRollback);
}

Status takeBackDelete(const EditCall &call, const char *, const char *vlanId)
{
    return addVlan(call, vlanId, nameIn(call.curval), kConfigRollback);
}

constexpr Rule<const char *, const char *> kVlanConfigEdit[] = {
    // when      on                     act
    {inApply, onMerge, mergeVlan},
    {inApply, onReplace | onCreate, putVlan},
    {inApply, onDelete, deleteVlan},
    {inRollback, onMerge, takeBackMerge},
    {inRollback, onReplace | onCreate, takeBackPut},
    {inRollback, onDelete, takeBackDelete},
};
static_assert(noneHidden(kVlanConfigEdit));

// The entry's own calls come on top of those of its config, which the device takes as done.
Status deleteEntry(const EditCall &call, const char *, const char *vlanId)
{
    return removeVlan(call, vlanId, "\n ERROR: Operation failed");
}

Status takeBackEntry(const EditCall &call, const char *, const char *vlanId)
{
    const Value *config = findUsable(call.curval, "config");
    return addVlan(call, vlanId, nameIn(config), "\n ERROR: Rolback FAIL!");
}

constexpr Rule<const char *, const char *> kVlanEdit[] = {
    {inApply, onDelete, deleteEntry},
    {inRollback, onDelete, takeBackEntry},
};
static_assert(noneHidden(kVlanEdit));

Status deleteAll(const EditCall &call, const char *)
{
    vlan::Request request;
    vlan_adapter_restconf_to_proto(maskOf("0").data(), vlan::allVlans, 1, nullptr, vlan::eitherKind, 0,
                                   nullptr, 0, &request.record);
    return send(call, request, "\n ERROR: Operation failed", __LINE__);
}

constexpr Rule<const char *> kVlansEdit[] = {
    {inApply, onDelete, deleteAll},
};

// Static MAC addresses

// A VLAN that differs is told as well when the address differs.
Status checkEntry(const EditCall &call, const char *, const char *mac, std::uint16_t vlanId)
{
    Status status = kOk;
    const Value *config = findUsable(call.newval, "config");
    const Value *configMac = findUsable(config, "mac-address"), *configVlan = findUsable(config, "vlan");
    if (configMac && std::strncmp(val_get_string(configMac), mac, kMacText) != 0)
        status = recordText(call, kDeviceText, "Key MAC and config MAC value not matching \n");
    if (configVlan && val_get_uint64(configVlan) != vlanId)
        status = recordText(call, kDeviceText, "Key VLAN and config VLAN value not matching \n");
    return status;
}

constexpr Rule<const char *, const char *, std::uint16_t> kEntryEdit[] = {
    {inApply, onMerge | onCreate, checkEntry},
};

// A request about one address with what it points to. Not to be copied.
struct MacRequest {
    MacConfigReq record;
    bool isGood = false;

    MacRequest(const char *mac, std::uint16_t vlanId, const char *interface, int operation)
    {
        isGood = mac_config_req_proto_init(&record, &storage_, kStaticAddresses) != 0;
        if (!isGood)
            return;
        record.n_entries = 1;
        string_to_mac_addr_form(mac, mac_);
        ui_vlan_type_init(&type_);
        type_.kind = VLAN_KIND_SINGLE;
        type_.id = vlanId;
        const std::size_t length = std::min(std::strlen(interface), sizeof port_ - 1);
        std::memcpy(port_, interface, length);
        MacConfigEntry &entry = storage_.entry;
        entry.mac_op = entry.vlan_op = entry.port_op = operation;
        entry.mac_address = {sizeof mac_, mac_};
        entry.vlan_type = &type_;
        entry.port = port_;
        entry.entry_flag = 1;
    }
    MacRequest(const MacRequest &) = delete;
    MacRequest &operator=(const MacRequest &) = delete;

private:
    mac_config_storage storage_;
    VlanType type_;
    std::uint8_t mac_[6];
    char port_[VLAN_PORTS_BYTES] = {};
};

using MacAnswer = Owned<CommonResp, common_resp__free_unpacked>;

Status recordAnswer(const EditCall &call, const CommonResp &answer)
{
    return recordText(call, kDeviceText, answer.reply_buf ? answer.reply_buf : "");
}

Status addMac(const EditCall &call, const char *, const char *mac, std::uint16_t vlanId)
{
    const Value *interface = findUsable(call.newval, "interface");
    if (!interface)
        return kOk;
    MacRequest request(mac, vlanId, val_get_string(interface), vlan::kAdd);
    if (!request.isGood)
        return INTERNAL_ERROR();
    MacAnswer answer;
    const Status status = ui_mac_config_apply(&request.record, answer.slot()) ? kInternal : kOk;
    if (!answer || answer->ui_err != 1)
        return status;
    locationLines(call);
    return recordAnswer(call, *answer);
}

Status removeMac(const EditCall &call, const char *, const char *mac, std::uint16_t vlanId)
{
    const Value *interface = findUsable(call.curval, "interface");
    if (!interface)
        return kOk;
    MacRequest request(mac, vlanId, val_get_string(interface), vlan::kRemove);
    if (!request.isGood)
        return INTERNAL_ERROR();
    MacAnswer answer;
    if (ui_mac_config_apply(&request.record, answer.slot()) == 0)
        return kOk;
    if (answer)
        return recordAnswer(call, *answer);
    locationLines(call);
    return kInternal;
}

constexpr Rule<const char *, const char *, std::uint16_t> kInterfaceRefEdit[] = {
    // A replacement changes nothing on the device.
    {inApply, onMerge | onCreate, addMac},
    {inApply, onDelete, removeMac},
};
static_assert(noneHidden(kInterfaceRefEdit));

} // namespace

extern "C" {

Status u_openconfig_network_instance_network_instances_network_instance_edit(EDIT_ARGS, const char *instance)
{
    return run(kInstanceEdit, EDIT_CALL, instance);
}

Status u_openconfig_network_instance_network_instances_network_instance_vlans_edit(EDIT_ARGS,
                                                                                   const char *instance)
{
    return run(kVlansEdit, EDIT_CALL, instance);
}

Status u_openconfig_network_instance_network_instances_network_instance_vlans_vlan_edit(EDIT_ARGS,
                                                                                        const char *instance,
                                                                                        const char *vlanId)
{
    return run(kVlanEdit, EDIT_CALL, instance, vlanId);
}

Status u_openconfig_network_instance_network_instances_network_instance_vlans_vlan_config_edit(
    EDIT_ARGS, const char *instance, const char *vlanId)
{
    return run(kVlanConfigEdit, EDIT_CALL, instance, vlanId);
}

Status u_openconfig_network_instance_network_instances_network_instance_fdb_mac_table_entries_entry_edit(
    EDIT_ARGS, const char *instance, const char *mac, std::uint16_t vlan)
{
    return run(kEntryEdit, EDIT_CALL, instance, mac, vlan);
}

Status
u_openconfig_network_instance_network_instances_network_instance_fdb_mac_table_entries_entry_interface_interface_ref_config_edit(
    EDIT_ARGS, const char *instance, const char *mac, std::uint16_t vlan)
{
    return run(kInterfaceRefEdit, EDIT_CALL, instance, mac, vlan);
}

} // extern "C"
