// Messages to the tasks of the device.
#pragma once

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

// Tasks.
#define ITC_TASK_MANAGEMENT 118u // the one that the management server runs in

// Who sends.
struct itc_context {
    uint32_t task;
};

// Fills in the task that runs; null is allowed.
void itc_get_current_context(struct itc_context *context);

// Sends `length` bytes of payload to a task, without waiting for what it does with them. The flag is 1,
// `reply_code` and `timeout` are 0. 0: taken; otherwise the number of the failure: null arguments or a task
// that cannot be reached.
int itc_send_request(const struct itc_context *context, uint32_t destination, uint32_t message_code,
                     const void *payload, size_t length, int32_t flag, uint32_t reply_code, uint32_t timeout);

#ifdef __cplusplus
}
#endif
