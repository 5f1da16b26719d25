#include "jumbo/u_lyn-openconfig-jumbo.h"

#include "backend/qos.h"
#include "frame/answer.h"
#include "frame/leaves.h"
#include "frame/owned.h"
#include "frame/rules.h"
#include "frame/unit.h"

using namespace frame;

USER_UNIT(lyn_openconfig_jumbo);

namespace {

constexpr const char *kModule = "lyn-openconfig-jumbo";
constexpr int kSet = 1, kRead = 10; // opcodes

using Answer = Owned<QosJumboAnswer, ui_fe_qos_jumbo_post_op>;

Status refuse(const EditCall &call)
{
    return refuseOperation(call, "\nEnter u_config_edit callback for %s phase, editop(%d) not supported");
}

void logFailedSend(const EditCall &call, int enabled)
{
    if (!logsErrors())
        return;
    if (call.op == merge)
        log_error("Jumbo: Setting state to error Merge operation %d\n", enabled);
    else if (call.op == replace)
        log_error("Jumbo: Setting state to error Replace operation %d\n", enabled);
    else if (call.phase == rollback)
        log_error("Jumbo: Create FAILED in Rollback phase.\n");
    else
        log_error("Jumbo: Create FAILED.\n");
}

// An absent leaf changes nothing.
Status send(const EditCall &call)
{
    const Value *leaf = val_find_child(call.newval, kModule, "enabled");
    if (!leaf)
        return kOk;
    const int enabled = val_get_boolean(leaf);
    if (jumbo_set_config(enabled) == 0)
        return kOk;
    logFailedSend(call, enabled);
    return kInternal;
}

// Sends the new value once more, not the old one; a failure is only logged.
Status sendAgain(const EditCall &call)
{
    log_debug("Jumbo: Start ROLLBACK Stage. Editop=%d\n", call.op);
    send(call);
    return kOk;
}

constexpr Rule<> kJumboEdit[] = {
    {anyPhase, onDelete, refuse},
};
static_assert(noneHidden(kJumboEdit));

constexpr Rule<> kConfigEdit[] = {
    // when, on, act
    {anyPhase, onDelete, refuse},
    {inApply, onWrite, send},
    {inRollback, onWrite, sendAgain},
};
static_assert(noneHidden(kConfigEdit));

constexpr Leaf<QosJumboAnswer> kState[] = {
    {"enabled",
     [](LeafMaker &leaf, const QosJumboAnswer &answer) { return leaf.boolean(answer.jumbo_enabled != 0); }},
};

} // namespace

extern "C" int jumbo_set_config(int enabled)
{
    const Answer answer(ui_fe_qos_jumbo(kSet, enabled));
    return readLeniently(answer.get(), "Jumbo: jumbo_set_config returns NULL\n",
                         "Jumbo: jumbo_set_config reply UI__ERROR__CODE__NOT_OK");
}

extern "C" Status u_lyn_openconfig_jumbo_jumbo_edit(EDIT_ARGS)
{
    return run(kJumboEdit, EDIT_CALL);
}

extern "C" Status u_lyn_openconfig_jumbo_config_edit(EDIT_ARGS)
{
    const EditCall call = EDIT_CALL;
    if (editop == merge)
        walkChildEdits(call);
    return run(kConfigEdit, call);
}

extern "C" Status u_lyn_openconfig_jumbo_operation_state_get(GetBlock *get2cb)
{
    if (const Status status = beginContainer(get2cb))
        return status;
    const Answer answer(ui_fe_qos_jumbo(kRead, 0));
    if (!answer)
        return kOk;
    if (isRefused(answer->reply))
        return kFailed;
    return returnLeaves(get2cb, kModule, *answer, kState);
}
