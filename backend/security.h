// Messages of the security handler: rate limits, access lists, port trust.
#pragma once

#include "backend/proto/security.pb-c.h"

#ifdef __cplusplus
extern "C" {
#endif

// Message codes.
#define SEC_MSG_BUM_RATE_LIMIT 0x99005Du // bum_rate_limit_msg, answered by bum_rate_limit_resp
// Access lists, all answered by common_resp. The sub-type is the kind of list: 1 IPv4, 2 IPv6, 3 L2.
#define SEC_MSG_ACL_DEFINITION 0x99003Cu  // acl_definition_request
#define SEC_MSG_ACL_IPV4_FILTER 0x99003Eu // ipv4_acl_filter
#define SEC_MSG_ACL_MAC_FILTER 0x990043u  // mac_acl_filter
#define SEC_MSG_ACL_IPV6_FILTER 0x990044u // ipv6_acl_filter
#define SEC_MSG_ACL_BINDING 0x990045u     // acl_interf_binding

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
