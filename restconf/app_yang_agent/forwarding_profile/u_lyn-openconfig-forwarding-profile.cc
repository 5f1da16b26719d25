#include "forwarding_profile/u_lyn-openconfig-forwarding-profile.h"

#include "backend/forwarding_profile.h"
#include "frame/answer.h"
#include "frame/owned.h"
#include "frame/rules.h"
#include "frame/unit.h"

using namespace frame;

USER_UNIT(lyn_openconfig_forwarding_profile);

namespace {

constexpr const char *kModule = "lyn-openconfig-forwarding-profile";
constexpr int kCreate = 1, kDelete = 3; // opcodes

const char *profileNameOf(const Value *profile)
{
    const Value *leaf = val_find_child(profile, kModule, "current-profile-name");
    return leaf ? val_get_string(leaf) : nullptr;
}

Status send(const EditCall &call, int opcode, const char *profile)
{
    if (logsDebug())
        log_debug("\nforwarding profile \"%s\", opcode %d\n", profile, opcode);
    FwdConfigInfo request;
    fwd_config_info__init(&request);
    request.opcode = opcode;
    request.profile_name = const_cast<char *>(profile); // records have no const texts
    Owned<CommonResp, common_resp__free_unpacked> answer;
    const int result = ui_forwarding_profile_config_apply(&request, answer.slot());
    return readStrictly(call, result, answer.get());
}

Status add(const EditCall &call)
{
    if (const char *profile = profileNameOf(call.newval))
        return send(call, kCreate, profile);
    if (logsErrors())
        log_error("Error : Profile-name Unavailable, cur_profile = \"%s\"\n", "NULL");
    locationLines(call);
    return recordText(call, kMissingValue, "Error: Profilename Unavailable\n");
}

Status remove(const EditCall &call)
{
    const char *profile = profileNameOf(call.curval);
    if (!profile)
        return INTERNAL_ERROR();
    if (!*profile)
        return set_error(__FILE__, __LINE__, kBadData, 0);
    return send(call, kDelete, profile);
}

constexpr Rule<> kProfileEdit[] = {
    // when, on, act
    {inCommit, onMerge | onCreate, add},
    {inCommit, onDelete, remove},
};
static_assert(noneHidden(kProfileEdit));

} // namespace

extern "C" Status u_lyn_openconfig_forwarding_profile_forwarding_profile_edit(EDIT_ARGS)
{
    const EditCall call = EDIT_CALL;
    if (editop == merge)
        walkChildEdits(call);
    return run(kProfileEdit, call);
}
