#include "interface/u_openconfig-interfaces.h"

#include "frame/answer.h"
#include "frame/leaves.h"
#include "frame/owned.h"
#include "frame/rules.h"
#include "frame/stub.h"
#include "interface/conversions.h"
#include "interface/interface_name.h"

#include <cstdio>

using namespace frame;
using namespace interfaces;

USER_UNIT(openconfig_interfaces);

STUB_EDIT(u_openconfig_interfaces_interfaces_edit);
STUB_EDIT(u_openconfig_interfaces_interfaces_interface_hold_time_edit, const char *);
STUB_EDIT(u_openconfig_interfaces_interfaces_interface_hold_time_config_edit, const char *);
STUB_GET(u_openconfig_interfaces_interfaces_interface_hold_time_state_get, const char *);
STUB_EDIT(u_openconfig_interfaces_interfaces_interface_subinterfaces_edit, const char *);
STUB_EDIT(u_openconfig_interfaces_interfaces_interface_subinterfaces_subinterface_config_edit, const char *,
          const char *);
STUB_GET(u_openconfig_interfaces_interfaces_interface_subinterfaces_subinterface_state_get, const char *,
         const char *);
STUB_GET(u_openconfig_interfaces_interfaces_interface_subinterfaces_subinterface_state_counters_get,
         const char *, const char *);

