#include "ss/src/u_lyn-openconfig-supportsave.h"

#include "backend/support_data.h"
#include "frame/answer.h"
#include "frame/owned.h"
#include "frame/rules.h"
#include "frame/unit.h"

#include <array>
#include <cstring>
#include <string>

using namespace frame;

USER_UNIT(lyn_openconfig_supportsave);

namespace {

constexpr const char *kModule = "lyn-openconfig-supportsave";

using Answer = Owned<UiSsInfoReq, ui_ss_info_req_free_unpacked>;

Status refuse(const EditCall &call)
{
    log_debug("[%s]: User Needs to Delete JSON request and Rerequest the SS", call.function);
    return kNotSupported;
}

struct Module {
    const char *prefix; // of its name
    std::int32_t code;
};
constexpr Module kModules[] = {
    {"all", SUPPORT_MODULE_ALL},
    {"core", SUPPORT_MODULE_CORE},
};

// Only the first ten characters of a name count. An unknown one is the switch's to turn down.
std::int32_t moduleCode(const EditCall &call, const char *text)
{
    const std::string name(text, strnlen(text, 10));
    for (const Module &module : kModules)
        if (name.rfind(module.prefix, 0) == 0)
            return module.code;
    log_debug("[%s]: Invalid Module specified to collect supportsave for, %s", call.function, name.c_str());
    return 0;
}

Status readAnswer(const EditCall &call, const Answer &answer)
{
    if (!answer) {
        locationLines(call);
        return kInternal;
    }
    if (answer->reply && answer->reply->ui_err == 0) {
        const char *text = answer->reply->reply_buf;
        log_debug("[%s]: SupportSave collection status: %s", call.function, text ? text : "");
        return kOk;
    }
    log_debug(
        "[%s]: SupportSave collection failed.\nRun 'show log debug infra ss all' on the switch for more "
        "information.",
        call.function);
    locationLines(call);
    return kOk;
}

Status collect(const EditCall &call)
{
    UiSsInfoReq request;
    ui_ss_info_req_init(&request);
    CommonResp reply = COMMON_RESP__INIT;
    request.reply = &reply;
    std::array<char, 2> path{"/"};
    request.ss_path = path.data();
    if (const Value *name = val_find_child(call.newval, kModule, "modName"))
        request.ss_module = moduleCode(call, val_get_string(name));
    std::array<char, SUPPORT_ADDRESS_LENGTH + 1> address{};
    if (const Value *server = val_find_child(call.newval, kModule, "httpSrvrIP")) {
        std::strncpy(address.data(), val_get_string(server), SUPPORT_ADDRESS_LENGTH);
        request.ss_server_ip = address.data();
        request.has_ss_server_kind = 1;
        request.ss_server_kind = SUPPORT_SERVER_HTTP;
    }
    return readAnswer(call, Answer(ui_supportsave_collect_req(&request)));
}

constexpr Rule<> kInvokeEdit[] = {
    // when, on, act
    {inValidate, onMerge | onReplace, refuse},
    {inApply, onCreate, collect},
};
static_assert(noneHidden(kInvokeEdit));

} // namespace

extern "C" Status u_lyn_supportsave_invokeSS_edit(EDIT_ARGS)
{
    return run(kInvokeEdit, EDIT_CALL);
}
