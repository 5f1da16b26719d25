#include "stack/src/u_lyn-openconfig-stack.h"

#include "frame/rules.h"
#include "frame/stub.h"
#include "stack/src/answer.h"

using namespace frame;
using stack::ErrorText;

USER_UNIT(lyn_openconfig_stack);

STUB_EDIT(u_lyn_oc_stack_stack_units_edit);
STUB_EDIT(u_lyn_oc_stack_stack_unit_edit, const char *);
STUB_EDIT(u_lyn_oc_stack_unit_modules_edit, const char *);
STUB_EDIT(u_lyn_oc_stack_unit_module_edit, const char *, std::uint32_t);

namespace {

constexpr int kValidateMode = 0, kApplyMode = 1, kRollbackMode = 3;

// The walk and its request.
struct GlobalEdit {
    stack::GlobalRequest request;
    ErrorText error{};
    int changes = 0;

    Status walk(const EditCall &call, int mode)
    {
        const Status status = stack_edit_validate_config_editop(
            call.msg, mode, call.newval, call.curval, &request.record, error.data(), error.size(), &changes);
        return status ? stack::refuse(call, status, error) : kOk;
    }
    Status walkAndSend(const EditCall &call, int mode)
    {
        if (const Status status = walk(call, mode))
            return status;
        return changes > 0 ? stack::readAnswer(call, request.send(STACK_SET), error) : kOk;
    }
};

constexpr Rule<> kGlobalEdit[] = {
    // when, on, act
    {inValidate, onWrite, [](const EditCall &call) { return GlobalEdit().walk(call, kValidateMode); }},
    {inApply, onWrite, [](const EditCall &call) { return GlobalEdit().walkAndSend(call, kApplyMode); }},
    {inRollback, onWrite, [](const EditCall &call) { return GlobalEdit().walkAndSend(call, kRollbackMode); }},
};
static_assert(noneHidden(kGlobalEdit));

struct UnitEdit {
    stack::UnitRequest request;
    ErrorText error{};
    int changes = 0;

    Status walk(const EditCall &call, int unit)
    {
        const Status status = stack_edit_validate_config_1_editop(unit, call.msg, call.newval, call.curval,
                                                                  &request.record, error.data(), &changes);
        return status ? stack::refuse(call, status, error) : kOk;
    }
    Status walkAndSend(const EditCall &call, int unit)
    {
        if (const Status status = walk(call, unit))
            return status;
        if (changes == 0)
            return kOk;
        const stack::ConfigAnswer answer(ui_fe_stack_unit_config_cmd(&request.record, STACK_SET));
        return stack::readAnswer(call, answer, error);
    }
};

constexpr Rule<int> kUnitEdit[] = {
    {inValidate, onWrite, [](const EditCall &call, int unit) { return UnitEdit().walk(call, unit); }},
    {inApply, onWrite, [](const EditCall &call, int unit) { return UnitEdit().walkAndSend(call, unit); }},
};
static_assert(noneHidden(kUnitEdit));

Status refuseRemoval(const EditCall &call)
{
    if (logsErrors())
        log_error("\nEnter u_stack_edit callback for %s phase, editop(%s) not supported",
                  agt_cbtype_name(call.phase), op_editop_name(call.op));
    return kNotSupported;
}

constexpr Rule<> kStackEdit[] = {
    {inCommit, onDelete, refuseRemoval},
};
static_assert(noneHidden(kStackEdit));

// What the switch does not use is looked at for the log alone.
constexpr Rule<> kTraced[] = {
    {anyPhase, anyOp, [](const EditCall &call) -> Status { return walkChildEdits(call), kOk; }},
};
static_assert(noneHidden(kTraced));

} // namespace

extern "C" Status u_lyn_oc_stack_stack_edit(EDIT_ARGS)
{
    return run(kStackEdit, EDIT_CALL);
}

extern "C" Status u_lyn_oc_stack_config_edit(EDIT_ARGS)
{
    return run(kGlobalEdit, EDIT_CALL);
}

extern "C" Status u_lyn_oc_stack_config_1_edit(EDIT_ARGS, const char *unitId)
{
    int unit = 0;
    if (const Status status = stack::readUnitId(unitId, unit))
        return status;
    return run(kUnitEdit, EDIT_CALL, unit);
}

extern "C" Status u_lyn_oc_stack_trunks_edit(EDIT_ARGS, const char *)
{
    return run(kTraced, EDIT_CALL);
}

extern "C" Status u_lyn_oc_stack_stack_ports_edit(EDIT_ARGS, const char *)
{
    return run(kTraced, EDIT_CALL);
}

extern "C" Status u_lyn_oc_stack_config_2_edit(EDIT_ARGS, const char *, std::uint32_t)
{
    return run(kTraced, EDIT_CALL);
}