namespace {

constexpr const char *kModule = "openconfig-interfaces";
constexpr int kSet = 2, kRemove = 3, kGet = 5;                         // of a port or LAG
constexpr int kCreateRouted = 1, kUpdateRouted = 2, kDeleteRouted = 3; // of a ve or loopback
constexpr int kStateOfInterface = 3;                                   // selector of a query
constexpr Status kNoSuchIndex = 258;

using Answer = Owned<InterfaceConfigParam, interface_config_param__free_unpacked>;
using RoutedAnswer = Owned<CommonResp, common_resp__free_unpacked>;

// Records have no const members; nothing writes to what they borrow.
char *borrow(const char *text)
{
    return const_cast<char *>(text);
}

const Value *find(const Value *config, const char *leaf)
{
    return config ? val_find_child(config, kModule, leaf) : nullptr;
}

void setEnabled(InterfaceConfigParam &request, bool enabled)
{
    request.enabled_op = kSet;
    request.has_enabled = 1;
    request.enabled = enabled;
}

void setDescription(InterfaceConfigParam &request, const Value *leaf)
{
    request.description_op = kSet;
    request.description = borrow(val_get_string(leaf));
}

Ip__Interface__Config routedRequest(int kind, const char *name, std::uint32_t id)
{
    Ip__Interface__Config request = IP__INTERFACE__CONFIG__INIT;
    request.name = borrow(name);
    request.has_id = 1;
    request.id = id;
    request.if_type = kind;
    return request;
}

Status badName()
{
    if (logsDebug())
        log_debug("Error:%s Invalid interface name.\n",
                  "u_openconfig_interfaces_interfaces_interface_config_edit");
    return kInternal;
}

// A failed request of `config`; the device's words may be null, which leaves the status's own text.
Status failedSend(const EditCall &call, const char *words, const char *textWithoutAnswer, bool isAnswered)
{
    if (logsErrors() && isAnswered && words)
        log_error("u_openconfig_interfaces_interfaces_interface_config_set failed  %s \n", words);
    else if (logsErrors())
        log_error("u_openconfig_interfaces_interfaces_interface_config_set failed  \n");
    locationLines(call);
    return recordText(call, kDeviceText, !isAnswered ? textWithoutAnswer : words ? words : "");
}

Status sendRouted(const EditCall &call, Ip__Interface__Config &request)
{
    RoutedAnswer answer;
    ui_set_intf_config(&request, answer.slot());
    if (answer && !isRefused(answer.get()))
        return kOk;
    return failedSend(call, answer ? answer->reply_buf : nullptr,
                      "u_openconfig_interfaces_interfaces_interface_config_set failed \n", bool(answer));
}

// What the device thinks of a LAG's settings does not matter: the LAG may come into being only later.
Status sendSettings(const EditCall &call, InterfaceConfigParam &request, int kind)
{
    const Answer answer(ui_fe_interface_config_msg(&request, kSet));
    if (answer && (kind != kindEthernet || !isRefused(answer->reply)))
        return kOk;
    return failedSend(call, answer ? answer->reply->reply_buf : nullptr,
                      "u_openconfig_interfaces_interfaces_interface_config_set failed  \n", bool(answer));
}

using Settings = InterfaceConfigParam;
using Routed = Ip__Interface__Config;

// What each phase and operation says of the settings; where there is no row the request goes out as it is.
template <class Request>
struct Fill {
    Phases when;
    EditOps on;
    void (*fill)(const EditCall &, Request &);
};

constexpr Fill<Settings> kSettings[] = {
    {inApply, onMerge,
     [](const EditCall &call, Settings &request) { update_interface_protobuf_merge(call, &request); }},
    {inApply, onReplace | onCreate,
     [](const EditCall &call, Settings &request) { update_interface_protbuf(call.newval, &request); }},
    {inApply, onDelete,
     [](const EditCall &, Settings &request) {
         request.operation = kSet;
         request.enabled_op = request.description_op = kRemove;
     }},
    {inRollback, onWrite,
     [](const EditCall &call, Settings &request) { update_interface_protbuf(call.curval, &request); }},
    {inRollback, onDelete,
     [](const EditCall &call, Settings &request) { update_interface_protbuf(call.newval, &request); }},
};

constexpr Fill<Routed> kRouted[] = {
    {inApply, onMerge,
     [](const EditCall &call, Routed &request) { update_ve_interface_protobuf_merge(call, &request); }},
    {inApply, onReplace,
     [](const EditCall &call, Routed &request) {
         request.operation = kUpdateRouted;
         update_ve_interface_protbuf(call.newval, &request);
     }},
    {inApply, onCreate,
     [](const EditCall &call, Routed &request) {
         request.operation = kCreateRouted;
         update_ve_interface_protbuf(call.newval, &request);
     }},
    // The interface itself goes when its entry is committed.
    {inApply, onDelete,
     [](const EditCall &, Routed &request) {
         request.operation = kUpdateRouted;
         request.description_op = kRemove;
     }},
    {inRollback, onWrite, [](const EditCall &, Routed &request) { request.operation = kCreateRouted; }},
    {inRollback, onDelete, [](const EditCall &, Routed &request) { request.operation = kDeleteRouted; }},
};

template <class Request, std::size_t N>
void fill(const Fill<Request> (&rows)[N], const EditCall &call, Request &request)
{
    for (const auto &row : rows)
        if (row.when.has(call.phase) && row.on.has(call.op))
            return row.fill(call, request);
}

// Ports exist by themselves: their entries can only be merged into.
Status refuseEthernet(const EditCall &call, const char *)
{
    const Value *entry = call.curval ? call.curval : call.newval;
    if (get_interface_type(find(entry, "config"), nullptr) != kindEthernet)
        return kOk;
    if (logsErrors())
        log_error("\n u_openconfig_interfaces_interfaces_interface_edit Operation Not Supported for Ethernet "
                  "Interface");
    return kNotSupported;
}

Status deleteRouted(const EditCall &call, const char *name)
{
    const Value *entry = call.curval ? call.curval : call.newval;
    const int kind = get_interface_type(find(entry, "config"), nullptr);
    if (!isRouted(kind))
        return kOk;
    const auto number = numberInName(name);
    if (!number)
        return badName();
    Routed request = routedRequest(kind, name, static_cast<std::uint32_t>(*number));
    request.operation = kDeleteRouted;
    RoutedAnswer answer;
    ui_set_intf_config(&request, answer.slot());
    if (!isRefused(answer.get()))
        return kOk;
    return recordText(call, kDeviceText, answer->reply_buf ? answer->reply_buf : "");
}

constexpr Rule<const char *> kEntryEdit[] = {
    // when      on                               act
    {inValidate, onReplace | onCreate | onDelete, refuseEthernet},
    {inCommit, onDelete, deleteRouted},
};
static_assert(noneHidden(kEntryEdit));

Status refuseIndex(const EditCall &call, const char *, const char *index)
{
    if (xml_strcmp(index, "0") == 0)
        return kOk;
    char text[1000];
    std::snprintf(text, sizeof text, "Subinterface is not supported, index should be %s", "0");
    return recordText(call, kNoSuchIndex, text);
}

constexpr Rule<const char *, const char *> kSubinterfaceEdit[] = {
    {inApply, onCreate, refuseIndex},
};

constexpr Leaf<InterfaceConfigParam> kState[] = {
    {"name",
     [](LeafMaker &leaf, const auto &answer) { return answer.name ? leaf.text(answer.name) : nullptr; }},
    // Of every interface, whatever its kind: the query does not tell it.
    {"type", [](LeafMaker &leaf, const auto &) { return leaf.text("ethernetCsmacd"); }},
    {"description",
     [](LeafMaker &leaf, const auto &answer) {
         return answer.description ? leaf.text(answer.description) : nullptr;
     }},
    {"enabled", [](LeafMaker &leaf, const auto &answer) { return leaf.boolean(answer.enabled != 0); }},
    {"ifindex", [](LeafMaker &leaf, const auto &answer) { return leaf.number(answer.ifindex); }},
    {"admin-status",
     [](LeafMaker &leaf, const auto &answer) { return leaf.text(get_state_string(answer.enabled)); }},
    {"oper-status",
     [](LeafMaker &leaf, const auto &answer) { return leaf.text(get_state_string(answer.oper_state)); }},
};

#define COUNTER(name, member)                                                                                \
    {                                                                                                        \
        name, [](LeafMaker &leaf, const InterfaceCounters &counters) { return leaf.wide(counters.member); }  \
    }
constexpr Leaf<InterfaceCounters> kCounters[] = {
    COUNTER("in-octets", in_octets),
    COUNTER("in-pkts", in_pkts),
    COUNTER("in-unicast-pkts", in_unicast_pkts),
    COUNTER("in-broadcast-pkts", in_broadcast_pkts),
    COUNTER("in-multicast-pkts", in_multicast_pkts),
    COUNTER("in-discards", in_discards),
    COUNTER("in-errors", in_errors),
    COUNTER("in-unknown-protos", in_unknown_protos),
    COUNTER("in-fcs-errors", in_fcs_errors),
    COUNTER("out-octets", out_octets),
    COUNTER("out-pkts", out_pkts),
    COUNTER("out-unicast-pkts", out_unicast_pkts),
    COUNTER("out-broadcast-pkts", out_broadcast_pkts),
    COUNTER("out-multicast-pkts", out_multicast_pkts),
    COUNTER("out-discards", out_discards),
    COUNTER("out-errors", out_errors),
};
#undef COUNTER

Answer query(const char *name, int enabledOp)
{
    InterfaceConfigParam request;
    CommonResp reply;
    ui_init_interface_config(&request, &reply);
    request.name = borrow(name);
    request.operation = kGet;
    request.enabled_op = enabledOp;
    request.state_selector = kStateOfInterface;
    return Answer(ui_fe_interface_config_msg(&request, kGet));
}

// Leaves that cannot be made end the walk, and the retrieval has what it has.
template <class Record, std::size_t N>
Status giveLeaves(GetBlock *get2cb, const Record &record, const Leaf<Record> (&leaves)[N])
{
    const Status status = returnLeaves(get2cb, kModule, record, leaves);
    if (status && logsErrors())
        log_error("agt_make_leaf2 failed with reason : %d\n", status);
    return kOk;
}

} // namespace

