// Spanning trees of VLANs, and the settings of ports in them.
//
// Records are cleared by their own init functions. Each function sends a request and waits. 0: delivered, and
// *answer is there, to be freed with common_resp__free_unpacked; otherwise *answer is null.
#pragma once

#include "backend/proto/common.pb-c.h"
#include "backend/proto/spanning_tree.pb-c.h"

#ifdef __cplusplus
extern "C" {
#endif

// What `enable` of the two records says of a tree that is on; 0 is off in both.
#define RSTP_ENABLED 2
#define STP_ENABLED 1

int ui_rstp_config_apply(RstpConfig *request, CommonResp **answer);
int ui_stp_config_apply(StpConfig *request, CommonResp **answer);
int ui_stp_common_port_config_apply(StpCommonPortConfig *request, CommonResp **answer);
int ui_rstp_port_config_apply(RstpPortConfig *request, CommonResp **answer);

#ifdef __cplusplus
}
#endif
