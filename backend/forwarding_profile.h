// The hardware's forwarding profile, on platform types 4 and 5.
#pragma once

#include "backend/proto/common.pb-c.h"
#include "backend/proto/port_features.pb-c.h"

#ifdef __cplusplus
extern "C" {
#endif

// Sends a request, cleared by fwd_config_info__init and filled with opcode (1 create, 3 delete) and
// profile_name, and waits. 0: delivered, and *answer is there, to be freed with common_resp__free_unpacked;
// otherwise *answer is null.
int ui_forwarding_profile_config_apply(FwdConfigInfo *request, CommonResp **answer);

#ifdef __cplusplus
}
#endif
