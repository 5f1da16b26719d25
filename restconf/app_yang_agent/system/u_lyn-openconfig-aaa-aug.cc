#include "system/u_lyn-openconfig-aaa-aug.h"

#include "backend/aaa.h"
#include "backend/net_text.h"
#include "frame/answer.h"
#include "frame/owned.h"
#include "frame/rules.h"
#include "frame/unit.h"

#include <cstring>

using namespace frame;

USER_UNIT(lyn_openconfig_aaa_aug);

namespace {

constexpr const char *kModule = "lyn-openconfig-aaa-aug";
constexpr std::int32_t kSet = 1, kDelete = 3; // operation

// One setting of the device.
struct Setting : AaaConfigReq {
    explicit Setting(std::int32_t how) { ui_aaa_config_req_init(this), operation = how; }
};

Status send(const EditCall &call, Setting &setting, const char *what, int line = __builtin_LINE())
{
    Owned<AaaConfigResp, ui_aaa_config_resp_free_unpacked> answer;
    ui_aaa_config_apply(&setting, answer.slot(), 0);
    if (answer)
        return kOk;
    if (logsErrors())
        log_error("\n[%s] Error RPC for %s", call.function, what);
    locationLines(call, line);
    return kInternal;
}

// Port authentication

Status sendDot1x(const EditCall &call, std::int32_t operation, const Value *method)
{
    Setting setting(operation);
    if (method) {
        setting.dot1x_radius = xml_strcmp(val_get_string(method), "radius") == 0;
        setting.dot1x_none = xml_strcmp(val_get_string(method), "none") == 0;
    }
    return send(call, setting, "dot1x");
}

// One request for each edited leaf.
Status mergeDot1x(const EditCall &call)
{
    return walkChildEdits(call, [&](const EditedLeaf &leaf) {
        const bool isGone = leaf.op == del;
        const Value *method = leaf.is("default") ? (isGone ? leaf.curval : leaf.newval) : nullptr;
        return sendDot1x(call, isGone ? kDelete : kSet, method);
    });
}

Status setDot1x(const EditCall &call)
{
    const Value *method = val_find_child(call.newval, kModule, "default");
    return method ? sendDot1x(call, kSet, method) : kOk;
}

Status removeDot1x(const EditCall &call)
{
    return sendDot1x(call, kDelete, val_find_child(call.curval, kModule, "default"));
}

constexpr Rule<> kDot1xEdit[] = {
    {inApply, onMerge, mergeDot1x},
    {inApply, onReplace | onCreate, setDot1x},
    {inApply, onDelete, removeDot1x},
};
static_assert(noneHidden(kDot1xEdit));

// Change of Authorization

using Field = std::int32_t AaaConfigReq::*;

// A false is the deletion of the setting, never a 0.
void setSwitch(Setting &setting, Field field, const Value *leaf)
{
    setting.*field = 1;
    if (!val_get_boolean(leaf))
        setting.operation = kDelete;
}

Status refuse(const EditCall &call)
{
    return refuseOperation(call, "\nEnter u_coa_edit callback for %s phase, editop(%d) not supported");
}

// One request for each edited leaf; one that is not known here names no setting.
Status mergeCoa(const EditCall &call)
{
    return walkChildEdits(call, [&](const EditedLeaf &leaf) {
        Setting setting(leaf.op == del ? kDelete : kSet);
        if (leaf.is("enable"))
            setSwitch(setting, &AaaConfigReq::coa_enable, leaf.newval ? leaf.newval : leaf.curval);
        return send(call, setting, "coa");
    });
}

Status setCoa(const EditCall &call)
{
    const Value *leaf = val_find_child(call.newval, kModule, "enable");
    if (!leaf)
        return kOk;
    Setting setting(kSet);
    setSwitch(setting, &AaaConfigReq::coa_enable, leaf);
    return send(call, setting, "coa");
}

constexpr Rule<> kCoaEdit[] = {
    {inValidate | inApply, onDelete, refuse},
    {inApply, onMerge, mergeCoa},
    {inApply, onReplace | onCreate, setCoa},
};
static_assert(noneHidden(kCoaEdit));

constexpr struct {
    const char *leaf;
    Field field;
} kIgnored[] = {
    {"disable-port", &AaaConfigReq::coa_ignore_disable_port},
    {"dm-request", &AaaConfigReq::coa_ignore_dm_request},
    {"flip-port", &AaaConfigReq::coa_ignore_flip_port},
    {"reauth-host", &AaaConfigReq::coa_ignore_reauth_host},
    {"modify-acl", &AaaConfigReq::coa_ignore_modify_acl},
};

// Every leaf that is there, changed or not.
Status sendIgnored(const EditCall &call)
{
    const Value *container = call.op == del ? call.curval : call.newval;
    for (const auto &row : kIgnored) {
        const Value *leaf = val_find_child(container, kModule, row.leaf);
        if (!leaf)
            continue;
        Setting setting(call.op == del ? kDelete : kSet);
        setSwitch(setting, row.field, leaf);
        if (const Status status = send(call, setting, row.leaf))
            return status;
    }
    return kOk;
}

constexpr Rule<> kIgnoreEdit[] = {{inApply, onWrite | onDelete, sendIgnored}};

// Method lists

constexpr std::size_t kMethodsSize = AAA_METHODS_SIZE;

struct MethodList {
    std::int32_t opcode;
    const char *leaf;
    bool hasPrivilege;
    char (aaa_method_record::*methods)[kMethodsSize];
    const char *missing; // formats with the function's name
    const char *refused; // the same, and the device's text
};

constexpr MethodList kLogin = {
    1,
    "default",
    false,
    &aaa_method_record::login_methods,
    "[%s]: aaa authentication login edit Error: default is not present, unable to configure aaa "
    "authentication login",
    "[%s]: aaa authentication login edit Error: %s",
};
constexpr MethodList kAuthorizedCommands = {
    9,
    "default",
    true,
    &aaa_method_record::authorization_methods,
    "[%s]: aaa authorization commands edit Error: privilege/default is not present, unable to configure aaa "
    "authorization commands",
    "[%s]: aaa authorization commands edit Error: %s",
};
constexpr MethodList kAuthorizedExec = {
    10,
    "default",
    false,
    &aaa_method_record::authorization_methods,
    "[%s]: aaa authorization exec edit Error: default is not present, unable to configure aaa authorization "
    "exec",
    "[%s]: aaa authorization exec edit Error: %s",
};
constexpr MethodList kAccountedCommands = {
    6,
    "default-start-stop",
    true,
    &aaa_method_record::accounting_methods,
    "[%s]: aaa accounting commands edit Error: privilege/default-start-stop is not present, unable to "
    "configure aaa accounting commands",
    "[%s]: aaa accounting commands edit Error: %s",
};
constexpr MethodList kAccountedExec = {
    7,
    "default-start-stop",
    false,
    &aaa_method_record::accounting_methods,
    "[%s]: aaa accounting exec edit Error: default-start-stop is not present, unable to configure aaa "
    "accounting exec",
    "[%s]: aaa accounting exec edit Error: %s",
};

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
void logMissing(const EditCall &call, const MethodList &list)
{
    if (logsDebug())
        log_debug(list.missing, call.function);
}

void logRefused(const EditCall &call, const MethodList &list, const char *text)
{
    if (logsDebug() && text)
        log_debug(list.refused, call.function, text);
}
#pragma GCC diagnostic pop

// A merge is given the list as it will be in curval.
Status check(const EditCall &call, const MethodList *list)
{
    if (!call.newval || !call.curval)
        return kOk;
    const Value *container = call.op == merge ? call.curval : call.newval;
    if (val_find_child(container, kModule, list->leaf) &&
        (!list->hasPrivilege || val_find_child(container, kModule, "privilege")))
        return kOk;
    logMissing(call, *list);
    locationLines(call);
    return kInternal;
}

// The methods in one text without a leading blank, cut where the record's field ends.
void join(const Value *container, const MethodList &list, char (&text)[kMethodsSize])
{
    std::size_t length = 0;
    for (Value *method = val_find_child(container, kModule, list.leaf); method && length < sizeof text;
         method = val_next_child_same(method))
        length += static_cast<std::size_t>(
            ksnprintf(text + length, sizeof text - length, length ? " %s" : "%s", val_get_string(method)));
}

Status sendMethods(const EditCall &call, const MethodList *list)
{
    const Value *source = call.op == merge || call.op == del ? call.curval : call.newval;
    aaa_method_record record{};
    record.opcode = list->opcode;
    record.delete_flag = call.op == del;
    if (const Value *privilege = list->hasPrivilege ? val_find_child(source, kModule, "privilege") : nullptr)
        record.privilege = static_cast<std::uint32_t>(val_get_uint64(privilege));
    join(source, *list, record.*list->methods);
    const Owned<AaaMethodResponse, ui_fe_aaa_response_free> answer(ui_fe_aaa_set(record));
    if (answer && !isRefused(answer->reply))
        return kOk;
    if (answer)
        logRefused(call, *list, answer->reply->reply_buf);
    locationLines(call);
    return kInternal;
}

constexpr Rule<const MethodList *> kMethodListEdit[] = {
    {inValidate, onWrite, check},
    {inApply, onWrite | onDelete, sendMethods},
};
static_assert(noneHidden(kMethodListEdit));

} // namespace

