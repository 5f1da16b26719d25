#include "backend/forwarding_profile.h"

#include "backend/call.h"

int ui_forwarding_profile_config_apply(FwdConfigInfo *request, CommonResp **answer)
{
    return backend::apply("ui_forwarding_profile_config_apply", request, common_resp__descriptor, answer);
}
