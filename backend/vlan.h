// VLANs and their members, and static MAC addresses.
#pragma once

#include "backend/proto/common.pb-c.h"
#include "backend/proto/vlan.pb-c.h"
#include "backend/vlan_mask.h"

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

// Size of the buffers that a caller links for port lists and names, terminator included.
#define VLAN_PORTS_BYTES 7680
#define VLAN_NAME_BYTES 33

// vlan_type.kind.
#define VLAN_KIND_SINGLE 1
#define VLAN_KIND_MASK 2

// Clear the records of a request. They have no buffers of their own: the caller links the request's vlan_type
// to the type, the type's multi_vlan to the mask record, its vlan_mask to 512 bytes, and the texts to
// buffers; all live until the request was sent.
void ui_vlan_config_req_init(VlanConfigReq *request);
void ui_vlan_type_init(VlanType *type);
void ui_multi_vlan_init(MultiVlan *mask);

// How VLANs are selected; `selector` is one of the three numbers.
#define VLAN_SELECT_SINGLE 1 // the type's own id, which the caller has set
#define VLAN_SELECT_MASK 2
#define VLAN_SELECT_ALL 5
struct vlan_param {
    int32_t selector;
    uint8_t mask[VLAN_MASK_BYTES];
};

// Writes a selection into a type record: a mask goes into the buffer that the type's multi_vlan is linked to,
// all VLANs as a mask of all of them. Non-zero: done. 0: there is no such selector, no VLAN in the mask, no
// id, or no buffer, and the record is as before.
int ui_vlan_param_encode(VlanType *type, const struct vlan_param *param);

// Sends a request and waits; the flag is 1. What says nothing stays behind: empty texts without an operation
// beside them, a selection without VLANs, and the mask of a single VLAN. 0: delivered, and *answer is there;
// otherwise *answer is null.
int ui_vlan_config_apply(VlanConfigReq *request, CommonResp **answer, int32_t flag);

// Frees an answer; null is allowed.
void ui_vlan_config_resp_free_unpacked(CommonResp *answer);

// Room for the entries of a MAC request.
struct mac_config_storage {
    MacConfigEntry entry;
    MacConfigEntry *list[1];
};

// Clears a request and points it at one cleared entry; the caller sets n_entries to 1 and fills the entry.
// `kind` is 3, the table of static addresses; any other fails. Non-zero: done.
int mac_config_req_proto_init(MacConfigReq *request, struct mac_config_storage *storage, int32_t kind);

// Sends a MAC request and waits. 0: delivered and done. Otherwise *answer is null when it was not delivered,
// or says why the device turned it down. Freed with common_resp__free_unpacked.
int ui_mac_config_apply(MacConfigReq *request, CommonResp **answer);

#ifdef __cplusplus
}
#endif
