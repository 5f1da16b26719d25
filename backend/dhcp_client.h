// The DHCP client of the switch.
#pragma once

#include "backend/proto/common.pb-c.h"
#include "backend/proto/dhcp_client.pb-c.h"

#ifdef __cplusplus
extern "C" {
#endif

// Forbids (no_enable 1) or allows (0) the client on a port; blanks around the name are allowed. Says so when
// that is the case already. Null on a delivery failure; freed with ui_fe_dhclientv4_response_free.
DhclientResponse *ui_fe_dhclientv4_set_intf_no_enable(const char *interface_text, int32_t no_enable);

// Frees an answer; null is allowed.
void ui_fe_dhclientv4_response_free(DhclientResponse *answer);

// Clears a record and the buffer that its caller keeps for the reply.
void ui_dhclient_port_id_init(DhclientPortId *record, CommonResp *response);

// Sends a record, with kind, operation and port, to the client's own process; `operation` is 2. Null on a
// delivery failure; freed with dhclient_port_id__free_unpacked.
DhclientPortId *ui_fe_dhclientv4_send_be_request(DhclientPortId *record, int32_t operation);

#ifdef __cplusplus
}
#endif
