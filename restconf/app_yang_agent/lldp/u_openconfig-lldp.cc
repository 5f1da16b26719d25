#include "lldp/u_openconfig-lldp.h"

#include "backend/lldp.h"
#include "frame/answer.h"
#include "frame/owned.h"
#include "frame/rules.h"
#include "frame/stub.h"

#include <cstdio>

using namespace frame;

USER_UNIT(openconfig_lldp);

STUB_GET(u_openconfig_lldp_lldp_state_get);
STUB_GET(u_openconfig_lldp_lldp_state_counters_get);
STUB_EDIT(u_openconfig_lldp_lldp_interfaces_edit);
STUB_EDIT(u_openconfig_lldp_lldp_interfaces_interface_edit, const char *);
STUB_GET(u_openconfig_lldp_lldp_interfaces_interface_state_get, const char *);
STUB_GET(u_openconfig_lldp_lldp_interfaces_interface_state_counters_get, const char *);
STUB_GET(u_openconfig_lldp_lldp_interfaces_interface_neighbors_get, const char *);
STUB_GET_LIST(u_openconfig_lldp_lldp_interfaces_interface_neighbors_neighbor_get, const char *,
              OwnKey<const char *>);
STUB_GET(u_openconfig_lldp_lldp_interfaces_interface_neighbors_neighbor_config_get, const char *,
         const char *);
STUB_GET(u_openconfig_lldp_lldp_interfaces_interface_neighbors_neighbor_state_get, const char *,
         const char *);
STUB_GET(u_openconfig_lldp_lldp_interfaces_interface_neighbors_neighbor_custom_tlvs_get, const char *,
         const char *);
STUB_GET_LIST(u_openconfig_lldp_lldp_interfaces_interface_neighbors_neighbor_custom_tlvs_tlv_get,
              const char *, const char *, OwnKey<std::int32_t>, OwnKey<const char *>, OwnKey<const char *>);
STUB_GET(u_openconfig_lldp_lldp_interfaces_interface_neighbors_neighbor_custom_tlvs_tlv_config_get,
         const char *, const char *, std::int32_t, const char *, const char *);
STUB_GET(u_openconfig_lldp_lldp_interfaces_interface_neighbors_neighbor_custom_tlvs_tlv_state_get,
         const char *, const char *, std::int32_t, const char *, const char *);
STUB_GET(u_openconfig_lldp_lldp_interfaces_interface_neighbors_neighbor_capabilities_get, const char *,
         const char *);
STUB_GET_LIST(u_openconfig_lldp_lldp_interfaces_interface_neighbors_neighbor_capabilities_capability_get,
              const char *, const char *, OwnKey<const char *>);
STUB_GET(u_openconfig_lldp_lldp_interfaces_interface_neighbors_neighbor_capabilities_capability_config_get,
         const char *, const char *, const char *);
STUB_GET(u_openconfig_lldp_lldp_interfaces_interface_neighbors_neighbor_capabilities_capability_state_get,
         const char *, const char *, const char *);

