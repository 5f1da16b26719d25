// Messages of the security handler: rate limits, access lists, port trust.
#pragma once

#include "backend/proto/security.pb-c.h"

#ifdef __cplusplus
extern "C" {
#endif

// Message codes.
#define SEC_MSG_BUM_RATE_LIMIT 0x99005Du // bum_rate_limit_msg, answered by bum_rate_limit_resp

// Sub-types.
#define SEC_SUB_TYPE_BUM_RATE_LIMIT 41u

// Sends a message to the security handler and waits. `message` is the record's base; the record that
// answers is told by the message code, and the caller casts *answer to it. The flag is 0, but for port trust.
// 0: delivered, and *answer is there, to be freed with protobuf_c_message_free_unpacked. Otherwise *answer is
// null: a delivery failure, or a message code that is not known.
int sec_protobuf_fe_config_handler(ProtobufCMessage *message, ProtobufCMessage **answer, uint32_t sub_type,
                                   uint32_t message_code, int32_t flag);

#ifdef __cplusplus
}
#endif
