// Routed interfaces: ve and loopback themselves, and the addresses of interfaces of any kind.
#pragma once

#include "backend/proto/common.pb-c.h"
#include "backend/proto/ip_interface.pb-c.h"
#include "backend/proto/ipv6_interface.pb-c.h"

#ifdef __cplusplus
extern "C" {
#endif

// All three send a record, cleared by ip__interface__config__init or ipv6__interface__config__init, and wait.
// The answer is freed with common_resp__free_unpacked; it is null when the request was not delivered.

// Creates, changes or deletes the ve or loopback that `name`, `id` and `if_type` say: `operation` 1 create, 2
// update, 3 delete, 0 nothing said; `description_op` 2 sets `description`, 3 removes it. 0: delivered.
int ui_set_intf_config(Ip__Interface__Config *request, CommonResp **answer);

// Adds (`address_op` 1) or removes (3) the address of the interface `name`. Address and mask are numbers in
// host order; an address that is there already gets the new mask. With `helper_flag` 1 the same for a helper
// address of the DHCP relay, by `helper_op` 1 and 3 and without a mask. 0: delivered and done; the answer's ui_err
// if the device turned it down.
int ui_ip_interface_config(Ip__Interface__Config *request, CommonResp **answer);

// The same for IPv6: 16 bytes in network order and a prefix length.
int ui_ipv6_interface_config(Ipv6__Interface__Config *request, CommonResp **answer);

#ifdef __cplusplus
}
#endif