extern "C" Status u_lyn_openconfig_aaa_aug_system_aaa_authentication_dot1x_edit(EDIT_ARGS)
{
    return run(kDot1xEdit, EDIT_CALL);
}

extern "C" Status u_lyn_openconfig_aaa_aug_system_aaa_authorization_coa_edit(EDIT_ARGS)
{
    return run(kCoaEdit, EDIT_CALL);
}

extern "C" Status u_lyn_openconfig_aaa_aug_system_aaa_authorization_coa_ignore_edit(EDIT_ARGS)
{
    return run(kIgnoreEdit, EDIT_CALL);
}

extern "C" Status u_lyn_openconfig_aaa_aug_system_aaa_authentication_login_edit(EDIT_ARGS)
{
    return run(kMethodListEdit, EDIT_CALL, &kLogin);
}

extern "C" Status u_lyn_openconfig_aaa_aug_system_aaa_authorization_commands_edit(EDIT_ARGS)
{
    return run(kMethodListEdit, EDIT_CALL, &kAuthorizedCommands);
}

extern "C" Status u_lyn_openconfig_aaa_aug_system_aaa_authorization_exec_edit(EDIT_ARGS)
{
    return run(kMethodListEdit, EDIT_CALL, &kAuthorizedExec);
}

extern "C" Status u_lyn_openconfig_aaa_aug_system_aaa_accounting_commands_edit(EDIT_ARGS)
{
    return run(kMethodListEdit, EDIT_CALL, &kAccountedCommands);
}

extern "C" Status u_lyn_openconfig_aaa_aug_system_aaa_accounting_exec_edit(EDIT_ARGS)
{
    return run(kMethodListEdit, EDIT_CALL, &kAccountedExec);
}
