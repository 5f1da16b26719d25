#include "protectedport/u_lyn-openconfig-protectedport.h"

#include "backend/protected_port.h"
#include "frame/owned.h"
#include "frame/rules.h"
#include "frame/stub.h"

using namespace frame;

USER_UNIT(lyn_openconfig_protectedport);

STUB_EDIT(u_lyn_oc_protectedport_protectedport_edit);
STUB_EDIT(u_lyn_oc_protectedport_interfaces_edit);
STUB_EDIT(u_lyn_oc_protectedport_interface_edit, const char *);

namespace {

constexpr const char *kModule = "lyn-openconfig-protectedport";
constexpr int kProtect = 1, kUnprotect = 3; // opcodes
constexpr int kSendFlag = 1;
constexpr int kRefused = 1; // the one ui_err that this unit takes for a refusal

Status send(const EditCall &call, const char *port, int opcode)
{
    PportConfig request;
    pport_config_req_init(&request);
    request.opcode = opcode;
    request.port_name = const_cast<char *>(port); // records have no const texts
    Owned<CommonResp, pport_config_resp_free_unpacked> answer;
    if (protected_port_config_apply(&request, answer.slot(), kSendFlag))
        return kInternal;
    if (!answer || answer->ui_err != kRefused)
        return kOk;
    locationLines(call);
    return recordText(call, kDeviceText, answer->reply_buf);
}

Status sendNew(const EditCall &call, const char *port)
{
    const Value *leaf = val_find_child(call.newval, kModule, "protectedport");
    if (!leaf || val_get_status(leaf))
        return kOk;
    return send(call, port, val_get_boolean(leaf) ? kProtect : kUnprotect);
}

Status unprotect(const EditCall &call, const char *port)
{
    return send(call, port, kUnprotect);
}

constexpr Rule<const char *> kConfigEdit[] = {
    // when, on, act
    {inApply, onMerge | onCreate, sendNew},
    {inApply, onDelete, unprotect},
};
static_assert(noneHidden(kConfigEdit));

} // namespace

extern "C" Status u_lyn_oc_protectedport_config_edit(EDIT_ARGS, const char *name)
{
    const EditCall call = EDIT_CALL;
    if (editop == merge)
        walkChildEdits(call);
    return run(kConfigEdit, call, name);
}
