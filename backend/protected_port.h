// Protected ports.
#pragma once

#include "backend/proto/common.pb-c.h"
#include "backend/proto/port_features.pb-c.h"

#ifdef __cplusplus
extern "C" {
#endif

// Clears a request. The caller sets opcode (1 protect, 3 unprotect) and port_name.
void pport_config_req_init(PportConfig *request);

// Sends a request and waits. `flag` is 1. 0: delivered, and *answer is there; otherwise *answer is null.
int protected_port_config_apply(PportConfig *request, CommonResp **answer, int32_t flag);

// Frees an answer; null is allowed.
void pport_config_resp_free_unpacked(CommonResp *answer);

#ifdef __cplusplus
}
#endif
