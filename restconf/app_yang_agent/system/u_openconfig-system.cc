// The root of the system tree and the host name.
#include "system/u_openconfig-system.h"

#include "backend/system.h"
#include "frame/owned.h"
#include "frame/rules.h"
#include "frame/stub.h"

#include <cstring>

using namespace frame;

USER_UNIT(openconfig_system);
STUB_EDIT(u_openconfig_system_system_edit);

namespace {

constexpr const char *kModule = "openconfig-system";
constexpr std::int32_t kSet = 1, kClear = 3; // op
constexpr std::int32_t kFromClient = 2;      // hostname_source
constexpr std::int32_t kSendFlag = 2;
constexpr std::size_t kLongestName = SYSTEM_HOSTNAME_SIZE - 1;

using Answer = Owned<SystemInfo, system_info__free_unpacked>;

// A null name clears. Any answer is a success.
Status sendHostName(const EditCall &call, const char *name)
{
    SystemInfo request;
    SystemInfoStorage storage;
    ui_system_info_init(&request, &storage);
    request.op = name ? kSet : kClear;
    if (name) {
        std::strncpy(storage.hostname, name, kLongestName);
        request.hostname = storage.hostname;
        request.hostname_source = kFromClient;
    }
    if (const Answer answer{ui_fe_hostname_set(&request, kSendFlag)})
        return kOk;
    if (logsErrors())
        log_error("[%s] : setting hostname [%s] failed", call.function, storage.hostname);
    locationLines(call);
    return kInternal;
}

Status sendEditedName(const EditCall &call, const EditedLeaf &leaf)
{
    if (leaf.op == del)
        return sendHostName(call, nullptr);
    return sendHostName(call, leaf.newval ? val_get_string(leaf.newval) : "");
}

Status check(const EditCall &call)
{
    const Value *name = val_find_child(call.newval, kModule, "hostname");
    if (!name) {
        if (logsErrors())
            log_error("[%s] error : Hostname is empty", call.function);
        return kInternal;
    }
    if (std::strlen(val_get_string(name)) <= kLongestName)
        return kOk;
    if (logsErrors())
        log_error("[%s] error : hostname %s in Validate phase exceed max", call.function,
                  val_get_string(name));
    return kInternal;
}

Status sendReplacement(const EditCall &call)
{
    if (!call.newval) {
        locationLines(call);
        return kInternal;
    }
    const Value *name = val_find_child(call.newval, kModule, "hostname");
    return name ? sendHostName(call, val_get_string(name)) : kOk;
}

constexpr Rule<> kConfigEdit[] = {
    {inValidate, onMerge | onReplace, check},
    {inApply, onReplace, sendReplacement}, // a merge has sent what was edited before
};
static_assert(noneHidden(kConfigEdit));

} // namespace

extern "C" Status u_openconfig_system_system_config_edit(EDIT_ARGS)
{
    const EditCall call = EDIT_CALL;
    bool isDeleted = false;
    const auto onLeaf = [&](const EditedLeaf &leaf) {
        if (!leaf.is("hostname"))
            return kOk;
        isDeleted |= leaf.op == del;
        return cbtyp == apply ? sendEditedName(call, leaf) : kOk;
    };
    if (editop == merge)
        if (const Status status = walkChildEdits(call, onLeaf))
            return status;
    return cbtyp == validate && isDeleted ? kOk : run(kConfigEdit, call);
}
