#include "trust_dscp/u_lyn-openconfig-if-trust-dscp-aug.h"

#include "backend/interface.h"
#include "backend/qos.h"
#include "frame/answer.h"
#include "frame/leaves.h"
#include "frame/owned.h"
#include "frame/rules.h"
#include "frame/stub.h"

#include <cstring>

using namespace frame;

USER_UNIT(lyn_openconfig_if_trust_dscp_aug);

STUB_EDIT(u_lyn_openconfig_if_trust_dscp_aug_interfaces_interface_ethernet_trust_dscp_edit, const char *);

namespace {

constexpr const char *kModule = "lyn-openconfig-if-trust-dscp-aug";
constexpr int kEnable = 1, kDisable = 3, kRead = 5; // opcodes
constexpr int kTrusted = 2;                         // mode of a port
constexpr int kPortCall = 2;
constexpr int kInterfaceSource = 3;

using PortAnswer = Owned<QosPortAnswer, ui_fe_qos_port_post_op>;
using InterfaceAnswer = Owned<InterfaceConfigParam, interface_config_param__free_unpacked>;

PortAnswer askPort(int opcode, int mode, const char *interface)
{
    const std::size_t length = interface ? std::strlen(interface) : 0;
    QosPortId port = QOS_PORT_ID__INIT;
    port.has_name = 1;
    // Records have no const bytes; nothing writes to them.
    port.name = {length, reinterpret_cast<std::uint8_t *>(const_cast<char *>(interface))};
    QosPortRequest request = QOS_PORT_REQUEST__INIT;
    request.opcode = opcode;
    request.qos_mode = mode;
    request.port = &port;
    return PortAnswer(ui_fe_qos_port_oper(&request, kPortCall));
}

InterfaceAnswer askInterface(const char *interface)
{
    InterfaceConfigParam request;
    CommonResp reply;
    ui_init_interface_config(&request, &reply);
    request.name = const_cast<char *>(interface);
    request.operation = kRead;
    request.source = kInterfaceSource;
    return InterfaceAnswer(ui_fe_interface_config_msg(&request, kRead));
}

void logFailedSend(const EditCall &call, const char *interface, int enabled)
{
    if (!logsErrors())
        return;
    if (call.op == merge)
        log_error("trust_dscp_config_edit: Setting state to error Merge operation %s/%d\n", interface,
                  enabled);
    else if (call.op == replace)
        log_error("trust_dscp_config_edit: Setting state to error Replace operation %s/%d\n", interface,
                  enabled);
    else
        log_error("trust_dscp_config_edit: Setting state to error Create operation %s/%d\n", interface,
                  enabled);
}

// An absent leaf changes nothing.
Status send(const EditCall &call, const Value *config, const char *interface)
{
    const Value *leaf = val_find_child(config, kModule, "enabled");
    if (!leaf)
        return kOk;
    const int enabled = val_get_boolean(leaf);
    if (trust_dscp_set_config(enabled, interface) == 0)
        return kOk;
    logFailedSend(call, interface, enabled);
    return kInternal;
}

Status sendNew(const EditCall &call, const char *interface)
{
    return send(call, call.newval, interface);
}

// A failure is only logged.
Status sendOld(const EditCall &call, const char *interface)
{
    send(call, call.curval, interface);
    return kOk;
}

Status refuse(const EditCall &call, const char *)
{
    return refuseOperation(
        call, "\nDelete u_trust_dscp_config_edit callback for %s phase, editop(%d) not supported");
}

constexpr Rule<const char *> kConfigEdit[] = {
    // when, on, act
    {inApply | inCommit | inRollback, onDelete, refuse},
    {inApply, onWrite, sendNew},
    {inRollback, onWrite, sendOld},
};
static_assert(noneHidden(kConfigEdit));

constexpr Leaf<QosPortAnswer> kState[] = {
    {"enabled",
     [](LeafMaker &leaf, const QosPortAnswer &answer) { return leaf.boolean(answer.qos_mode == kTrusted); }},
};

// 0, or kInternal with the answer's failure in the log.
Status checkInterface(const InterfaceConfigParam *answer)
{
    if (answer && answer->reply && answer->reply->ui_err == 0)
        return kOk;
    if (!logsErrors())
        return kInternal;
    if (!answer)
        log_error("\nu_trust_dscp_state_get call ui_fe_interface_config_msg return NULL\n");
    else if (!answer->reply)
        log_error("\nu_trust_dscp_state_get call ui_fe_interface_config_msg return response NULL\n");
    else
        log_error("\nu_trust_dscp_state_get call ui_fe_interface_config_msg response return error: %d\n",
                  answer->reply->ui_err);
    return kInternal;
}

Status checkPort(const QosPortAnswer *answer)
{
    if (answer && answer->reply && answer->reply->ui_err == 0)
        return kOk;
    if (!logsErrors())
        return kInternal;
    if (!answer)
        log_error("\nu_trust_dscp_state_get call ui_fe_qos_port_oper return NULL\n");
    else if (!answer->reply)
        log_error("\nu_trust_dscp_state_get call ui_fe_qos_port_oper return reply NULL\n");
    else
        log_error("\nu_trust_dscp_state_get call ui_fe_qos_port_oper response return error: %d\n",
                  answer->reply->ui_err);
    return kInternal;
}

} // namespace

extern "C" int trust_dscp_set_config(int enabled, const char *interface)
{
    const PortAnswer answer = askPort(enabled ? kEnable : kDisable, kTrusted, interface);
    return readLeniently(answer.get(), "trust_dscp_set_config: ui_fe_qos_port_oper() returns NULL\n",
                         "Trust Dscp: trust_dscp_set_config reply UI__ERROR__CODE__NOT_OK");
}

extern "C" Status
u_lyn_openconfig_if_trust_dscp_aug_interfaces_interface_ethernet_trust_dscp_config_edit(EDIT_ARGS,
                                                                                        const char *interface)
{
    const EditCall call = EDIT_CALL;
    if (editop == merge)
        walkChildEdits(call);
    if (cbtyp == rollback)
        log_debug("u_trust_dscp_config_edit: Start ROLLBACK Stage. Editop=%d\n", editop);
    return run(kConfigEdit, call, interface);
}

extern "C" Status
u_lyn_openconfig_if_trust_dscp_aug_interfaces_interface_ethernet_trust_dscp_state_get(GetBlock *get2cb,
                                                                                      const char *interface)
{
    const InterfaceAnswer known = askInterface(interface);
    if (const Status status = checkInterface(known.get()))
        return status;
    if (const Status status = beginContainer(get2cb))
        return status;
    const PortAnswer port = askPort(kRead, 0, known->name);
    if (const Status status = checkPort(port.get()))
        return status;
    const Status status = returnLeaves(get2cb, kModule, *port, kState);
    if (status && logsErrors())
        log_error("u_trust_dscp_state_get: agt_make_boolean_leaf failed with reason(%d)\n", status);
    return status;
}