extern "C" {

int get_interface_type(const Value *curval, const Value *newval)
{
    const Value *type = find(newval, "type");
    if (!type)
        type = find(curval, "type");
    if (type)
        return get_interface_type_from_string(val_get_string(type));
    if (logsErrors())
        log_error("get_interface_type curr and new value is  NULL\n");
    return kindOther;
}

void update_interface_protbuf(const Value *config, InterfaceConfigParam *request)
{
    if (!config)
        return;
    request->operation = kSet;
    if (const Value *enabled = find(config, "enabled"))
        setEnabled(*request, val_get_boolean(enabled));
    else
        request->enabled_op = kRemove;
    if (const Value *description = find(config, "description"))
        setDescription(*request, description);
    else
        request->description_op = kRemove;
}

void update_ve_interface_protbuf(const Value *config, Ip__Interface__Config *request)
{
    const Value *description = find(config, "description");
    if (!description)
        return;
    request->description_op = kSet;
    request->description = borrow(val_get_string(description));
}

void update_lb_interface_protbuf(const Value *config, Ip__Interface__Config *request)
{
    update_ve_interface_protbuf(config, request);
}

} // extern "C"

void update_interface_protobuf_merge(const EditCall &call, InterfaceConfigParam *request)
{
    walkChildEdits(call, [request](const EditedLeaf &leaf) {
        const Value *value = leaf.newval ? leaf.newval : leaf.curval;
        if (leaf.is("description"))
            setDescription(*request, value);
        else if (leaf.is("enabled"))
            setEnabled(*request, val_get_boolean(value));
        else
            return kOk;
        request->operation = kSet;
        return kOk;
    });
}

