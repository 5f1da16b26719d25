#include "dhcp/u_lyn-openconfig-dhcp-server.h"

#include "backend/net_text.h"
#include "backend/platform.h"
#include "dhcp/pool_request.h"
#include "frame/rules.h"
#include "frame/stub.h"

#include <cstring>

using namespace frame;

USER_UNIT(lyn_openconfig_dhcp_server);

STUB_EDIT(u_lyn_openconfig_dhcp_server_dhcp_server_edit);
STUB_EDIT(u_lyn_openconfig_dhcp_server_config_edit);
STUB_EDIT(u_lyn_openconfig_dhcp_server_static_allocation_edit, const char *, const char *);
STUB_EDIT(u_lyn_openconfig_dhcp_server_option_edit, const char *);
STUB_EDIT(u_lyn_openconfig_dhcp_server_ip_telephony_edit, const char *);
STUB_EDIT(u_lyn_openconfig_dhcp_server_data_edit, const char *);
STUB_EDIT(u_lyn_openconfig_dhcp_server_voice_edit, const char *);
STUB_EDIT(u_lyn_openconfig_dhcp_server_ipv6_config_edit);
STUB_EDIT(u_lyn_openconfig_dhcp_server_dhcpv6_pool_edit, const char *);
STUB_GET(u_lyn_openconfig_dhcp_server_state_get);
STUB_GET(u_lyn_openconfig_dhcp_server_ipv4_state_get);
STUB_GET(u_lyn_openconfig_dhcp_server_ipv6_state_get);
STUB_GET_LIST(u_lyn_openconfig_dhcp_server_dhcpv4_pool_get, OwnKey<const char *>);
STUB_GET_LIST(u_lyn_openconfig_dhcp_server_dhcpv6_pool_get, OwnKey<const char *>);

