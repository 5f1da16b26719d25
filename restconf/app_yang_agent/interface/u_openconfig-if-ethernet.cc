#include "interface/u_openconfig-if-ethernet.h"

#include "frame/answer.h"
#include "frame/leaves.h"
#include "frame/owned.h"
#include "frame/rules.h"
#include "frame/unit.h"
#include "interface/conversions.h"
#include "interface/lag_request.h"
#include "vlan/vlan_request.h"

#include <cstdio>

using namespace frame;
using namespace interfaces;

USER_UNIT(openconfig_if_ethernet);

namespace {

constexpr const char *kModule = "openconfig-if-ethernet", *kAugModule = "lyn-openconfig-if-ethernet-aug",
                     *kLagModule = "openconfig-if-aggregate";
constexpr int kSet = 2, kRemove = 3, kGet = 5; // operations
constexpr int kLinkSettings = 6;               // selector of a query
constexpr int kFull = 2, kAutoClock = 3;
constexpr std::size_t kInterfaceText = 256;

using Answer = Owned<InterfaceEthernetConfigParam, interface_ethernet_config_param__free_unpacked>;

// A request about link settings with what it points to. Not to be copied.
struct LinkRequest {
    InterfaceEthernetConfigParam record;

    LinkRequest(const char *name, int interfaceType)
    {
        ui_init_interface_ethernet_config(&record, &settings_, &reply_);
        record.name = const_cast<char *>(name); // borrowed; nothing writes to it
        record.interface_type = interfaceType;
    }
    LinkRequest(const LinkRequest &) = delete;
    LinkRequest &operator=(const LinkRequest &) = delete;

private:
    EthernetSettings settings_;
    CommonResp reply_;
};

Answer queryLink(const char *name, int interfaceType)
{
    LinkRequest query(name, interfaceType);
    query.record.settings = nullptr;
    query.record.operation = kGet;
    query.record.state_selector = kLinkSettings;
    return Answer(ui_fe_interface_ethernet_config_msg(&query.record, kGet));
}

// The three settings that travel together.
struct LinkLeaf {
    const char *name;
    int (*codeOf)(const char *);
    std::int32_t EthernetSettings::*field;
};
constexpr LinkLeaf kLinkLeaves[] = {
    {"port-speed", get_port_speed, &EthernetSettings::speed},
    {"duplex-mode", get_port_dupex, &EthernetSettings::duplex},
    {"ethernet-clock", get_port_clock, &EthernetSettings::clock},
};

const Value *find(const Value *config, const char *module, const char *leaf)
{
    return config ? val_find_child(config, module, leaf) : nullptr;
}

void setQuadPort(const Value *config, EthernetSettings &settings)
{
    const Value *leaf = find(config, kModule, "quad-port-configure-speed");
    if (!leaf)
        return;
    settings.quad_port_op = kSet;
    settings.has_quad_port = 1;
    settings.quad_port = val_get_boolean(leaf);
}

// Takes the edited leaves, and the others as they are in the device.
void mergeLink(const EditCall &call, const EthernetSettings &current, InterfaceEthernetConfigParam &request)
{
    bool isSeen[std::size(kLinkLeaves)] = {}, isEdited = false;
    walkChildEdits(call, [&](const EditedLeaf &edited) {
        for (std::size_t i = 0; i < std::size(kLinkLeaves); ++i) {
            const LinkLeaf &leaf = kLinkLeaves[i];
            if (edited.is(leaf.name)) {
                isSeen[i] = isEdited = true;
                if (edited.newval && edited.op != del)
                    request.settings->*leaf.field = leaf.codeOf(val_get_string(edited.newval));
            } else if (!isSeen[i]) {
                request.settings->*leaf.field = current.*leaf.field;
            }
        }
        request.operation = kSet;
        return kOk;
    });
    if (isEdited)
        request.settings->speed_op = kSet;
}

// Sending

enum class WithoutAnswer { fails, passes };

Status sendLink(const EditCall &call, LinkRequest &request, WithoutAnswer silence)
{
    const Answer answer(ui_fe_interface_ethernet_config_msg(&request.record, kSet));
    if (!answer)
        return silence == WithoutAnswer::fails ? kInternal : kOk;
    if (!isRefused(answer->reply))
        return kOk;
    const char *words = answer->reply->reply_buf;
    if (logsErrors() && words)
        log_error("reply buf is %s\n", words);
    else if (logsErrors())
        log_error("\n result->response->reply_buf is NULL\n");
    locationLines(call);
    return words ? recordText(call, kInternal, words) : kInternal;
}

// Puts the port into the LAG, or takes it out.
Status sendMember(const EditCall &call, const char *name, const Value *aggregate, bool leaves)
{
    const long id = lag_get_id_from_name(val_get_string(aggregate));
    if (!id) {
        locationLines(call);
        return kInternal;
    }
    lag::Request request;
    lag_adapter_restconf_to_proto(id, nullptr, 0, 0, leaves, name, leaves, &request.record);
    return lag::send(call, request);
}

const Value *aggregateIn(const Value *config)
{
    const Value *leaf = find(config, kLagModule, "aggregate-id");
    return leaf && val_get_status(leaf) == kOk ? leaf : nullptr;
}

// The port's name as the services of a port take it.
struct InterfaceText {
    char text[kInterfaceText];
    explicit InterfaceText(const char *name) { std::snprintf(text, sizeof text, "%s ", name); }
};

Status logged(const EditCall &call, bool isDone)
{
    if (!isDone)
        locationLines(call);
    return isDone ? kOk : kInternal;
}

Status sendVoice(const EditCall &call, const InterfaceText &port, const Value *leaf, int operation)
{
    const auto vlan = static_cast<std::uint32_t>(val_get_uint64(leaf));
    return logged(call, process_voice_vlan_set_config(port.text, vlan, operation) == 0);
}

// The second step only follows the first.
Status sendDhcp(const EditCall &call, const InterfaceText &port, bool isForbidden)
{
    if (process_set_dhclient_intf_no_enable(port.text, isForbidden))
        return logged(call, false);
    process_dhclient_set_intf_no_enbl(port.text, isForbidden);
    return kOk;
}

// Apply

Status mergeService(const EditCall &call, const InterfaceText &port, const EditedLeaf &leaf)
{
    const bool isVoice = leaf.is("ip-voice-vlan");
    if (!isVoice && !leaf.is("ip-dhcp-client-enable"))
        return kOk;
    if (leaf.op == del && leaf.curval)
        return isVoice ? sendVoice(call, port, leaf.curval, vlan::kRemove) : sendDhcp(call, port, true);
    if ((leaf.op == create || leaf.op == merge) && leaf.newval)
        return isVoice ? sendVoice(call, port, leaf.newval, vlan::kAdd)
                       : sendDhcp(call, port, !val_get_boolean(leaf.newval));
    return kOk;
}

Status applyMerge(const EditCall &call, const char *name)
{
    const InterfaceText port(name);
    if (const Status status =
            walkChildEdits(call, [&](const EditedLeaf &leaf) { return mergeService(call, port, leaf); }))
        return status;
    const Value *aggregate = nullptr;
    bool leaves = false;
    walkChildEdits(call, [&](const EditedLeaf &leaf) {
        leaves |= leaf.op == del;
        if (leaf.is("aggregate-id"))
            aggregate = leaf.op == del ? leaf.curval : leaf.newval;
        return kOk;
    });
    if (aggregate && val_get_status(aggregate) == kOk)
        return sendMember(call, name, aggregate, leaves);
    LinkRequest request(name, kindEthernet);
    if (const Status status =
            validate_openconfig_if_speed_merge(call.newval, call.curval, &request.record, call.msg))
        return status;
    return sendLink(call, request, WithoutAnswer::fails);
}

Status applyPut(const EditCall &call, const char *name)
{
    const InterfaceText port(name);
    if (const Value *voice = find(call.newval, kAugModule, "ip-voice-vlan"))
        if (const Status status = sendVoice(call, port, voice, vlan::kAdd))
            return status;
    if (const Value *dhcp = find(call.newval, kAugModule, "ip-dhcp-client-enable"))
        if (const Status status = sendDhcp(call, port, !val_get_boolean(dhcp)))
            return status;
    if (const Value *aggregate = aggregateIn(call.newval))
        return sendMember(call, name, aggregate, false);
    LinkRequest request(name, kindEthernet);
    validate_openconfig_if_speed(call.newval, &request.record, call.op);
    return sendLink(call, request, WithoutAnswer::passes);
}

Status applyDelete(const EditCall &call, const char *name)
{
    const InterfaceText port(name);
    if (const Value *voice = find(call.curval, kAugModule, "ip-voice-vlan"))
        if (const Status status = sendVoice(call, port, voice, vlan::kRemove))
            return status;
    if (find(call.curval, kAugModule, "ip-dhcp-client-enable"))
        if (const Status status = sendDhcp(call, port, true))
            return status;
    const Value *aggregate = aggregateIn(call.curval);
    const Status member = aggregate ? sendMember(call, name, aggregate, true) : kOk;
    LinkRequest request(name, kindEthernet);
    request.record.operation = kSet;
    request.record.settings->speed_op = kRemove;
    const Status link = sendLink(call, request, WithoutAnswer::passes);
    return member ? member : link;
}

// Rollback

// The voice VLAN stays as the edit left it.
Status takeBackDhcp(const EditCall &call, const char *name)
{
    if (call.op == load)
        return kOk;
    const InterfaceText port(name);
    if (call.op == del && find(call.curval, kAugModule, "ip-dhcp-client-enable"))
        return sendDhcp(call, port, false);
    if (const Value *dhcp = find(call.newval, kAugModule, "ip-dhcp-client-enable"))
        return sendDhcp(call, port, !val_get_boolean(dhcp));
    return kOk;
}

Status takeBackCreate(const EditCall &call, const char *name)
{
    if (const Status status = takeBackDhcp(call, name))
        return status;
    const Value *aggregate = aggregateIn(call.newval);
    const Status member = aggregate ? sendMember(call, name, aggregate, true) : kOk;
    LinkRequest request(name, kindEthernet);
    request.record.settings->speed_op = kRemove;
    const Status link = sendLink(call, request, WithoutAnswer::fails);
    return member ? member : link;
}

Status takeBackRest(const EditCall &call, const char *name)
{
    if (const Status status = takeBackDhcp(call, name))
        return status;
    const Value *aggregate = aggregateIn(call.op == del ? call.curval : call.newval);
    const Status member = aggregate ? sendMember(call, name, aggregate, false) : kOk;
    LinkRequest request(name, kindEthernet);
    const Status filled = call.op == merge
        ? validate_openconfig_if_speed_merge(call.newval, call.curval, &request.record, call.msg)
        : validate_openconfig_if_speed(call.curval, &request.record, call.op);
    if (filled)
        return filled;
    const Status link = sendLink(call, request, WithoutAnswer::fails);
    return member ? member : link;
}

// Validate: the request is built and dropped, so that a merge which cannot be built fails early.
Status checkMerge(const EditCall &call, const char *name)
{
    LinkRequest request(name, kindEthernet);
    return validate_openconfig_if_speed_merge(call.newval, call.curval, &request.record, call.msg);
}

Status checkPut(const EditCall &call, const char *name)
{
    LinkRequest request(name, kindEthernet);
    return validate_openconfig_if_speed(call.newval, &request.record, call.op);
}

constexpr Rule<const char *> kConfigEdit[] = {
    // when       on                     act
    {inValidate, onMerge, checkMerge},
    {inValidate, onReplace | onCreate, checkPut},
    {inApply, onMerge, applyMerge},
    {inApply, onReplace | onCreate, applyPut},
    {inApply, onDelete, applyDelete},
    {inRollback, onCreate, takeBackCreate},
    {inRollback, onMerge | onReplace | onDelete | onLoad, takeBackRest},
};
static_assert(noneHidden(kConfigEdit));

Status refuseCreate(const EditCall &, const char *)
{
    if (logsErrors())
        log_error(
            "\nEnter u_openconfig_if_ethernet_interfaces_interface_ethernet_edit callback create is not "
            "supported");
    return kNotSupported;
}

Status refuseDelete(const EditCall &, const char *)
{
    if (logsErrors())
        log_error(
            "\nEnter u_openconfig_if_ethernet_interfaces_interface_ethernet_edit callback delete is not "
            "supported");
    return kNotSupported;
}

constexpr Rule<const char *> kEthernetEdit[] = {
    {inValidate, onCreate, refuseCreate},
    {inValidate, onDelete, refuseDelete},
};
static_assert(noneHidden(kEthernetEdit));

// State

Value *ofAug(LeafMaker &leaf, const char *text)
{
    leaf.module = kAugModule;
    return leaf.text(text);
}

constexpr Leaf<EthernetSettings> kState[] = {
    {"duplex-mode",
     [](LeafMaker &leaf, const auto &link) { return leaf.text(get_port_dupex_string(link.duplex)); }},
    {"port-speed",
     [](LeafMaker &leaf, const auto &link) {
         const bool isOpen = link.speed == kSpeedAuto || link.speed == kSpeedOptic;
         return isOpen ? nullptr : leaf.text(get_port_speed_string(link.speed));
     }},
    {"negotiated-duplex-mode",
     [](LeafMaker &leaf, const auto &link) {
         return leaf.text(get_port_dupex_string(link.negotiated_duplex));
     }},
    {"negotiated-port-speed",
     [](LeafMaker &leaf, const auto &link) {
         return leaf.text(get_port_speed_string(link.negotiated_speed));
     }},
    {"negotiated-clock",
     [](LeafMaker &leaf, const auto &link) {
         return ofAug(leaf, get_port_clock_string(link.negotiated_clock));
     }},
    {"ethernet-clock",
     [](LeafMaker &leaf, const auto &link) { return ofAug(leaf, get_port_clock_string(link.clock)); }},
};

} // namespace