void update_ve_interface_protobuf_merge(const EditCall &call, Ip__Interface__Config *request)
{
    ChildEdit *edit = nullptr;
    EditedLeaf leaf{};
    while (nextEditedLeaf(call, edit, leaf)) {
        if (!leaf.is("description"))
            continue;
        request->operation = kUpdateRouted;
        if (leaf.newval && val_get_editop(leaf.newval) == del) {
            request->description_op = kRemove;
            request->description_clear = 1;
            return;
        }
        request->description_op = kSet;
        request->description = borrow(val_get_string(leaf.newval ? leaf.newval : leaf.curval));
        request->description_clear = 0;
    }
}

extern "C" {

Status u_openconfig_interfaces_interfaces_interface_edit(EDIT_ARGS, const char *name)
{
    return run(kEntryEdit, EDIT_CALL, name);
}

Status u_openconfig_interfaces_interfaces_interface_config_edit(EDIT_ARGS, const char *name)
{
    const EditCall call = EDIT_CALL;
    if (!isKnown(cbtyp) || !isKnown(editop))
        return INTERNAL_ERROR();
    const int kind = get_interface_type(curval, newval);
    const auto number = isRouted(kind) ? numberInName(name) : 0;
    if (!number)
        return badName();
    if (kind == kindOther) {
        if (logsErrors())
            log_error("Invalid interface type");
        return kInternal;
    }
    if (cbtyp == validate || cbtyp == commit)
        return kOk;
    if (isRouted(kind)) {
        Routed request = routedRequest(kind, name, static_cast<std::uint16_t>(*number));
        fill(kRouted, call, request);
        return sendRouted(call, request);
    }
    InterfaceConfigParam request;
    CommonResp reply;
    ui_init_interface_config(&request, &reply);
    request.name = borrow(name);
    fill(kSettings, call, request);
    return sendSettings(call, request, kind);
}

Status u_openconfig_interfaces_interfaces_interface_state_get(GetBlock *get2cb, const char *name)
{
    if (const Status status = beginContainer(get2cb))
        return status;
    const Answer answer = query(name, kGet);
    if (answer && !isRefused(answer->reply))
        return giveLeaves(get2cb, *answer, kState);
    if (logsErrors() && !answer)
        log_error("ui_fe_interface_set_get failed \n");
    else if (logsErrors())
        log_error("ui_fe_interface_set_get failed error %d\n", answer->reply->ui_err);
    return kInternal;
}

Status u_openconfig_interfaces_interfaces_interface_state_counters_get(GetBlock *get2cb, const char *name)
{
    if (const Status status = beginContainer(get2cb))
        return status;
    const Answer answer = query(name, 0);
    if (answer && !isRefused(answer->reply))
        return answer->counters ? giveLeaves(get2cb, *answer->counters, kCounters) : kOk;
    if (logsErrors() && !answer)
        log_error("u_openconfig_interfaces_interfaces_interface_state_get failed \n");
    else if (logsErrors())
        log_error("u_openconfig_interfaces_interfaces_interface_state_get failed with response buff\n");
    return kInternal;
}

Status u_openconfig_interfaces_interfaces_interface_subinterfaces_subinterface_edit(EDIT_ARGS,
                                                                                    const char *name,
                                                                                    const char *index)
{
    return run(kSubinterfaceEdit, EDIT_CALL, name, index);
}

} // extern "C"