namespace {

constexpr const char *kModule = "openconfig-lldp";
constexpr std::int32_t kSet = 2, kGet = 5; // operations
constexpr std::int32_t kGiven = 1;         // the field beside it is meant
constexpr std::int32_t kSendFlag = 2;

using GlobalAnswer = Owned<LldpGlobalConfig, lldp_global_config__free_unpacked>;
using PortAnswer = Owned<Lldpcfg__LldpInterfaceConfig, lldpcfg__lldp_interface_config__free_unpacked>;

const Value *find(const Value *config, const char *leaf)
{
    return config ? val_find_child(config, kModule, leaf) : nullptr;
}

// An absent leaf is off.
bool isEnabled(const Value *config)
{
    const Value *enabled = find(config, "enabled");
    return enabled && val_get_boolean(enabled);
}

Status failed(const EditCall &call, int line = __builtin_LINE())
{
    locationLines(call, line);
    return kInternal;
}

// The whole switch

GlobalAnswer sendState(const Value *config)
{
    LldpGlobalConfig request;
    CommonResp response;
    ui_lldp_global_config_init(&request, &response);
    request.operation = kSet;
    request.state_op = kGiven;
    request.has_state = 1;
    request.state = isEnabled(config);
    return GlobalAnswer(ui_fe_lldp_config_apply(&request, kSendFlag));
}

Status applyState(const EditCall &call)
{
    return sendState(call.newval) ? kOk : failed(call);
}

Status putBackState(const EditCall &call)
{
    sendState(call.curval);
    return kOk;
}

Status refuseConfigCreate(const EditCall &call)
{
    if (find(call.newval, "enabled") && logsDebug())
        log_debug("LLDP: Create not allowed.\n");
    return kNotSupported;
}

Status refuseConfigDelete(const EditCall &)
{
    if (logsErrors())
        log_error("LLDP:Delete operation disallowed\n");
    return kNotSupported;
}

constexpr Rule<> kConfigEdit[] = {
    // when, on, act
    {inApply, onMerge | onReplace, applyState},
    {inApply, onCreate, refuseConfigCreate},
    {inApply, onDelete, refuseConfigDelete},
    {inRollback, onMerge | onReplace, putBackState},
};
static_assert(noneHidden(kConfigEdit));

constexpr Rule<> kLldpEdit[] = {
    {inApply, onCreate | onDelete, [](const EditCall &) { return kInternal; }},
};

// Ports

// A port can be configured while LLDP is on for the switch.
Status checkGlobalState(const EditCall &call, const char *)
{
    LldpGlobalConfig query;
    CommonResp response;
    ui_lldp_global_config_init(&query, &response);
    query.operation = kGet;
    const GlobalAnswer answer(ui_fe_lldp_config_apply(&query, kSendFlag));
    if (!answer || !answer->reply || isRefused(answer->reply))
        return failed(call);
    if (answer->state)
        return kOk;
    locationLines(call);
    if (logsErrors())
        log_error("[%s] Error: LLDP is disabled globally.\n", call.function);
    return kInternal;
}

PortAnswer sendPort(const EditCall &call, const char *port)
{
    const Value *config = call.newval ? call.newval : call.curval;
    const Value *name = find(config, "name");
    char key[LLDP_NAME_BYTES], list[LLDP_NAME_BYTES];
    std::snprintf(key, sizeof key, "%s", port);
    std::snprintf(list, sizeof list, "%s", name ? val_get_string(name) : "");
    Lldpcfg__LldpInterfaceConfig request;
    CommonResp response;
    ui_lldp_interface_config_init(&request, &response);
    request.operation = kSet;
    request.interface_name = key;
    request.interface_op = kGiven;
    request.port_list = name ? list : nullptr;
    request.rx = request.tx = isEnabled(config);
    request.rx_op = request.tx_op = kGiven;
    return PortAnswer(ui_lldp_fe_int_config_apply(&request));
}

Status applyPort(const EditCall &call, const char *port)
{
    return sendPort(call, port) ? kOk : failed(call);
}

// What the edit asked for, once more.
Status repeatPort(const EditCall &call, const char *port)
{
    sendPort(call, port);
    return kOk;
}

constexpr Rule<const char *> kPortConfigEdit[] = {
    {inValidate, anyOp, checkGlobalState},
    {inApply, anyOp, applyPort},
    {inRollback, anyOp, repeatPort},
};
static_assert(noneHidden(kPortConfigEdit));

} // namespace

extern "C" Status u_openconfig_lldp_lldp_edit(EDIT_ARGS)
{
    return run(kLldpEdit, EDIT_CALL);
}

extern "C" Status u_openconfig_lldp_lldp_config_edit(EDIT_ARGS)
{
    return run(kConfigEdit, EDIT_CALL);
}

extern "C" Status u_openconfig_lldp_lldp_interfaces_interface_config_edit(EDIT_ARGS, const char *name)
{
    if (!newval && !curval) {
        if (logsErrors())
            log_error("[%s]:[%d] both newval and curval is NULL\n", __func__, __LINE__);
        return kInternal;
    }
    return run(kPortConfigEdit, EDIT_CALL, name);
}