extern "C" {

Status validate_openconfig_if_speed_merge(Value *newval, Value *curval, InterfaceEthernetConfigParam *request,
                                          Request *msg)
{
    if (!request->settings)
        return kInternal;
    const Answer current = queryLink(request->name, 0);
    if (!current || isRefused(current->reply) || !current->settings)
        return kInternal;
    mergeLink({nullptr, msg, apply, merge, newval, curval, __func__}, *current->settings, *request);
    setQuadPort(newval, *request->settings);
    if (request->settings->duplex == 0)
        request->settings->duplex = kFull;
    return kOk;
}

Status validate_openconfig_if_speed(const Value *config, InterfaceEthernetConfigParam *request, EditOp)
{
    if (!request->settings)
        return kInternal;
    EthernetSettings &settings = *request->settings;
    setQuadPort(config, settings);
    if (const Value *speed = find(config, kModule, "port-speed")) {
        settings.speed = get_port_speed(val_get_string(speed));
        settings.speed_op = kSet;
    }
    const Value *duplex = find(config, kModule, "duplex-mode");
    settings.duplex = duplex ? get_port_dupex(val_get_string(duplex)) : 0;
    if (settings.duplex == 0)
        settings.duplex = kFull;
    const Value *clock = find(config, kAugModule, "ethernet-clock");
    settings.clock = clock ? get_port_clock(val_get_string(clock)) : kAutoClock;
    request->operation = kSet;
    return kOk;
}

Status u_openconfig_if_ethernet_interfaces_interface_ethernet_edit(EDIT_ARGS, const char *name)
{
    return run(kEthernetEdit, EDIT_CALL, name);
}

Status u_openconfig_if_ethernet_interfaces_interface_ethernet_config_edit(EDIT_ARGS, const char *name)
{
    return run(kConfigEdit, EDIT_CALL, name);
}

Status u_openconfig_if_ethernet_interfaces_interface_ethernet_state_get(GetBlock *get2cb, const char *name)
{
    const Answer answer = queryLink(name, kindEthernet);
    if (!answer || isRefused(answer->reply)) {
        if (logsErrors() && !answer)
            log_error("\nEnter u_openconfig_if_ethernet state return error   \n");
        else if (logsErrors())
            log_error("\nEnter u_openconfig_if_ethernet state return error :%d\n", answer->reply->ui_err);
        return kInternal;
    }
    if (const Status status = beginContainer(get2cb))
        return status;
    if (!answer->settings)
        return kOk;
    const Status status = returnLeaves(get2cb, kModule, *answer->settings, kState);
    if (status && logsErrors())
        log_error("agt_make_leaf2 failed with reason : %d\n", status);
    return kOk;
}

} // extern "C"
