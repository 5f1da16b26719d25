// Collecting support data: logs, tables and core files, for whoever looks into a fault.
#pragma once

#include "backend/proto/common.pb-c.h"
#include "backend/proto/support_data.pb-c.h"

#ifdef __cplusplus
extern "C" {
#endif

#define SUPPORT_SERVER_HTTP 5
#define SUPPORT_MODULE_CORE 6
#define SUPPORT_MODULE_ALL 8
#define SUPPORT_ADDRESS_LENGTH 15 // characters of ss_server_ip at most

// Clears a request of the caller's.
void ui_ss_info_req_init(UiSsInfoReq *request);

// Starts a collection and waits for the word that it began. The answer's reply tells. Null on a delivery
// failure; freed with ui_ss_info_req_free_unpacked.
UiSsInfoReq *ui_supportsave_collect_req(UiSsInfoReq *request);

// Frees an answer; null is allowed.
void ui_ss_info_req_free_unpacked(UiSsInfoReq *answer);

#ifdef __cplusplus
}
#endif
