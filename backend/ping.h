// The commands ping and traceroute of the switch.
#pragma once

#include "backend/proto/common.pb-c.h"
#include "backend/proto/ping.pb-c.h"

#ifdef __cplusplus
extern "C" {
#endif

// Bits of ping_mask, counted from 0.
#define PING_MASK_COUNT 4

// Marks a field of a ping as given. A bit above 31 marks nothing.
void set_ping_data_mask(uint32_t *mask, uint32_t bit);

// Both run a command to its end and wait. 0: done, and the answer's reply_buf is what it printed. Otherwise
// the answer says why not; it is null when the request was not delivered. Freed with
// common_resp__free_unpacked.
int ui_execute_ping(PingEntry *entry, CommonResp **answer);
int ui_execute_trace_route(TraceRouteExecute *message, CommonResp **answer);

#ifdef __cplusplus
}
#endif