namespace {

using namespace dhcp;

const Value *find(const Value *node, const char *leaf)
{
    return node ? val_find_child(node, kModule, leaf) : nullptr;
}

std::uint32_t numberOf(const Value *node, const char *leaf)
{
    const Value *value = find(node, leaf);
    return value ? static_cast<std::uint32_t>(val_get_uint64(value)) : 0;
}

// The server's switch

Status refuseBesideClient(const EditCall &call)
{
    return refuse(
        call,
        "[%s]: Dhcp server ipv4 config enable Error: cannot enable this feature while the DHCP-Client is "
        "enabled",
        "Error: cannot enable this feature while the DHCP-Client is enabled");
}

// A merge of `enable`: whether its leaf goes, and whether it may come.
Status lookAtChildren(const EditCall &call, bool &isDeleted)
{
    return walkChildEdits(call, [&](const EditedLeaf &leaf) -> Status {
        if (!leaf.is("enable"))
            return kOk;
        isDeleted = leaf.op == del;
        const bool comesOn = leaf.op == create && leaf.newval && val_get_boolean(leaf.newval);
        return call.phase == validate && comesOn && is_dhcp_client_enabled() ? refuseBesideClient(call) : kOk;
    });
}

Status checkSwitch(const EditCall &call, bool isDeleted)
{
    const Value *enable = isDeleted ? nullptr : find(call.newval, "enable");
    return enable && val_get_boolean(enable) && is_dhcp_client_enabled() ? refuseBesideClient(call) : kOk;
}

Status sendState(const EditCall &call, bool isOn)
{
    const Answer answer(ui_fe_dhcpv4_server_set_server_state(isOn));
    return readAnswer(call, answer.get(), "[%s]: Dhcp server ipv4 config enable Error: %s");
}

Status switchServer(const EditCall &call, bool isDeleted)
{
    const Value *enable = find(call.newval, "enable");
    if (!enable)
        return kOk;
    const bool isOn = !isDeleted && val_get_boolean(enable);
    return isOn && is_dhcp_client_enabled() ? refuseBesideClient(call) : sendState(call, isOn);
}

constexpr Rule<bool> kSwitchEdit[] = {
    // when, on, act
    {inValidate, onWrite | onLoad, checkSwitch},
    {inCommit, onWrite | onLoad, switchServer},
    {inCommit, onDelete,
     [](const EditCall &call, bool) { return find(call.curval, "enable") ? sendState(call, false) : kOk; }},
};
static_assert(noneHidden(kSwitchEdit));

// Pools

constexpr const char *kNameLine = "[%s]: Dhcp server dhcpv4 config name Error: %s";

Status setName(const EditCall &call, const char *pool, bool isAdded, const char *line = kNameLine)
{
    const Answer answer(ui_fe_dhpsv4_set_pool_name(pool, isAdded));
    return readAnswer(call, answer.get(), line);
}

Status checkPool(const EditCall &call, const char *)
{
    if (!call.newval || (find(call.newval, "subnet_network") && find(call.newval, "prefix-length")))
        return kOk;
    return refuse(
        call,
        "[%s]: Dhcp server dhcpv4 config Error: subnet_network/prefix-length is not present, unable to "
        "configure dhcpv4 server pool",
        "Error: subnet_network/prefix-length is not present, unable to configure dhcpv4 server pool");
}

Status sendSubnet(const EditCall &call, const char *pool)
{
    const Value *network = find(call.newval, "subnet_network");
    if (!network)
        return kOk;
    if (!find(call.newval, "prefix-length"))
        return refuse(call,
                      "[%s]: Dhcp server dhcpv4 config subnet_network Error: prefix-length is not present, "
                      "unable to update host address",
                      "Error: prefix-length is not present, unable to update host address");
    dhcp4_subnet_config request = poolRequest(pool);
    std::uint32_t address = 0;
    dhcps_get_ip_from_str(val_get_string(network), &address);
    request.subnet_network = address;
    request.subnet_mask = prefix2mask(numberOf(call.newval, "prefix-length"));
    const Answer answer(ui_fe_dhpsv4_set_pool_subnet_and_mask(request));
    return readAnswer(call, answer.get(),
                      "[%s]: Dhcp server dhcpv4 config subnet_network, prefix-length Error: %s");
}

Status sendRouters(const EditCall &call, const char *pool)
{
    char routers[64] = {};
    for (const Value *router = find(call.newval, "dhcp-default-router"); router;
         router = val_next_child_same(router)) {
        if (*routers)
            std::strncat(routers, ", ", sizeof routers - 1 - std::strlen(routers));
        std::strncat(routers, val_get_string(router), sizeof routers - 1 - std::strlen(routers));
    }
    if (!*routers)
        return kOk;
    dhcp4_subnet_config request = poolRequest(pool);
    copyField(request.option_name, "routers");
    request.option_format = DHCPS_FORMAT_IP;
    request.option_named = request.option_set = 1;
    copyField(request.dhcp_value, routers);
    const Answer answer(ui_fe_dhcpsv4_set_default_router_servers(request));
    return readAnswer(call, answer.get(), "[%s]: Dhcp server dhcpv4 config dhcp-default-router Error: %s");
}

Status sendExcluded(const EditCall &call, const char *pool)
{
    for (const Value *excluded = find(call.newval, "excl-ip-address"); excluded;
         excluded = val_next_child_same(excluded)) {
        dhcp4_subnet_config request = poolRequest(pool);
        std::uint32_t address = 0;
        dhcps_get_ip_from_str(val_get_string(excluded), &address);
        request.excluded_kind = DHCPS_EXCLUDE_ADDRESS;
        request.excluded_address.low_range = address;
        const Answer answer(ui_fe_dhcpsv4_excluded_address(request));
        if (const Status status =
                readAnswer(call, answer.get(), "[%s]: Dhcp server dhcpv4 config excl-ip-address Error: %s"))
            return status;
    }
    return kOk;
}

Status buildPool(const EditCall &call, const char *pool)
{
    constexpr Status (*steps[])(const EditCall &, const char *) = {
        [](const EditCall &of, const char *name) { return setName(of, name, true); },
        sendSubnet,
        sendRouters,
        sendExcluded,
    };
    for (const auto step : steps)
        if (const Status status = step(call, pool))
            return status;
    return kOk;
}

Status rebuildPool(const EditCall &call, const char *pool)
{
    const Status status = walkChildEdits(call, [&](const EditedLeaf &) {
        return setName(call, pool, false, "[%s]: Dhcp server dhcpv4 config delete name Error: %s");
    });
    return status ? status : buildPool(call, pool);
}

Status removePool(const EditCall &call, const char *pool)
{
    const Status status = setName(call, pool, false);
    if (status == kOk && logsDebug())
        log_debug("[%s]: Dhcp server dhcpv4 config- Deleted the pool:%s", call.function, pool);
    return status;
}

Status undoPool(const EditCall &call, const char *pool)
{
    if (logsDebug())
        log_debug("[%s]: ROLLBACK for editop [%s], Dhcp server dhcpv4 pool [%s]", call.function,
                  op_editop_name(call.op), pool);
    return setName(call, pool, call.op == del);
}

constexpr Rule<const char *> kPoolEdit[] = {
    // when, on, act
    {inValidate, onWrite | onLoad, checkPool},
    {inApply, onMerge, rebuildPool},
    {inApply, onReplace | onCreate, buildPool},
    {inApply, onDelete, removePool},
    {inRollback, anyOp, undoPool},
};
static_assert(noneHidden(kPoolEdit));

// Lease time

constexpr std::uint32_t kMinute = 60, kHour = 60 * kMinute, kDay = 24 * kHour;
constexpr std::uint32_t kLongestLease = 365 * kDay, kMostTooFewMinutes = 4;

Status checkLease(const EditCall &call, const char *)
{
    const std::uint32_t days = numberOf(call.newval, "day"), hours = numberOf(call.newval, "hour"),
                        minutes = numberOf(call.newval, "minute");
    const std::uint64_t lease_offer_timer = std::uint64_t{days} * kDay + hours * kHour + minutes * kMinute;
    const bool isTooShort = days == 0 && hours == 0 && minutes <= kMostTooFewMinutes;
    if (!call.newval || (!isTooShort && lease_offer_timer <= kLongestLease))
        return kOk;
    if (isTooShort && logsErrors())
        log_error(
            "[%s]: Dhcp server dhcpv4 config lease Error: Exceeded the minimum number of allowed minutes",
            call.function);
    else if (logsErrors())
        log_error(
            "[%s]: Dhcp server dhcpv4 config lease Error: The total lease time exceeded a calendar year. "
            "lease_offer_timer[%u]",
            call.function, static_cast<unsigned>(lease_offer_timer));
    locationLines(call);
    return kInternal;
}

Status sendLease(const EditCall &call, const char *pool)
{
    const Value *lease = call.op == del ? call.curval : call.newval;
    dhcp4_subnet_config request = poolRequest(pool);
    request.no = call.op == del;
    request.lease_days = numberOf(lease, "day");
    request.lease_hours = numberOf(lease, "hour");
    request.lease_minutes = numberOf(lease, "minute");
    const Answer answer(ui_fe_dhcpsv4_set_lease_time(request));
    return readAnswer(call, answer.get(), "[%s]: Dhcp server dhcpv4 config lease Error: %s");
}

constexpr Rule<const char *> kLeaseEdit[] = {
    // when, on, act
    {inValidate, onWrite | onLoad, checkLease},
    {inApply, onWrite | onDelete, sendLease},
};
static_assert(noneHidden(kLeaseEdit));

Status sendRange(const EditCall &call, const char *pool, const char *low, const char *high)
{
    dhcp4_subnet_config request = poolRequest(pool);
    std::uint32_t lowest = 0, highest = 0;
    dhcps_get_ip_from_str(low, &lowest);
    dhcps_get_ip_from_str(high, &highest);
    request.no = call.op == del;
    request.excluded_kind = DHCPS_EXCLUDE_RANGE;
    request.excluded_address.low_range = lowest;
    request.excluded_address.high_range = highest;
    const Answer answer(ui_fe_dhcpsv4_excluded_address(request));
    return readAnswer(call, answer.get(), "[%s]: Dhcp server dhcpv4 config excl-ip-address-range Error: %s");
}

constexpr Rule<const char *, const char *, const char *> kRangeEdit[] = {
    {inApply, onWrite | onDelete, sendRange},
};

} // namespace

extern "C" Status u_lyn_openconfig_dhcp_server_ipv4_config_edit(EDIT_ARGS)
{
    const EditCall call = EDIT_CALL;
    bool isDeleted = false;
    if (editop == merge)
        if (const Status status = lookAtChildren(call, isDeleted))
            return status;
    return run(kSwitchEdit, call, isDeleted);
}

extern "C" Status u_lyn_openconfig_dhcp_server_dhcpv4_pool_edit(EDIT_ARGS, const char *pool)
{
    return run(kPoolEdit, EDIT_CALL, pool);
}

extern "C" Status u_lyn_openconfig_dhcp_server_lease_time_edit(EDIT_ARGS, const char *pool)
{
    const EditCall call = EDIT_CALL;
    if (editop == merge)
        walkChildEdits(call);
    return run(kLeaseEdit, call, pool);
}

extern "C" Status u_lyn_openconfig_dhcp_server_excl_ip_address_range_edit(EDIT_ARGS, const char *pool,
                                                                          const char *low, const char *high)
{
    return run(kRangeEdit, EDIT_CALL, pool, low, high);
}
