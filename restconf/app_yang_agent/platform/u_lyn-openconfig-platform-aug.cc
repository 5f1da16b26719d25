#include "platform/u_lyn-openconfig-platform-aug.h"

#include "backend/chassis.h"
#include "backend/config_files.h"
#include "change_tracking/change_tracking.h"
#include "frame/answer.h"
#include "frame/owned.h"
#include "frame/unit.h"

using namespace frame;

USER_UNIT(lyn_openconfig_platform_aug);

namespace {

constexpr const char *kModule = "lyn-openconfig-platform-aug";

using BootAnswer = Owned<Chassis__Bootconfig, chassis__bootconfig__free_unpacked>;
using ReloadAnswer = Owned<Chassis__ReloadCmd, ui_fe_reload_cmd_deinit>;

// One invocation of `boot-sys-flash`.
class BootSysFlash {
public:
    BootSysFlash(Session *scb, Request *msg)
        : scb_(scb)
        , msg_(msg)
    {
        ui_init_platform_boot_config(&boot_, &reply_);
    }
    BootSysFlash(const BootSysFlash &) = delete;
    BootSysFlash &operator=(const BootSysFlash &) = delete;

    Status run();

private:
    Status refuse(const char *text)
    {
        if (logsErrors())
            log_error("%s", text);
        return refuseRequest(scb_, msg_, kInternal, text);
    }
    Status reload();
    Status choose(const char *partition);

    Session *scb_;
    Request *msg_;
    Chassis__Bootconfig boot_;
    CommonResp reply_;
};

Status BootSysFlash::reload()
{
    constexpr std::int32_t reloadOp = 1, opcode = 10, flag = 1;
    Chassis__ReloadCmd request;
    ui_fe_reload_cmd_init(&request, &reply_);
    request.reload_op = reloadOp;
    const ReloadAnswer answer(ui_fe_reload_cmd_msg(&request, opcode, flag));
    if (!answer) {
        if (logsErrors())
            log_error("\n resp->response->reply_buf is NULL\n");
        return kInternal;
    }
    const char *words = answer->reply && answer->reply->reply_buf ? answer->reply->reply_buf : "";
    if (logsErrors())
        log_error("reply buf is %s\n", words);
    return answer->reload_accepted ? kOk : refuse(words);
}

Status BootSysFlash::choose(const char *partition)
{
    constexpr std::int32_t opcode = 17;
    if (xml_strcmp(partition, "primary") == 0)
        boot_.boot_source = BOOT_SOURCE_PRIMARY;
    else if (xml_strcmp(partition, "secondary") == 0)
        boot_.boot_source = BOOT_SOURCE_SECONDARY;
    const BootAnswer answer(ui_fe_platform_boot_config(&boot_, opcode));
    if (!answer || !answer->reply)
        return kOk;
    const char *words = answer->reply->reply_buf;
    if (words && logsErrors())
        log_error("%s", words);
    return isRefused(answer->reply) ? refuseRequest(scb_, msg_, kInternal, words ? words : "") : kOk;
}

Status BootSysFlash::run()
{
    const Value *input = agt_get_rpc_input(msg_);
    if (!input)
        return kFailed;
    const Value *force = val_find_child(input, kModule, "force-reboot");
    const Object *types =
        obj_find_child_choice_case(obj_find_child(msg_->method, kModule, "input"), kModule, "flash-type");
    if (!types)
        return kOk;
    const Value *partition = val_get_choice_first_set(input, types);
    const bool isForced = force && val_get_boolean(force);
    if (!isForced && ui_is_config_data_changed(nullptr))
        return refuse("Running Config data has been changed. Kindly save the config data before reload.\n");
    if (!partition)
        return reload();
    Status status = kOk;
    for (; partition; partition = val_get_choice_next_set(types, partition))
        status = choose(val_get_name(partition));
    return status;
}

} // namespace

extern "C" Status u_lyn_openconfig_platform_aug_boot_sys_flash_validate(RPC_ARGS)
{
    return agt_get_rpc_input(msg) ? kOk : kFailed;
}

extern "C" Status u_lyn_openconfig_platform_aug_boot_sys_flash_invoke(RPC_ARGS)
{
    return BootSysFlash(scb, msg).run();
}

extern "C" Status u_lyn_openconfig_platform_aug_save_config_validate(RPC_ARGS)
{
    return kOk;
}

extern "C" Status u_lyn_openconfig_platform_aug_save_config_invoke(RPC_ARGS)
{
    ui_execute_save_to_flash(); // whether it went well is not told
    const Object *output = outputOf(msg, kModule);
    if (!output) {
        if (logsErrors())
            log_error("%s : object is NULL\n", __func__);
        return kNotFound;
    }
    Status status = kOk;
    Value *result = agt_make_leaf(output, "result", "success", &status);
    if (!result)
        return kInternal;
    agt_rpc_add_return_val(result, msg);
    return kOk;
}
