// Link aggregation groups.
#pragma once

#include "backend/proto/common.pb-c.h"
#include "backend/proto/lag.pb-c.h"

#ifdef __cplusplus
extern "C" {
#endif

// Size of the buffers that a caller links for `name` and `new_name`, terminator included.
#define LAG_NAME_BYTES 65

// Clears a request. It has no buffers of its own: the caller links `name` and `new_name` to buffers that live
// until it was sent. Empty texts do not go out.
void ui_lag_config_req_init(LagConfigReq *request);

// Sends a request and waits. 0: delivered, and *answer is there; otherwise *answer is null.
int ui_lag_config_apply(LagConfigReq *request, CommonResp **answer);

// Frees an answer; null is allowed.
void ui_lag_config_resp_free_unpacked(CommonResp *answer);

#ifdef __cplusplus
}
#endif
